// What stands in a card that is open: why, guards, what there is to hear, figures, files, log.
import { el } from '../dom.js';
import { makePlayer } from '../listen/player.js';
import { duration, meaning, number, plain } from '../words.js';
import { copyButton } from '../copy.js';
import { figuresTable, kShownRows } from './figures.js';
import { filesTable } from './files.js';
import { guardsList, kShownGuards } from './guards.js';
import { playerHeight } from '../listen/player_size.js';

// Roughly how high the body will be, in px.
export function guessHeight(one) {
  const rows = Math.min((one.figures ?? []).length + (one.results ?? []).length, kShownRows);
  const players = (one.players ?? []).reduce((sum, player) => sum + playerHeight(player), 0);
  return 150 + players + (rows ? 60 + 26 * rows : 0) + 30 * Math.min(kShownGuards, (one.guards ?? []).length);
}

// A failure that is known and has gone: the suite can be told so.
export function passesUnawaited(one) {
  return Boolean(one.known) && one.verdict === 'pass';
}

function why(one) {
  const words = one.reason || meaning(one.verdict);
  const change = one.change ? `Beside the other run: ${plain(one.change)}` : '';
  const before = one.against_verdict && one.against_verdict !== one.verdict
    ? `; its verdict there is ${plain(one.against_verdict)}` : '';
  return [
    el('p', { class: 'reason' }, el('strong', {}, plain(one.verdict)),
       one.cause && one.cause !== 'none' ? el('span', { class: 'quiet' }, ` (${one.cause})`) : null,
       words ? `: ${words}` : ''),
    change ? el('p', { class: 'reason' }, `${change}${before}.`) : null,
    one.known ? el('p', { class: passesUnawaited(one) ? 'note' : 'reason' },
                   passesUnawaited(one) ? 'Passes, though it is known to fail: ' : 'Known: ',
                   String(one.known)) : null,
    ...(one.notes ?? []).map((note) => el('p', { class: 'note' }, note)),
  ];
}

function cost(one) {
  const parts = [
    one.elapsed === null || one.elapsed === undefined ? '' : `took ${duration(one.elapsed)}`,
    one.cpu === null || one.cpu === undefined ? '' : `processor ${duration(one.cpu)}`,
    one.rtf === null || one.rtf === undefined ? '' : `RTF ${number(one.rtf)}`,
    one.cluster ? `one of the cluster ${one.cluster}` : '',
  ].filter(Boolean).join(', ');
  return parts ? el('p', { class: 'quiet' }, parts) : null;
}

function record(one) {
  return el('section', { class: 'record' },
    el('h4', {}, 'To run it again'),
    one.command ? el('div', { class: 'command' }, el('code', {}, one.command),
                     copyButton(one.command, `the command of ${one.id}`)) : null,
    one.report ? el('p', { class: 'quiet' }, 'Record: ', el('code', {}, one.report)) : null,
    one.log ? el('details', { class: 'fold' }, el('summary', {}, 'Log'),
                 el('pre', { class: 'log', tabindex: '0', 'aria-label': `Log of ${one.id}` }, one.log))
            : null,
    el('p', {}, copyButton(linkTo(one), `a link to ${one.id}`, 'Copy link to this case')));
}

function linkTo(one) {
  return `${location.href.split('#')[0]}#${new URLSearchParams({ case: one.id })}`;
}

export function fillBody(body, one) {
  const players = (one.players ?? []).map((player) => makePlayer(player, one));
  // A guard's time leads to the player in which it can be heard.
  const hear = (guard) => players.find((player) => player.covers(guard));
  body.append(...[
    ...why(one),
    guardsList(one, hear),
    ...players.map((player) => player.node),
    figuresTable(one),
    filesTable(one),
    record(one),
    cost(one),
  ].filter(Boolean));

}
