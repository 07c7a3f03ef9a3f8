// A player: all versions of one recording, seen on one time axis and heard at one place.
import { el } from '../dom.js';
import { Canvas, kGutter } from '../draw/canvas.js';
import { Curve } from '../draw/curve.js';
import { drawRuler } from '../draw/ruler.js';
import { onTheme } from '../draw/theme.js';
import { TimeView } from '../draw/time_view.js';
import { time } from '../words.js';
import { Visible } from '../compute/visible.js';
import { drawingSlice, slice } from '../compute/slices.js';
import { AbxPanel } from './abx_panel.js';
import { Bar } from './bar.js';
import { registerPlayer, usedPlayer } from './keys.js';
import { joinMarks, Layer } from './layer.js';
import { differenceVersion } from './difference_version.js';
import { linear, matchLevels, playedText } from './level_match.js';
import { loadTracks } from './load.js';
import { playerFrame } from './player_frame.js';
import { kRuler } from './player_size.js';
import { playerRate } from './recordings.js';
import { Track } from './track.js';
import { Transport } from './transport.js';

const kBefore = 0.5;     // s that are heard before a guard's place
const kLeastLoop = 0.02; // s
const s_visible = new Visible({ near: 300, far: 3000 });
let s_playing = null;

export class Player {
  constructor(player, one) {
    this.data = player;
    this.start = player.start ?? 0;
    this.seconds = player.seconds;
    this.marks = joinMarks((player.marks ?? []).filter((m) => m.at >= this.start &&
                                                              m.at <= this.start + this.seconds));
    this.matching = true;
    this.m_loading = null;
    this.m_turn = 0;
    this.m_blind = false;
    this.m_drawing = false;
    this.width = 0;
    const heard = (player.versions ?? []).filter((v) => v.audio);
    this.rate = playerRate(heard.length > 0 ? heard : [{}]);
    this.view = new TimeView(this.seconds);
    this.view.onchange = () => this.redraw(slice);
    this.transport = new Transport(this.rate, this.seconds);
    this.transport.onend = () => this.#stopped();
    this.bar = new Bar(this);
    this.abx = new AbxPanel(this, heard);
    this.m_layers = [];
    const difference = differenceVersion(player);
    this.heard = heard;
    this.tracks = [...heard, difference].filter(Boolean).map((version, at) =>
      new Track(version, at, this, this.#layer(at === 0)));
    this.curves = (player.curves ?? []).map((curve) => new Curve(curve, this.start));
    this.m_ruler = new Canvas(kRuler, this.#shown());
    this.m_wide = el('div', { class: 'pane-width' }, this.m_ruler.node);
    this.node = playerFrame(this, one, this.m_wide, () => usedPlayer(this));
    this.hear(this.tracks[0]?.key);
    registerPlayer(this);
    onTheme(() => { this.curves.forEach((curve) => curve.release()); this.redraw(); });
    s_visible.watch(this.node, () => this.load(), () => this.#release());
    new ResizeObserver(([entry]) => this.#resize(entry.contentRect.width)).observe(this.m_wide);
  }

  #layer(first) {
    const layer = new Layer(this, first);
    this.m_layers.push(layer);
    return layer.node;
  }

  // Recordings, decoded and drawn; once until they are given back.
  load() {
    if (!this.m_loading) {
      const turn = ++this.m_turn;
      const wanted = () => turn === this.m_turn;
      this.m_loading = loadTracks(this, wanted).then(
        (all) => (all ? this.#loaded() : null),
        (error) => this.#say(`Cannot be played: ${error.message}`));
    }
    return this.m_loading;
  }

  #loaded() {
    this.transport.setBuffers(new Map(this.tracks.map((track) => [track.key, track.buffer])));
    this.#match();
    this.node.classList.add('is-drawn');
    this.redraw();
  }

  #release() {
    if (!this.m_loading || this.transport.playing) return;
    this.m_loading = null;
    this.m_turn += 1;
    this.transport.setBuffers(new Map());
    this.node.classList.remove('is-drawn');
    for (const part of [...this.tracks, ...this.curves]) part.release();
  }

  #resize(width) { this.width = Math.floor(width); this.redraw(); }

  #shown() {
    return `Time from ${time(this.start + this.view.from)} to ${time(this.start + this.view.to)}`;
  }

  // Draws everything anew, in small steps: one in a frame while a reader scrolls, together when he zooms.
  redraw(step = drawingSlice) {
    if (this.m_drawing) return;
    this.m_drawing = true;
    step(() => {
      this.m_drawing = false;
      if (this.width < 60) return;
      this.m_ruler.draw(this.width, (context, width) =>
        drawRuler(context, width, kRuler, this.view, this.start));
      this.m_ruler.node.setAttribute('aria-label', this.#shown());
      const top = Math.max(0.001, ...this.tracks.filter((t) => t.key !== 'difference')
        .map((track) => track.peak));
      for (const track of this.tracks) {
        const own = track.key === 'difference' ? Math.max(0.0001, track.peak) : top;
        step(() => track.draw(this.width, this.view, own, step));
      }
      for (const curve of this.curves) step(() => curve.draw(this.width, this.view));
      this.#place();
    });
  }

  #place() {
    for (const layer of this.m_layers) layer.place(this.view, this.transport.loop);
    this.#showPlace();
  }

  get position() { return this.transport.position; }

  #showPlace() {
    const at = this.position;
    const share = this.view.share(at);
    const inner = this.width - kGutter;
    for (const layer of this.m_layers) layer.playAt(share * inner, share >= 0 && share <= 1);
    this.bar.showPlace(at);
  }

  #tick() {
    if (!this.transport.playing) return;
    this.view.follow(this.position);
    this.#showPlace();
    requestAnimationFrame(() => this.#tick());
  }

  #stopped() {
    this.bar.showPlaying(false);
    this.#showPlace();
  }

  #say(words) { this.bar.state.textContent = words; }

  async play() {
    await this.load();
    if (s_playing && s_playing !== this) s_playing.stop();
    s_playing = this;
    try {
      await this.transport.play(() => this.#say('No sound output answers yet'));
    } catch (error) {
      this.#say(`Cannot be played: ${error.message}`);
      return;
    }
    // What cannot be decoded has said so.
    if (!this.transport.playing) return;
    this.#say('');
    this.bar.showPlaying(true);
    this.#tick();
  }

  stop() { this.transport.stop(); this.#stopped(); }

  toggle() { return this.transport.playing ? this.stop() : this.play(); }

  seek(seconds) {
    this.transport.seek(seconds);
    this.view.follow(this.position);
    this.#showPlace();
  }

  covers(guard) {
    return guard.at >= this.start && guard.at <= this.start + this.seconds &&
           this.heard.some(({ key, file }) => key === 'output' && file === guard.file);
  }

  // Plays from a little before a place of the whole recording, which no loop keeps from it.
  hearFrom(at) {
    this.node.scrollIntoView({ block: 'nearest' });
    this.node.focus({ preventScroll: true });
    const { loop } = this.transport;
    const place = at - this.start;
    if (loop && (place < loop.from || place >= loop.to)) this.setLoop(null);
    this.seek(place - kBefore);
    return this.play();
  }

  // Lets a version be heard.
  hear(key) {
    if (this.m_blind) return;
    this.transport.hear(key);
    for (const track of this.tracks) {
      track.button.setAttribute('aria-pressed', String(track.key === key));
      track.node.classList.toggle('is-heard', track.key === key);
    }
  }

  hearAt(place) {
    if (this.m_blind) {
      if (place < 2) this.abx.hear('ab'[place]);
    } else if (place < this.tracks.length) {
      this.hear(this.tracks[place].key);
    }
  }

  hearNext(by) {
    if (this.m_blind) return;
    const now = this.tracks.findIndex((track) => track.key === this.transport.heard);
    this.hearAt(Math.max(0, Math.min(this.tracks.length - 1, now + by)));
  }

  // While a blind test runs nothing tells which version is heard.
  blind(on) {
    const key = this.transport.heard;
    this.hear(null);
    this.m_blind = on;
    this.transport.hear(key);
    this.node.classList.toggle('is-blind', on);
    for (const track of this.tracks) track.button.disabled = on;
    this.bar.match.disabled = on;
    this.#match();
    if (!on) this.hear(this.tracks[0].key);
  }

  hearBlind(key) {
    this.transport.hear(key);
    if (!this.transport.playing) this.play();
  }

  blindKey() {
    if (this.abx.running) {
      this.abx.hear('x');
    } else if (this.tracks.length > 1) {
      this.abx.start();
    }
  }

  setMatching(on) {
    if (this.m_blind) return;
    this.matching = on;
    this.bar.match.checked = on;
    this.#match();
  }

  #match() {
    const on = this.matching || this.m_blind;
    const heard = this.tracks.filter((track) => track.key !== 'difference');
    const gains = on ? matchLevels(heard.map(({ key, version, peak }) =>
      ({ key, lufs: version.lufs, peak }))) : new Map();
    // What is left is heard as loud as it is beside what it was taken from.
    gains.set('difference', gains.get(heard[0]?.key) ?? 0);
    this.transport.setGains(new Map([...gains].map(([key, db]) => [key, linear(db)])));
    for (const track of this.tracks) {
      track.say(on && track.loaded ? playedText(gains.get(track.key) ?? 0) : '');
    }
  }

  previewLoop(a, b) {
    const loop = { from: Math.min(a, b), to: Math.max(a, b) };
    for (const layer of this.m_layers) layer.place(this.view, loop);
  }

  // From a to b in any order; null for none.
  setLoop(a, b = null) {
    const [from, to] = a === null ? [0, 0] : [Math.min(a, b), Math.min(Math.max(a, b), this.seconds)];
    const loop = to - from >= kLeastLoop ? { from, to } : null;
    this.transport.setLoop(loop);
    if (loop && !this.transport.playing) this.transport.seek(from);
    this.bar.clear.hidden = !loop;
    this.#place();
  }

  loopFrom() {
    const { loop } = this.transport;
    const from = this.position;
    this.setLoop(from, loop && loop.to > from ? loop.to : this.seconds);
  }

  loopTo() {
    const { loop } = this.transport;
    const to = this.position;
    this.setLoop(loop && loop.from < to ? loop.from : 0, to);
  }
}

export function makePlayer(player, one) {
  const made = new Player(player, one);
  return { node: made.node, covers: (guard) => made.covers(guard), hear: (at) => made.hearFrom(at) };
}
