// The elements of a player: its title, its controls, its tracks.
import { el, freshId } from '../dom.js';
import { time } from '../words.js';
import { sameWords } from './difference_version.js';

// Which part of the whole recording is there.
function part({ start, seconds, data: { whole } }) {
  return whole && whole > seconds + 0.01
    ? `${time(start, 1)} to ${time(start + seconds, 1)} of ${time(whole, 1)}` : time(seconds, 1);
}

// axis is as wide as all that is drawn; used() is called when a reader turns to the player.
export function playerFrame(player, one, axis, used) {
  const title = freshId('player');
  const same = sameWords(player.data);
  const silent = (player.data.versions ?? []).filter((version) => !version.audio);
  return el('section', { class: 'player', tabindex: '0', role: 'group', 'aria-labelledby': title,
                         onfocusin: used, onpointerdown: used },
    el('h4', { id: title }, player.data.title ?? one.id, el('span', { class: 'quiet' }, part(player))),
    player.heard.length > 0 ? player.bar.node : null,
    el('div', { class: 'tracks' },
       el('div', { class: 'track is-ruler' }, el('div', { class: 'track-head' }), axis),
       player.tracks.map((track) => track.node), player.curves.map((curve) => curve.node)),
    same ? el('p', { class: 'quiet' }, same) : null,
    silent.length > 0 ? el('p', { class: 'note' }, 'Not in this page: ',
                           silent.map((v) => `${v.label} (${v.file ?? ''})`).join(', ')) : null,
    player.heard.length > 1 ? player.abx.node : null);
}
