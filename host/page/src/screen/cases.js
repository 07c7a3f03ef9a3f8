// The list of cases: cards in the order and choice that the address asks for.
import { Card } from '../card/card.js';
import { announce, el } from '../dom.js';
import { slice } from '../compute/slices.js';
import { changed, choose, formatFragment, parseFragment } from './filter_state.js';
import { drawFilters } from './filters.js';

const kAtOnce = 12;  // cards that are made before the first screen is shown

export class Cases {
  constructor(root, data) {
    this.m_cases = data.cases ?? [];
    this.m_cards = this.m_cases.map(() => null);
    this.m_state = parseFragment(location.hash);
    root.append(el('h2', { id: 'cases-title' }, 'Cases'));
    const filters = el('div');
    this.m_list = el('div', { class: 'cards' });
    this.m_none = el('p', { class: 'none', hidden: true }, 'No case is left by this choice.');
    root.append(filters, this.#folding(), this.m_none, this.m_list);
    this.m_show = drawFilters(filters, this.m_cases, data.total ?? 0, (part) => this.choose(part));
    addEventListener('hashchange', () => {
      this.m_state = parseFragment(location.hash);
      this.#draw();
    });
    addEventListener('beforeprint', () => this.#forPaper());
    this.#draw();
  }

  #folding() {
    const all = (open) => this.#shownCards().forEach((card) => { card.open = open; });
    return el('p', { class: 'folding' },
      el('button', { type: 'button', class: 'small', onclick: () => all(true) }, 'Open all'),
      el('button', { type: 'button', class: 'small', onclick: () => all(false) }, 'Fold all'));
  }

  // Changes a part of what is shown, and the address with it.
  choose(part) {
    this.m_state = changed(this.m_state, part);
    const fragment = formatFragment(this.m_state);
    history.replaceState(null, '', `${location.pathname}${location.search}${fragment && `#${fragment}`}`);
    this.#draw();
    announce(`${this.m_places.length} of ${this.m_cases.length} cases are shown`);
  }

  #card(place) {
    this.m_cards[place] ??= new Card(this.m_cases[place], place);
    if (this.m_state.case) this.m_cards[place].open = true;
    return this.m_cards[place];
  }

  #shownCards() { return this.m_places.map((place) => this.#card(place)); }

  #draw() {
    const places = choose(this.m_cases, this.m_state);
    this.m_places = places;
    this.m_show(this.m_state, places.length, this.m_cases.length);
    this.m_none.hidden = places.length > 0;
    this.m_list.replaceChildren();
    this.#append(places, 0, kAtOnce);
  }

  // The cards after the first ones are made while nothing else is to be done.
  #append(places, from, how) {
    if (places !== this.m_places) return;
    const cards = places.slice(from, from + how).map((place) => this.#card(place));
    for (const card of cards) card.showFigure(this.m_state.measure);
    this.m_list.append(...cards.map((card) => card.node));
    if (from + how < places.length) slice(() => this.#append(places, from + how, 4));
  }

  #forPaper() {
    this.m_list.append(...this.#shownCards().map((card) => card.node));
    for (const card of this.#shownCards()) card.fillNow();
  }
}
