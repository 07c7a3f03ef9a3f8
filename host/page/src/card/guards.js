// The guards that were hit: where, when, in words.
import { el } from '../dom.js';
import { badge } from '../icons.js';
import { channel, channelsOfFile, time } from '../words.js';

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

export function guardsList(one, hear) {
  const guards = one.guards ?? [];
  if (guards.length === 0) return null;
  return el('section', { class: 'guards' }, el('h4', {}, 'Guards that were hit'),
            el('ul', {}, guards.map((guard) => line(one, guard, hear))));
}
