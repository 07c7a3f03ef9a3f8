// Work in small parts: a few milliseconds of every frame, so that scrolling goes on meanwhile.

const kBudget = 5;  // ms of a frame
const m_waiting = [];
let m_scheduled = false;

// Yields to the browser: what it has to draw and to hear comes first.
const m_channel = new MessageChannel();
m_channel.port1.onmessage = () => work();

function schedule() {
  if (m_scheduled || m_waiting.length === 0) return;
  m_scheduled = true;
  requestAnimationFrame(() => m_channel.port2.postMessage(null));
}

function work() {
  m_scheduled = false;
  const start = performance.now();
  while (m_waiting.length > 0 && performance.now() - start < kBudget) {
    const { step, done, failed } = m_waiting.shift();
    try {
      done(step());
    } catch (error) {
      failed(error);
    }
  }
  schedule();
}

// Calls step() when there is time for it; resolves to what it returns. A step should be short.
export function slice(step) {
  return new Promise((done, failed) => {
    m_waiting.push({ step, done, failed });
    schedule();
  });
}

// Calls what waits now, as before printing.
export function flush() {
  while (m_waiting.length > 0) {
    const { step, done } = m_waiting.shift();
    done(step());
  }
}
