// The blind test of a player: which two, how many trials, and what it shows in the end.
import { announce, el } from '../dom.js';
import { number } from '../words.js';
import { BlindTest } from './abx.js';

const kTrials = [5, 10, 16, 25];

export class AbxPanel {
  constructor(player, versions) {
    this.m_player = player;
    this.m_versions = versions;
    this.m_test = null;
    this.m_heard = null;  // 'a', 'b' or 'x'
    this.m_box = el('div', { class: 'abx' });
    this.node = el('details', { class: 'fold' }, el('summary', {}, 'Blind test (X)'), this.m_box);
    this.#drawSetup();
  }

  get running() { return this.m_test !== null && !this.m_test.done; }

  #drawSetup(result = null) {
    const options = () => this.m_versions.map((v) => el('option', { value: v.key }, v.label));
    this.m_a = el('select', {}, options());
    this.m_b = el('select', {}, options());
    this.m_b.selectedIndex = Math.min(1, this.m_versions.length - 1);
    this.m_planned = el('select', {}, kTrials.map((n) => el('option', { value: n }, String(n))));
    this.m_planned.value = '10';
    this.m_box.replaceChildren(...[result, el('div', { class: 'together' },
      el('label', {}, 'A ', this.m_a), el('label', {}, 'B ', this.m_b),
      el('label', {}, 'Trials ', this.m_planned),
      el('button', { type: 'button', onclick: () => this.start() }, 'Start')),
      el('p', { class: 'quiet' }, 'X is one of the two, drawn anew for each trial. The score is shown ' +
        'in the end. All is played equally loud meanwhile.')].filter(Boolean));
  }

  start() {
    if (this.m_a.value === this.m_b.value) {
      announce('Choose two that differ');
      this.m_b.focus();
      return;
    }
    this.m_keys = { a: this.m_a.value, b: this.m_b.value };
    this.m_test = new BlindTest(Number(this.m_planned.value));
    this.node.open = true;
    this.m_player.blind(true);
    this.#drawTrial();
    this.hear('x');
    this.m_listen.x.focus();
  }

  #drawTrial() {
    const listen = (which) => el('button', { type: 'button', 'aria-pressed': 'false',
                                             onclick: () => this.hear(which) }, which.toUpperCase());
    const answer = (which) => el('button', { type: 'button', class: 'answer',
                                             onclick: () => this.answer(which) },
                                 `X is ${which.toUpperCase()}`);
    this.m_listen = { a: listen('a'), b: listen('b'), x: listen('x') };
    this.m_said = el('p', { 'aria-live': 'polite' });
    this.m_box.replaceChildren(this.m_said,
      el('div', { class: 'together', role: 'group', 'aria-label': 'Listen to' },
         Object.values(this.m_listen)),
      el('div', { class: 'together', role: 'group', 'aria-label': 'Your answer' },
         answer('a'), answer('b'),
         el('button', { type: 'button', class: 'small', onclick: () => this.end() }, 'End now')));
    this.#say();
  }

  #say() {
    const { trials, planned } = this.m_test;
    this.m_said.textContent = `Trial ${trials + 1} of ${planned}`;
  }

  hear(which) {
    if (!this.running) return;
    this.m_heard = which;
    const real = which === 'x' ? this.m_test.x : which;
    this.m_player.hearBlind(this.m_keys[real]);
    for (const [name, button] of Object.entries(this.m_listen)) {
      button.setAttribute('aria-pressed', String(name === which));
    }
  }

  answer(which) {
    if (!this.running) return;
    this.m_test.answer(which);
    if (this.m_test.done) {
      this.end();
      return;
    }
    this.#say();
    this.hear('x');
  }

  // Shows the score of the trials that were made.
  end() {
    const { trials, right, p, planned } = this.m_test;
    this.m_test = null;
    this.m_player.blind(false);
    const early = trials < planned ? `, ended after ${trials} of ${planned}` : '';
    const words = trials === 0 ? 'No trial was made.'
      : `${right} of ${trials} right${early}: p = ${number(p)}, the probability of as many by guessing.`;
    const result = el('p', { class: 'score', tabindex: '-1' }, words);
    this.#drawSetup(result);
    result.focus();
    announce(words);
  }
}
