// The keys of players. They go to the player that has the focus, else to the one that was used last.
import { el } from '../dom.js';

const kStep = 0.1;  // s
const kWide = 1;    // s, with Shift

const kKeys = [
  ['Space', 'play or pause'], ['1 \u2026 9', 'hear this version, at the same place'],
  ['\u2190 \u2192', '0.1 s back or on; with Shift 1 s'], ['\u2191 \u2193', 'the version above or below'],
  ['[ ]', 'loop from here, to here'], ['Esc', 'no loop'], ['+ \u2212 0', 'zoom in, out, show all'],
  ['L', 'equally loud on and off'], ['X', 'a blind test; in it: hear X'],
  ['A B', 'in a blind test: X is A, X is B'],
];

const kActions = {
  ' ': (player) => player.toggle(),
  'ArrowLeft': (player, event) => player.seek(player.position - (event.shiftKey ? kWide : kStep)),
  'ArrowRight': (player, event) => player.seek(player.position + (event.shiftKey ? kWide : kStep)),
  'ArrowUp': (player) => player.hearNext(-1),
  'ArrowDown': (player) => player.hearNext(1),
  '[': (player) => player.loopFrom(),
  ']': (player) => player.loopTo(),
  'Escape': (player) => player.setLoop(null),
  '+': (player) => player.view.zoom(2, player.position),
  '-': (player) => player.view.zoom(0.5, player.position),
  '0': (player) => player.view.fit(),
  'l': (player) => player.setMatching(!player.matching),
  'x': (player) => player.blindKey(),
  'a': (player) => player.abx.answer('a'),
  'b': (player) => player.abx.answer('b'),
};

let m_last = null;
const m_players = new WeakMap();

export function registerPlayer(player) { m_players.set(player.node, player); }
export function usedPlayer(player) { m_last = player; }

// The element itself wants these keys.
function taken(target, key) {
  if (target.closest('textarea, select, input[type=search]')) return true;
  return key === ' ' && target.closest('button, summary, a, input[type=checkbox]') !== null;
}

function press(event) {
  const bracket = event.key === '[' || event.key === ']';
  if (event.metaKey || ((event.ctrlKey || event.altKey) && !bracket)) return;
  const own = event.target.closest?.('.player');
  const elsewhere = event.target !== document.body && !own;
  const player = own ? m_players.get(own) : elsewhere ? null : m_last;
  if (!player || !player.node.isConnected || taken(event.target, event.key)) return;
  const version = /^[1-9]$/.test(event.key) ? Number(event.key) - 1 : -1;
  // Without the focus in a player the page scrolls as it always does.
  if (!own && /^Arrow(Up|Down)$/.test(event.key)) return;
  const action = version >= 0 ? () => player.hearAt(version)
    : kActions[event.key.length === 1 ? event.key.toLowerCase() : event.key];
  if (!action) return;
  event.preventDefault();
  action(player, event);
}

export function drawKeys(root) {
  for (const [key, words] of kKeys) root.append(el('div', {}, el('dt', {}, el('kbd', {}, key)),
                                                   el('dd', {}, words)));
  addEventListener('keydown', press);
}
