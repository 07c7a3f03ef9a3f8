// What lies over a drawing: guards, the loop, the place that is heard. A press goes there, a drag makes a
// loop, the wheel with Ctrl zooms and with Shift pans.
import { el } from '../dom.js';
import { time } from '../words.js';

const kTogether = 0.05;  // s
const kDrag = 4;       // px before a press is a drag
const kWheel = 1.0025; // of zoom for each unit of the wheel

// Marks that would stand on each other become one with all their names.
export function joinMarks(marks) {
  const joined = [];
  for (const mark of [...marks].sort((a, b) => a.at - b.at)) {
    const last = joined.at(-1);
    if (!last || mark.at - last.at > kTogether) {
      joined.push({ at: mark.at, name: mark.name });
    } else if (!last.name.split(', ').includes(mark.name)) {
      last.name += `, ${mark.name}`;
    }
  }
  return joined;
}

export class Layer {
  constructor(player, first) {
    this.m_player = player;
    this.m_loop = el('div', { class: 'loop' });
    this.m_play = el('div', { class: 'play-line' });
    this.m_marks = player.marks.map((mark) => ({ mark, node: el('div', { class: 'mark' },
      first ? el('span', { class: 'mark-name' }, mark.name) : null) }));
    this.node = el('div', { class: 'layer', 'aria-hidden': 'true' }, this.m_loop,
                   this.m_marks.map((m) => m.node), this.m_play);
    this.node.addEventListener('pointerdown', (event) => this.#press(event));
    this.node.addEventListener('wheel', (event) => this.#wheel(event), { passive: false });
    this.node.addEventListener('pointermove', (event) => {
      const at = this.#time(event);
      this.node.title = time(at + player.start);
    });
  }

  #time(event) {
    const box = this.node.getBoundingClientRect();
    const share = (event.clientX - box.left) / box.width;
    return this.m_player.view.time(Math.min(1, Math.max(0, share)));
  }

  #press(event) {
    if (event.button !== 0) return;
    const player = this.m_player;
    const from = this.#time(event);
    const x = event.clientX;
    let drags = false;
    const move = (next) => {
      drags ||= Math.abs(next.clientX - x) >= kDrag;
      if (drags) player.previewLoop(from, this.#time(next));
    };
    const end = (last) => {
      this.node.removeEventListener('pointermove', move);
      this.node.removeEventListener('pointerup', end);
      this.node.removeEventListener('pointercancel', end);
      if (last.type === 'pointercancel') return;
      if (drags) {
        player.setLoop(from, this.#time(last));
      } else {
        player.seek(from);
      }
    };
    this.node.setPointerCapture(event.pointerId);
    this.node.addEventListener('pointermove', move);
    this.node.addEventListener('pointerup', end);
    this.node.addEventListener('pointercancel', end);
  }

  #wheel(event) {
    const { view } = this.m_player;
    const sideways = event.shiftKey ? event.deltaY || event.deltaX : event.deltaX;
    if (event.ctrlKey) {
      view.zoom(kWheel ** -event.deltaY, this.#time(event));
    } else if (sideways !== 0 && !view.whole) {
      view.pan(sideways / this.node.clientWidth * view.span);
    } else {
      return;
    }
    event.preventDefault();
  }

  // Puts everything at its place.
  place(view, loop) {
    const percent = (seconds) => `${100 * view.share(seconds)}%`;
    this.m_loop.hidden = !loop;
    if (loop) {
      this.m_loop.style.left = percent(loop.from);
      this.m_loop.style.width = `${100 * (loop.to - loop.from) / view.span}%`;
    }
    for (const { mark, node } of this.m_marks) {
      node.style.left = percent(mark.at - this.m_player.start);
    }
  }

  // Alone, because it moves with every frame: x in px.
  playAt(x, shown) {
    this.m_play.style.transform = `translateX(${x}px)`;
    this.m_play.style.opacity = shown ? '1' : '0';
  }
}
