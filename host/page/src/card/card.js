// The card of a case: a line that is always there, and below it what is drawn when it is looked at.
import { badge } from '../icons.js';
import { el } from '../dom.js';
import { figureOf } from '../screen/filter_state.js';
import { count, duration, quantity, signedNumber } from '../words.js';
import { slice } from '../compute/slices.js';
import { Visible } from '../compute/visible.js';
import { fillBody, guessHeight, passesUnawaited } from './body.js';

const kQuiet = ['pass', 'skip', 'not_run'];
const kFolded = 56;  // px

// Cases that are as they should be are folded.
function startsOpen(one) {
  return !kQuiet.includes(one.verdict) || passesUnawaited(one) ||
         !['same', null, undefined].includes(one.change);
}

export class Card {
  static s_visible = new Visible({ near: 600 });

  constructor(one, place) {
    this.one = one;
    this.m_filled = false;
    this.m_near = false;
    this.m_body = el('div', { class: 'card-body' });
    this.m_figure = el('span', { class: 'card-figure' });
    this.node = el('details', { class: `card is-${one.verdict}`, id: `case-${place}` },
                   this.#line(), this.m_body);
    this.node.open = startsOpen(one);
    this.node.addEventListener('toggle', () => this.#size());
    this.#size();
    Card.s_visible.watch(this.node, () => { this.m_near = true; this.#wantBody(); });
  }

  #line() {
    const one = this.one;
    const change = one.change && one.change !== 'same' ? badge(one.change) : null;
    const hit = (one.guards ?? []).length;
    return el('summary', { class: 'card-line' },
      el('span', { class: 'card-badges' }, badge(one.verdict), change),
      el('h3', {}, one.id),
      el('span', { class: 'card-about' },
         [one.routine, one.group, ...(one.tags ?? []).map((t) => `#${t}`)].filter(Boolean).join(' · '),
         hit > 0 ? ` · ${count(hit, 'guard')} hit` : null),
      this.m_figure,
      el('span', { class: 'card-time' }, duration(one.elapsed)));
  }

  // How high the card will be, so that the scroll bar is right before it is drawn.
  #size() {
    const height = this.node.open ? kFolded + guessHeight(this.one) : kFolded;
    this.node.style.containIntrinsicSize = `auto ${height}px`;
    if (!this.m_filled) this.m_body.style.minHeight = `${height - kFolded}px`;
    this.#wantBody();
  }

  #wantBody() {
    if (this.m_filled || !this.node.open || !this.m_near) return;
    this.m_filled = true;
    Card.s_visible.forget(this.node);
    slice(() => this.#fill());
  }

  #fill() {
    fillBody(this.m_body, this.one);
    this.m_body.style.minHeight = '';
  }

  // Draws the text of an open card that has not been looked at yet, for paper.
  fillNow() {
    if (this.m_filled || !this.node.open) return;
    this.m_filled = true;
    this.#fill();
  }

  set open(open) { this.node.open = open; }
  get open() { return this.node.open; }

  // Shows a figure in the line of the card; an empty name shows none.
  showFigure(name) {
    const figure = name ? figureOf(this.one, name) : null;
    if (!figure) {
      this.m_figure.textContent = '';
      return;
    }
    const by = typeof figure.against === 'number' && typeof figure.value === 'number'
      ? ` (${signedNumber(figure.value - figure.against, figure.unit)})` : '';
    this.m_figure.textContent = `${name} ${quantity(figure.value, figure.unit)}${by}`;
  }
}
