// What the other run is compared by: one line a measure, with its interval as a small bar.
import { badge } from '../icons.js';
import { el } from '../dom.js';
import { count, number, quantity, signed } from '../words.js';
import { intervalBar } from './interval_bar.js';

// So many stand open where there are more than kMost, as after a routine that makes a table.
const kFirst = 8;
const kMost = 12;

const kColumns = ['Measure', 'Verdict', 'Before', 'Now', 'Difference', '95 % interval, beside the margin',
                  'Cases', 'Wins', 'Losses', 'Lost most'];

function direction(measure) {
  if (measure.to_truth) return 'less is better: distance from the truth';
  return { higher: 'more is better', lower: 'less is better' }[measure.better] ??
         'neither more nor less is better';
}

function caveat(measure) {
  if (measure.untrusted) return 'this measure has not passed its self-test';
  if (measure.verdict === 'undecided') {
    return measure.more ? `about ${count(measure.more, 'more case')} would decide` : '';
  }
  return measure.holds === false ? 'taken alone; not certain among so many measures' : '';
}

function link(title, choose, ...words) {
  return el('button', { type: 'button', class: 'as-link', title, onclick: choose }, words);
}

// A long name may break after its signs.
function breakable(name) {
  return name.split(/(?<=[/_-])/).flatMap((part, at) => at === 0 ? [part] : [el('wbr'), part]);
}

// Leads to the case where the page has it.
function worstCase({ worst_case: id }, cases, choose) {
  if (!id) return '';
  return cases.has(id) ? link('Show this case', () => choose({ case: id }), ...breakable(id))
                       : breakable(id);
}

function line(measure, cases, choose) {
  const name = link(`Show the cases that have ${measure.name}`,
                    () => choose({ measure: measure.name }), measure.name);
  const note = caveat(measure);
  return el('tr', {},
    el('th', { scope: 'row' }, name, el('span', { class: 'under' }, direction(measure))),
    el('td', {}, badge(measure.verdict), note && el('span', { class: 'under' }, note)),
    el('td', { class: 'figure' }, quantity(measure.a, measure.unit)),
    el('td', { class: 'figure' }, quantity(measure.b, measure.unit)),
    el('td', { class: 'figure' }, signed(measure.difference, measure.unit)),
    el('td', { class: 'bar-cell' }, intervalBar(measure)),
    el('td', { class: 'figure' }, number(measure.n)),
    el('td', { class: 'figure' }, number(measure.wins)),
    el('td', { class: 'figure' }, number(measure.losses)),
    el('td', { class: 'name' }, worstCase(measure, cases, choose)));
}

function table(measures, cases, choose) {
  return el('div', { class: 'wide', tabindex: '0', role: 'region', 'aria-labelledby': 'measures-title' },
    el('table', { class: 'measures' },
       el('thead', {}, el('tr', {}, kColumns.map((name, at) =>
         el('th', { scope: 'col', class: [2, 3, 4, 6, 7, 8].includes(at) ? 'figure' : null }, name)))),
       el('tbody', {}, measures.map((measure) => line(measure, cases, choose)))));
}

// "310 more measures: 298 worse, 12 undecided", in the order in which they stand.
function moreWords(measures) {
  const verdicts = [...new Set(measures.map((measure) => measure.verdict))];
  const counts = verdicts.map((verdict) =>
    `${measures.filter((measure) => measure.verdict === verdict).length} ${verdict}`);
  return `${count(measures.length, 'more measure')}: ${counts.join(', ')}`;
}

function folded(words, measures, cases, choose) {
  return measures.length === 0 ? null
    : el('details', { class: 'fold is-told' }, el('summary', {}, words), table(measures, cases, choose));
}

// Those that are the same, and what follows on a screenful, are folded, so that the cases come soon.
// choose(part) shows some cases.
export function drawMeasures(root, data, choose) {
  const measures = data.measures ?? [];
  const cases = new Set((data.cases ?? []).map((one) => one.id));
  if (!data.against || measures.length === 0) return;
  const same = measures.filter((measure) => measure.verdict === 'same');
  const others = measures.filter((measure) => measure.verdict !== 'same');
  const first = others.slice(0, others.length > kMost ? kFirst : kMost);
  const rest = others.slice(first.length);
  const words = same.length === 1 ? '1 measure is the same' : `${same.length} measures are the same`;
  root.append(
    el('section', { 'aria-labelledby': 'measures-title' },
       el('h2', { id: 'measures-title' }, 'Measures against ', data.against.name),
       first.length > 0 ? table(first, cases, choose) : null,
       folded(moreWords(rest), rest, cases, choose), folded(words, same, cases, choose)));
}
