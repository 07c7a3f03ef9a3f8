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
    const { step, done, failed, draws } = m_waiting.shift();
    try {
      done(step());
    } catch (error) {
      failed(error);
    }
    if (draws) break;
  }
  schedule();
}

function wait(step, draws) {
  return new Promise((done, failed) => {
    m_waiting.push({ step, done, failed, draws });
    schedule();
  });
}

// Calls step() when there is time for it; resolves to what it returns. A step should be short.
export function slice(step) { return wait(step, false); }

// The same for a step that draws on a canvas: one in a frame, because the browser takes longer to
// bring it to the screen than the step to draw it.
export function drawingSlice(step) { return wait(step, true); }
