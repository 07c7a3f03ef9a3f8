// Has the worker do something: one task after the other, what was asked last first, because that is what
// a reader looks at.

/* global WORKER_SOURCE */
let m_worker = null;
let m_count = 0;
let m_busy = null;
const m_waiting = [];

function worker() {
  if (!m_worker) {
    const source = URL.createObjectURL(new Blob([WORKER_SOURCE], { type: 'text/javascript' }));
    m_worker = new Worker(source);
    m_worker.onmessage = ({ data }) => finish(data);
  }
  return m_worker;
}

function finish({ id, result, error }) {
  const task = m_busy;
  if (!task || task.id !== id) return;
  m_busy = null;
  next();
  if (error) {
    task.failed(new Error(error));
  } else {
    task.done(result);
  }
}

function next() {
  if (m_busy || m_waiting.length === 0) return;
  m_busy = m_waiting.pop();
  const { id, task, words, moved } = m_busy;
  worker().postMessage({ id, task, words: typeof words === 'function' ? words() : words },
                       moved ?? []);
}

// Resolves to what the task returns. Words may be a function that makes them when their turn comes.
export function ask(task, words) {
  return new Promise((done, failed) => {
    m_count += 1;
    m_waiting.push({ id: m_count, task, words, done, failed });
    next();
  });
}
