// A shape for every verdict and every change, so that none is told by its colour alone.
import { el, svg } from './dom.js';
import { meaning, plain } from './words.js';

// Paths in a square of 16.
const kShapes = {
  pass: 'M3 8.5 6.5 12 13 4.5',
  warn: 'M8 2.5 14.5 13.5H1.5ZM8 6.5v3.5M8 11.8v.4',
  fail: 'M3.5 3.5l9 9M12.5 3.5l-9 9',
  error: 'M5.2 1.5h5.6l3.7 3.7v5.6l-3.7 3.7H5.2L1.5 10.8V5.2ZM8 4.5v4.5M8 11.3v.4',
  skip: 'M3 8h10',
  not_run: 'M3 8h10',
  known: 'M8 1.5 14.5 8 8 14.5 1.5 8Z',
  worse: 'M8 2.5v10.5M3.5 8.5 8 13l4.5-4.5',
  better: 'M8 13.5V3M3.5 7.5 8 3l4.5 4.5',
  same: 'M3 6h10M3 10.5h10',
  changed: 'M3 6h10M3 10.5h10M11 2.5l-6 11.5',
  undecided: 'M5 5.5c0-4 6.5-4 6.5-.5 0 2.5-3.5 2.5-3.5 5M8 13v.4',
  new: 'M8 3v10M3 8h10',
  gone: 'M3 8h10M2 2.5v11M14 2.5v11',
};

export function icon(name) {
  return svg('svg', { class: 'icon', viewBox: '0 0 16 16', 'aria-hidden': 'true' },
             svg('path', { d: kShapes[name] ?? kShapes.skip }));
}

// Shape and word of a verdict or a change.
export function badge(word, extra = '') {
  const known = Object.hasOwn(kShapes, word) ? word : 'skip';
  return el('span', { class: `badge is-${known}`, title: meaning(word) || null },
            icon(known), plain(word) + extra);
}

const kControls = {
  play: 'M4 2.5v11l9.5-5.5Z',
  pause: 'M4 2.5h3v11H4ZM9 2.5h3v11H9Z',
};

// Play and pause, filled.
export function control(name) {
  return svg('svg', { class: 'icon is-filled', viewBox: '0 0 16 16', 'aria-hidden': 'true' },
             svg('path', { d: kControls[name] }));
}
