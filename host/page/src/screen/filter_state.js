// What is shown and in which order, as it stands in the address after #, so that a link can be sent.

export const kEmpty = { text: '', group: '', tag: '', measure: '', order: '', verdict: [], change: [],
                        case: '' };

// "#verdict=fail,warn&text=echo" as a state.
export function parseFragment(fragment) {
  const words = new URLSearchParams(fragment.replace(/^#/, ''));
  const state = { ...kEmpty };
  for (const name of Object.keys(kEmpty)) {
    const value = words.get(name) ?? '';
    state[name] = Array.isArray(kEmpty[name]) ? value.split(',').filter(Boolean) : value;
  }
  return state;
}

// The other way round; empty for a state that leaves nothing out.
export function formatFragment(state) {
  const words = new URLSearchParams();
  for (const name of Object.keys(kEmpty)) {
    const value = Array.isArray(state[name]) ? state[name].join(',') : state[name];
    if (value) words.set(name, value);
  }
  return words.toString().replace(/%2C/g, ',');
}

// The state after a reader has chosen `part` of it. A link to one case is left by any other choice.
export function changed(state, part) {
  const next = { ...state, case: '', ...part };
  if (part.measure && !next.order) next.order = 'measure';
  if (part.measure === '' && next.order === 'measure') next.order = '';
  return next;
}

// All words of a case that a reader may look for, in small letters.
function searched(one) {
  const names = (list, ...keys) => (list ?? []).flatMap((item) => keys.map((key) => item[key]));
  return [one.id, one.routine, one.group, one.cause, one.reason, one.verdict, one.change, one.known,
          ...(one.tags ?? []), ...(one.arguments ?? []),
          ...names(one.guards, 'name', 'file', 'text'), ...names(one.figures, 'name'),
          ...names(one.results, 'name'), ...names(one.files, 'name', 'sha256')]
    .filter(Boolean).join('\n').toLowerCase();
}

const m_searched = new WeakMap();

function hasText(one, text) {
  if (!m_searched.has(one)) m_searched.set(one, searched(one));
  const words = text.toLowerCase().split(/\s+/).filter(Boolean);
  return words.every((word) => m_searched.get(one).includes(word));
}

// The figure of a case that a measure's name asks for: that of all channels where there is one.
export function figureOf(one, name) {
  const all = [...(one.figures ?? []), ...(one.results ?? [])].filter((f) => f.name === name);
  return all.find((f) => (f.channel ?? null) === null) ?? all[0] ?? null;
}

export function isShown(one, state) {
  if (state.case && one.id !== state.case) return false;
  if (state.group && one.group !== state.group) return false;
  if (state.tag && !(one.tags ?? []).includes(state.tag)) return false;
  if (state.measure && !figureOf(one, state.measure)) return false;
  if (state.verdict.length > 0 && !state.verdict.includes(one.verdict)) return false;
  if (state.change.length > 0 && !state.change.includes(one.change)) return false;
  return hasText(one, state.text);
}

// How much better a figure has become; less is worse. Where neither more nor less is better, what has
// changed most comes first. Unknown ones come last.
function gained(one, name) {
  const figure = figureOf(one, name);
  if (!figure || typeof figure.value !== 'number') return Infinity;
  const compared = typeof figure.against === 'number';
  const by = compared ? figure.value - figure.against : figure.value;
  if (figure.better === 'higher') return by;
  return figure.better === 'lower' ? -by : compared ? -Math.abs(by) : by;
}

const byText = (key) => (a, b) => String(a[key]).localeCompare(String(b[key]), 'en', { numeric: true });

const kOrders = {
  id: byText('id'),
  routine: byText('routine'),
  slowest: (a, b) => (b.elapsed ?? -1) - (a.elapsed ?? -1),
};

// Places of the cases that are shown, in order. The data has them worst first already.
export function choose(cases, state) {
  const places = cases.map((_, at) => at).filter((at) => isShown(cases[at], state));
  const order = state.order === 'measure' && state.measure
    ? (a, b) => gained(a, state.measure) - gained(b, state.measure) || 0
    : Object.hasOwn(kOrders, state.order) && kOrders[state.order];
  if (order) places.sort((a, b) => order(cases[a], cases[b]) || a - b);
  return places;
}
