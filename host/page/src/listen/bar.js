// The controls of a player.
import { el } from '../dom.js';
import { control } from '../icons.js';
import { time } from '../words.js';

function button(label, text, click, key = '') {
  return el('button', { type: 'button', class: 'small', 'aria-label': label, onclick: click,
                        title: key ? `${label} (${key})` : label }, text);
}

export class Bar {
  constructor(player) {
    const { view } = player;
    const middle = () => (view.from + view.to) / 2;
    this.m_player = player;
    this.play = el('button', { type: 'button', class: 'play', 'aria-label': 'Play',
                               title: 'Play or pause (space)', onclick: () => player.toggle() },
                   control('play'));
    this.place = el('input', { type: 'range', min: 0, max: player.seconds, step: 'any', value: 0,
                               'aria-label': 'Position',
                               oninput: () => player.seek(Number(this.place.value)) });
    this.time = el('span', { class: 'clock' });
    this.clear = button('No loop', 'No loop', () => player.setLoop(null), 'Esc');
    this.match = el('input', { type: 'checkbox', checked: true,
                               onchange: () => player.setMatching(this.match.checked) });
    this.match.checked = true;
    this.state = el('span', { class: 'quiet', role: 'status' });
    this.node = el('div', { class: 'bar' },
      this.play, this.place, this.time,
      el('span', { class: 'together', role: 'group', 'aria-label': 'Loop' },
         button('Loop from here', '[', () => player.loopFrom(), '['),
         button('Loop to here', ']', () => player.loopTo(), ']'), this.clear),
      el('span', { class: 'together', role: 'group', 'aria-label': 'Zoom' },
         button('Zoom out', '\u2212', () => view.zoom(0.5, middle()), '\u2212'),
         button('Zoom in', '+', () => view.zoom(2, player.position), '+'),
         button('Show earlier', '\u2039', () => view.pan(-0.5 * view.span)),
         button('Show later', '\u203a', () => view.pan(0.5 * view.span)),
         button('Show all of it', 'All', () => view.fit(), '0')),
      el('label', { class: 'tick' }, this.match, 'Equally loud'),
      this.state);
    this.clear.hidden = true;
    this.showPlace(0);
  }

  showPlaying(playing) {
    this.play.replaceChildren(control(playing ? 'pause' : 'play'));
    this.play.setAttribute('aria-label', playing ? 'Pause' : 'Play');
  }

  showPlace(seconds) {
    const words = time(seconds + this.m_player.start, 2);
    if (words === this.time.textContent) return;
    this.place.value = seconds;
    this.place.setAttribute('aria-valuetext', words);
    this.time.textContent = words;
  }
}
