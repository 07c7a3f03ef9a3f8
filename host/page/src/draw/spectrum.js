// The spectrogram: an image of all that there is, and a finer one of what is zoomed in to.
import { ask } from '../compute/ask.js';
import { mark } from './canvas.js';
import { colours } from './theme.js';

const kSettle = 160;  // ms that a zoom has to rest before it is worked out
const kWidest = 1200; // columns

export class Spectrum {
  // channels as of the recording, rate in Hz; onready() is called when there is more to draw.
  constructor(rate, onready) {
    this.m_rate = rate;
    this.m_onready = onready;
    this.m_images = [];  // {image, from, to} in s: the whole, then the finer one
    this.m_timer = 0;
    this.m_channels = null;
  }

  async load(channels, seconds, width) {
    this.m_channels = channels;
    const whole = await this.#make(0, seconds, Math.min(kWidest, Math.max(300, width)));
    if (this.m_channels === channels) this.m_images = [whole];
  }

  // Only what is shown is sent, with half a window on either side.
  async #make(from, to, columns) {
    const first = Math.max(0, Math.floor(from * this.m_rate) - 512);
    const last = Math.ceil(to * this.m_rate) + 512;
    const { image } = await ask('spectrogram', () => ({
      channels: (this.m_channels ?? []).map((samples) => samples.slice(first, last)),
      rate: this.m_rate, from: from * this.m_rate - first, to: to * this.m_rate - first, columns }));
    return { image, from, to };
  }

  #refine(view, width) {
    clearTimeout(this.m_timer);
    const { from, to } = view;
    this.m_timer = setTimeout(async () => {
      if (!this.m_channels || view.from !== from || view.to !== to) return;
      const fine = await this.#make(from, to, Math.min(kWidest, width));
      if (!this.m_channels) return;
      this.m_images[1]?.image.close();
      this.m_images[1] = fine;
      this.m_onready();
    }, kSettle);
  }

  draw(context, width, height, view) {
    context.save();
    context.beginPath();
    context.rect(0, 0, width, height);
    context.clip();
    for (const { image, from, to } of this.m_images) {
      const [x, end] = [view.share(from) * width, view.share(to) * width];
      if (end > 0 && x < width) context.drawImage(image, x, 0, end - x, height);
    }
    context.restore();
    const highest = this.m_rate / 2000;
    for (const part of [1, 0.5]) {
      // Two figures fit beside the drawing, and say enough.
      const text = `${Number((highest * part).toPrecision(2))} k`;
      mark(context, part === 1 ? `${text}Hz` : text, height * (1 - part), height, colours().quiet);
    }
    const fine = this.m_images[1];
    const last = fine && fine.from === view.from && fine.to === view.to;
    if (!view.whole && !last && this.m_channels) this.#refine(view, Math.round(width));
  }

  release() {
    clearTimeout(this.m_timer);
    for (const { image } of this.m_images) image.close();
    this.m_images = [];
    this.m_channels = null;
  }
}
