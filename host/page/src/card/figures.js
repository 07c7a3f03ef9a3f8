// The figures of a case: those that have changed first, with their direction in a word.
import { el, freshId } from '../dom.js';
import { badge } from '../icons.js';
import { channel, channelsOfFile, number, plain, quantity, signed } from '../words.js';
import { moreButton } from './more.js';

// More rows than these are shown at a click.
export const kShownRows = 10;

const kRank = { worse: 0, changed: 1, gone: 2, undecided: 3, better: 4, new: 5, same: 6 };
const kBetter = { higher: '\u2191 higher', lower: '\u2193 lower' };

// The only channel of a file is the file.
function saidTwice(figure, one, all) {
  return typeof figure.channel === 'number' && channelsOfFile(one, figure.file) === 1 &&
         all.some((other) => other.name === figure.name && other.file === figure.file &&
                             (other.channel ?? null) === null);
}

function rows(one) {
  const told = [...(one.results ?? []), ...(one.figures ?? [])];
  const all = told.filter((figure) => !saidTwice(figure, one, told));
  return all.map((figure, at) => ({ figure, at, rank: kRank[figure.change] ?? 6 }))
    .sort((a, b) => a.rank - b.rank || a.at - b.at).map((row) => row.figure);
}

function line(one, figure, compared) {
  const { value, unit, against } = figure;
  const both = typeof value === 'number' && typeof against === 'number';
  const where = [figure.file, channel(figure.channel, channelsOfFile(one, figure.file))].filter(Boolean).join(', ');
  // What the run itself gives, such as its time, is not measured on a file and has no self-test.
  const note = [figure.reason, figure.untrusted && figure.file ? 'not known to have passed its self-test' : '']
    .filter(Boolean).join('; ');
  return el('tr', {},
    el('th', { scope: 'row' }, figure.name,
       note ? el('span', { class: 'under' }, note) : null),
    el('td', { class: 'name' }, where),
    el('td', { class: 'figure' }, quantity(value, unit)),
    compared ? [el('td', { class: 'figure' }, quantity(against, unit)),
                el('td', { class: 'figure' }, both ? signed(value - against, unit) : number(null)),
                el('td', {}, figure.change ? badge(figure.change) : null)] : null,
    el('td', { class: 'quiet' }, kBetter[figure.better] ?? plain('none')));
}

export function figuresTable(one) {
  const all = rows(one);
  if (all.length === 0) return null;
  const compared = all.some((f) => typeof f.against === 'number' || f.change);
  const title = freshId('figures');
  const columns = ['Figure', 'Of', 'Now', ...(compared ? ['Before', 'Difference', 'Change'] : []),
                   'Better is'];
  const figures = ['Now', 'Before', 'Difference'];
  const body = el('tbody', {}, all.slice(0, kShownRows).map((figure) => line(one, figure, compared)));
  const rest = all.slice(kShownRows);
  const more = moreButton(rest, 'figure', () => {
    body.append(...rest.map((figure) => line(one, figure, compared)));
    body.closest('.wide').focus({ preventScroll: true });
    body.rows[kShownRows].scrollIntoView({ block: 'nearest' });
  });
  return el('section', { 'aria-labelledby': title },
    el('h4', { id: title }, 'Figures'),
    el('div', { class: 'wide', tabindex: '0', role: 'region', 'aria-labelledby': title },
       el('table', {},
          el('thead', {}, el('tr', {}, columns.map((name) =>
            el('th', { scope: 'col', class: figures.includes(name) ? 'figure' : null }, name)))),
          body)),
    more);
}
