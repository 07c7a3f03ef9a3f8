// The guards that were hit: where, when, in words.
import { el } from '../dom.js';
import { badge } from '../icons.js';
import { channel, channelsOfFile, time } from '../words.js';
import { moreButton } from './more.js';

export const kShownGuards = 8;

function line(one, guard, hear) {
  const player = hear(guard);
  const known = guard.at !== null && guard.at !== undefined;
  const at = !known ? null
    : player ? el('button', { type: 'button', class: 'small', title: 'Play from just before it',
                              'aria-label': `Hear ${guard.name} at ${time(guard.at)}`,
                              onclick: () => player.hear(guard.at) }, time(guard.at))
             : el('span', { class: 'figure' }, time(guard.at));
  const where = [guard.file, channel(guard.channel, channelsOfFile(one, guard.file))].filter(Boolean).join(', ');
  return el('li', {}, badge(guard.fails ? 'fail' : 'warn'), ' ',
            el('strong', {}, guard.name), guard.new ? badge('new') : null,
            where ? el('span', { class: 'quiet' }, where) : null, at,
            guard.text ? el('span', { class: 'guard-text' }, guard.text) : null);
}

// Those that fail come first, then those that the other run has not.
function rank(guard) {
  return (guard.fails ? 0 : 2) + (guard.new ? 0 : 1);
}

// So many that what there is to hear stands near them; a button shows the others.
export function guardsList(one, hear) {
  const guards = [...(one.guards ?? [])].sort((a, b) => rank(a) - rank(b));
  if (guards.length === 0) return null;
  const list = el('ul', {}, guards.slice(0, kShownGuards).map((guard) => line(one, guard, hear)));
  const rest = guards.slice(kShownGuards);
  const more = moreButton(rest, 'guard', () => {
    list.append(...rest.map((guard) => line(one, guard, hear)));
    list.focus({ preventScroll: true });
  });
  list.tabIndex = -1;
  return el('section', { class: 'guards' }, el('h4', {}, 'Guards that were hit'), list, more);
}
