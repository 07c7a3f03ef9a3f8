// The controls that choose cases.
import { badge } from '../icons.js';
import { el } from '../dom.js';
import { count } from '../words.js';
import { kEmpty } from './filter_state.js';

const kVerdicts = ['error', 'fail', 'warn', 'known', 'pass', 'skip', 'not_run'];
const kChanges = ['worse', 'changed', 'undecided', 'better', 'same', 'new', 'gone'];
const kOrders = [['', 'Worst first'], ['id', 'Name of the case'], ['routine', 'Routine'],
                 ['slowest', 'Slowest first'], ['measure', 'The chosen measure']];

const different = (values) => [...new Set(values.filter(Boolean))].sort((a, b) => a.localeCompare(b));

function select(name, label, options, change) {
  const box = el('select', { name, onchange: () => change({ [name]: box.value }) },
                 options.map(([value, text]) => el('option', { value }, text)));
  return { name, box, field: el('label', { class: 'field' }, label, box) };
}

// A button for each word that some case has, with how many do.
function chips(name, label, words, cases, toggle) {
  const buttons = words.map((word) => {
    const how = cases.filter((one) => one[name] === word).length;
    return how === 0 ? null : { word, node: el('button', {
      type: 'button', class: 'chip', 'aria-pressed': 'false',
      onclick: () => toggle(name, word),
    }, badge(word, ` ${how}`)) };
  }).filter(Boolean);
  const field = buttons.length === 0 ? null
    : el('div', { class: 'chips', role: 'group', 'aria-label': label }, buttons.map((b) => b.node));
  return { name, buttons, field };
}

// Draws the controls into root; `all` is how many cases the run has. change(part) is called with what a reader has chosen; what is returned
// shows a state: show(state, shownCases, allCases).
export function drawFilters(root, cases, all, change) {
  let state = { ...kEmpty };
  const toggle = (name, word) => change({
    [name]: state[name].includes(word) ? state[name].filter((w) => w !== word)
                                       : [...state[name], word],
  });
  const text = el('input', { type: 'search', name: 'text', autocomplete: 'off', spellcheck: 'false',
                             oninput: () => change({ text: text.value }) });
  const any = (values) => [['', 'All'], ...different(values).map((v) => [v, v])];
  const measures = cases.flatMap((one) => [...one.figures ?? [], ...one.results ?? []])
    .map((figure) => figure.name);
  const selects = [
    select('group', 'Group', any(cases.map((one) => one.group)), change),
    select('tag', 'Tag', any(cases.flatMap((one) => one.tags ?? [])), change),
    select('measure', 'Measure', any(measures), change),
    select('order', 'Order', kOrders, change),
  ];
  const allChips = [chips('verdict', 'Verdict', kVerdicts, cases, toggle),
                    chips('change', 'Change', kChanges, cases, toggle)];
  const said = el('output', { class: 'shown', 'aria-live': 'polite' });
  const clear = el('button', { type: 'button', class: 'small', hidden: true,
                               onclick: () => change({ ...kEmpty }) }, 'Show all');
  root.append(el('form', { class: 'filters', role: 'search', 'aria-label': 'Choose cases',
                           onsubmit: (event) => event.preventDefault() },
                 allChips.map((one) => one.field),
                 el('div', { class: 'fields' },
                    el('label', { class: 'field is-text' }, 'Text', text),
                    selects.map((one) => one.field)),
                 el('p', { class: 'said' }, said, clear)));

  return (next, shown, total) => {
    state = next;
    if (text.value !== next.text) text.value = next.text;
    for (const { name, box } of selects) box.value = next[name];
    for (const { name, buttons } of allChips) {
      for (const { word, node } of buttons) {
        node.setAttribute('aria-pressed', String(next[name].includes(word)));
      }
    }
    const here = total < all ? ' in this page' : '';
    said.textContent = shown === total ? `All ${count(total, 'case')}${here}`
                                       : `${shown} of ${count(total, 'case')}${here}`;
    clear.hidden = shown === total && !next.order;
  };
}
