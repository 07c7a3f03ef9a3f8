// Elements of the page. Whatever comes from the data goes in as text: nothing here takes markup.

// Makes an element. Attributes that are null or false are left out, true is an empty one; those that
// start with "on" are listeners. Children are nodes or text; null is left out.
export function el(tag, attributes = {}, ...children) {
  return fill(document.createElement(tag), attributes, children);
}

const kSvg = 'http://www.w3.org/2000/svg';

// The same for a drawing.
export function svg(tag, attributes = {}, ...children) {
  return fill(document.createElementNS(kSvg, tag), attributes, children);
}

function fill(node, attributes, children) {
  for (const [name, value] of Object.entries(attributes)) {
    if (value === null || value === undefined || value === false) continue;
    if (name.startsWith('on')) {
      node.addEventListener(name.slice(2), value);
    } else {
      node.setAttribute(name, value === true ? '' : String(value));
    }
  }
  for (const child of children.flat()) {
    if (child !== null && child !== undefined && child !== '') node.append(child);
  }
  return node;
}

// Text that only a screen reader says.
export function spoken(text) {
  return el('span', { class: 'spoken' }, text);
}

let m_live = null;

// Lets a screen reader say what has changed.
export function announce(text) {
  if (!m_live) {
    m_live = el('div', { class: 'spoken', role: 'status', 'aria-live': 'polite' });
    document.getElementById('main').append(m_live);
  }
  m_live.textContent = text;
}

let m_count = 0;

// An id that no other element has.
export function freshId(what) {
  m_count += 1;
  return `${what}-${m_count}`;
}
