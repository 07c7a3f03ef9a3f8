// The colours of the page's style, for what is drawn on canvases.

let m_colours = null;
const m_listeners = new Set();

function forget() {
  m_colours = null;
  for (const listener of m_listeners) listener();
}
matchMedia('(prefers-color-scheme: dark)').addEventListener('change', forget);

const kNames = ['ink', 'quiet', 'line', 'fail', 'accent', 'output', 'input', 'reference', 'against',
                'difference'];

export function colours() {
  if (!m_colours) {
    const style = getComputedStyle(document.documentElement);
    m_colours = Object.fromEntries(kNames.map((name) => [name,
      style.getPropertyValue(`--${name}`).trim()]));
  }
  return m_colours;
}

// The colour of a version.
export function colourOf(key) {
  return colours()[{ near: 'reference', far: 'input' }[key] ?? key] ?? colours().ink;
}

// Calls listener() whenever the system changes between dark and light.
export function onTheme(listener) {
  m_listeners.add(listener);
}
