// A canvas in the pixels of the screen, with room for a scale at its left.
import { el } from '../dom.js';

export const kGutter = 44;  // px
const kFont = '10px system-ui, sans-serif';

export class Canvas {
  constructor(height, words) {
    this.height = height;
    this.node = el('canvas', { class: 'pane', role: 'img', 'aria-label': words });
    this.node.style.height = `${height}px`;
    this.width = 0;
  }

  // Calls draw(context, width): x from 0 is behind the gutter, units are px.
  draw(wide, paint) {
    const scale = devicePixelRatio || 1;
    const [columns, rows] = [Math.round(wide * scale), Math.round(this.height * scale)];
    if (this.node.width !== columns || this.node.height !== rows) {
      this.node.width = columns;
      this.node.height = rows;
    }
    const context = this.node.getContext('2d');
    context.setTransform(scale, 0, 0, scale, 0, 0);
    context.clearRect(0, 0, wide, this.height);
    context.font = kFont;
    context.translate(kGutter, 0);
    paint(context, wide - kGutter);
  }

  // Gives back the memory of what is far away.
  clear() {
    this.node.width = 0;
    this.node.height = 0;
  }
}

// A word in the gutter, right-aligned, around the height y.
export function mark(context, text, y, height, colour) {
  context.fillStyle = colour;
  context.textAlign = 'right';
  context.textBaseline = 'middle';
  context.fillText(text, -5, Math.max(6, Math.min(height - 6, y)));
}
