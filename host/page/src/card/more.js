// What does not stand in a card at once: a button in its place.
import { el } from '../dom.js';
import { count } from '../words.js';

// "12 more figures", which calls show() and goes; null where there is nothing more.
export function moreButton(rest, what, show) {
  if (rest.length === 0) return null;
  const more = el('button', { type: 'button', class: 'small more', onclick: () => {
    more.remove();
    show();
  } }, count(rest.length, `more ${what}`));
  return more;
}
