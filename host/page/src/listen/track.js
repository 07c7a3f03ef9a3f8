// One version of a recording: its name and level, its waveform and its spectrogram, and over them the
// places that matter.
import { el } from '../dom.js';
import { Canvas } from '../draw/canvas.js';
import { Spectrum } from '../draw/spectrum.js';
import { colourOf } from '../draw/theme.js';
import { drawWave } from '../draw/wave.js';
import { ask } from '../compute/ask.js';
import { number, quantity } from '../words.js';
import { channelsOf } from './recordings.js';
import { kSpectrum, waveHeight } from './player_size.js';

// A whole file beside the page: nothing but a path below its own folder is a link.
function fileLink(version) {
  const safe = /^files\/[^:]+$/.test(version.href ?? '') && !version.href.includes('..');
  return safe ? el('a', { href: version.href, class: 'quiet' }, 'whole file')
              : null;
}

function about(version) {
  const facts = [
    version.file,
    version.rate ? `${number(version.rate / 1000)} kHz` : '',
    version.channels ? { 1: 'mono', 2: 'stereo' }[version.channels] ?? `${version.channels} channels`
                     : '',
    typeof version.lufs === 'number' ? `${version.lufs.toFixed(1)} LUFS`.replace('-', '\u2212') : '',
    typeof version.delay === 'number' && Math.abs(version.delay) >= 0.00005
      ? `aligned by ${quantity(version.delay * 1000, 'ms')}` : '',
    version.gain ? `${quantity(Math.abs(version.gain), 'dB')} softer than the file` : '',
  ];
  return facts.filter(Boolean).join(' · ');
}

export class Track {
  // layer is what lies over the drawings: places, loop, the place that is heard.
  constructor(version, place, player, layer) {
    this.version = version;
    this.key = version.key;
    this.buffer = null;
    this.peak = 0;
    this.m_shown = null;
    this.m_rate = player.rate;
    this.m_wave = new Canvas(waveHeight(version), `Waveform of ${version.label}`);
    this.m_spectrum_pane = new Canvas(kSpectrum, `Spectrogram of ${version.label}`);
    this.m_spectrum = new Spectrum(player.rate, () => player.redraw());
    this.button = el('button', { type: 'button', class: 'version', 'aria-pressed': 'false',
                                 onclick: () => player.hear(version.key) },
                     el('kbd', {}, String(place + 1)), version.label);
    this.match = el('span', { class: 'match' });
    this.level = el('span', { class: 'quiet' }, about(version));
    this.node = el('div', { class: `track of-${version.key}` },
      el('div', { class: 'track-head' }, this.button, this.level, this.match, fileLink(version)),
      el('div', { class: 'panes' }, this.m_wave.node, this.m_spectrum_pane.node, layer));
    this.panes = this.node.lastChild;
  }

  // Takes what is to be heard and seen; resolves when it can be drawn, or is not wanted any more.
  async load(buffer, width, wanted) {
    const channels = channelsOf(buffer);
    const { outlines, peak } = await ask('outline', () => ({ channels: channels.map((c) => c.slice()) }));
    if (!wanted()) return;
    this.buffer = buffer;
    this.peak = peak;
    this.m_shown = { channels, outlines, rate: buffer.sampleRate };
    this.m_wave.node.setAttribute('aria-label', `Waveform of ${this.version.label}, peak ` +
      (peak > 0 ? quantity(20 * Math.log10(peak), 'dBFS') : 'none: silence'));
    await this.m_spectrum.load(channels, buffer.duration, width);
  }

  get loaded() { return this.m_shown !== null; }

  // The two drawings are two steps: each is short.
  draw(width, view, top, step) {
    if (!this.m_shown) return;
    this.m_wave.draw(width, (context, inner) => drawWave(
      context, inner, this.m_wave.height, view, this.m_shown, top, colourOf(this.key)));
    step(() => {
      if (!this.m_shown) return;
      this.m_spectrum_pane.draw(width, (context, inner) =>
        this.m_spectrum.draw(context, inner, kSpectrum, view));
    });
  }

  release() {
    this.buffer = null;
    this.m_shown = null;
    this.m_spectrum.release();
    this.m_wave.clear();
    this.m_spectrum_pane.clear();
  }

  say(text) { this.match.textContent = text; }
}

