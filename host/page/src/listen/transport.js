// Plays all versions of a recording at once and lets one of them be heard: what is heard changes
// without a gap and at the same place.
import { channelsOf, toBuffer } from './recordings.js';

const kFade = 0.008;  // s, from one version to the next
const kAhead = 0.02;  // s, after which what was made ready begins
const kMostChannels = 32;  // of a buffer, in every browser
const kPatience = 5000;  // ms, after which it is said that a sound output has not begun yet
const kRest = 1000;   // ms, after which the audio of a page that is still is switched off

const m_contexts = new Map();
const m_running = new Set();

// One clock for each rate: a browser resamples on its way out, not each source by itself.
function contextOf(rate) {
  if (!m_contexts.has(rate)) {
    m_contexts.set(rate, new AudioContext({ sampleRate: rate, latencyHint: 'interactive' }));
  }
  return m_contexts.get(rate);
}

function isUsed(context) { return [...m_running].some((one) => one.context === context); }

// Without a sound output some browsers never say that they cannot play, and that of a busy machine is late.
async function running(context, onlate) {
  const late = setTimeout(onlate, kPatience);
  try {
    await context.resume();
  } finally {
    clearTimeout(late);
  }
}

// A gain that goes to its next value in a straight line: two versions that are alike add up to
// themselves meanwhile. Not every browser tells where a gain is on its way, so this is worked out here.
class Fader {
  constructor(context, gain) {
    this.node = new GainNode(context, { gain });
    this.m_from = gain;
    this.m_to = gain;
    this.m_start = -Infinity;
  }

  #now(time) {
    const part = Math.min(1, Math.max(0, (time - this.m_start) / kFade));
    return this.m_from + part * (this.m_to - this.m_from);
  }

  fade(to) {
    const now = this.node.context.currentTime;
    this.m_from = this.#now(now);
    this.m_to = to;
    this.m_start = now;
    const parameter = this.node.gain;
    parameter.cancelScheduledValues(now);
    parameter.setValueAtTime(this.m_from, now);
    parameter.linearRampToValueAtTime(to, now + kFade);
  }
}

export class Transport {
  constructor(rate, seconds) {
    this.rate = rate;
    this.seconds = seconds;
    this.loop = null;          // {from, to} in s
    this.heard = null;         // the key of the version
    this.onend = () => {};
    this.m_all = null;          // one buffer with the channels of all versions
    this.m_places = new Map();  // which of them are whose: {first, count} by key
    this.m_gains = new Map();  // linear, by key
    this.m_at = 0;             // the place while nothing plays
    this.m_run = null;         // what plays: {started, from, source, faders}
  }

  // Versions by key, of one length; none gives the memory back. They become the channels of one
  // source: several would begin apart from each other on a busy machine.
  setBuffers(buffers) {
    this.m_all = null;
    this.m_places = new Map();
    if (buffers.size === 0) return;
    const each = Math.floor(kMostChannels / buffers.size);
    const channels = [];
    for (const [key, buffer] of buffers) {
      const own = channelsOf(buffer).slice(0, each);
      this.m_places.set(key, { first: channels.length, count: own.length });
      channels.push(...own);
    }
    this.m_all = toBuffer(channels, this.rate);
  }

  get playing() { return this.m_run !== null; }

  // The clock of what plays, or null.
  get context() { return this.m_run?.context ?? null; }

  // Seconds from the start of the recording.
  get position() {
    if (!this.m_run) return this.m_at;
    const { context, started, from, loop } = this.m_run;
    const at = from + Math.max(0, context.currentTime - started);
    if (loop && at >= loop.to) return loop.from + (at - loop.from) % (loop.to - loop.from);
    return Math.min(at, this.seconds);
  }

  // Places are whole samples, so that a clock of the page and the sources do not drift apart.
  #whole(seconds) { return Math.round(seconds * this.rate) / this.rate; }

  // Calls onlate() where a sound output does not answer soon; once it does, it plays.
  async play(onlate) {
    if (this.m_run) return;
    const context = contextOf(this.rate);
    if (context.state !== 'running') await running(context, onlate);
    if (!this.m_run && this.m_all) this.#begin(context);
  }

  #begin(context) {
    const loop = this.loop;
    let from = this.m_at;
    if (from >= this.seconds - 0.001) from = 0;
    if (loop && (from < loop.from || from >= loop.to)) from = loop.from;
    from = this.#whole(from);
    const source = new AudioBufferSourceNode(context, { buffer: this.m_all });
    if (loop) {
      source.loop = true;
      source.loopStart = loop.from;
      source.loopEnd = loop.to;
    }
    const faders = this.#connect(context, source);
    const ahead = context.currentTime + kAhead;
    source.start(ahead, from);
    // On a busy machine it may begin later than that.
    const started = Math.max(ahead, context.currentTime);
    const run = { context, started, from, loop, source, faders };
    this.m_run = run;
    m_running.add(this);
    source.onended = () => { if (this.m_run === run) this.#ended(); };
  }

  // Leads the channels of each version through a gain of its own; returns these by key.
  #connect(context, source) {
    const splitter = new ChannelSplitterNode(context,
                                             { numberOfOutputs: this.m_all.numberOfChannels });
    source.connect(splitter);
    const faders = new Map();
    for (const [key, { first, count }] of this.m_places) {
      const merger = new ChannelMergerNode(context, { numberOfInputs: count });
      for (let at = 0; at < count; ++at) splitter.connect(merger, first + at, at);
      const fader = new Fader(context, this.#level(key));
      merger.connect(fader.node).connect(context.destination);
      faders.set(key, fader);
    }
    return faders;
  }

  #ended() {
    this.stop();
    this.m_at = 0;
    this.onend();
  }

  // Stops where it is.
  stop() {
    if (!this.m_run) return;
    this.m_at = this.position;
    const { context, source, faders } = this.m_run;
    this.m_run = null;
    for (const fader of faders.values()) fader.fade(0);
    source.stop(context.currentTime + 2 * kFade);
    m_running.delete(this);
    setTimeout(() => { if (!isUsed(context)) context.suspend(); }, kRest);
  }

  #restart() {
    if (!this.m_run) return;
    const { context } = this.m_run;
    this.stop();
    this.#begin(context);
  }

  seek(seconds) {
    const to = Math.max(0, Math.min(this.seconds, seconds));
    if (!this.m_run) {
      this.m_at = to;
      return;
    }
    const { context } = this.m_run;
    this.stop();
    this.m_at = to;
    this.#begin(context);
  }

  // {from, to}, or null for none. What plays goes on at its place where that is inside.
  setLoop(loop) {
    this.loop = loop && { from: this.#whole(loop.from), to: this.#whole(loop.to) };
    this.#restart();
  }

  #level(key) { return key === this.heard ? this.m_gains.get(key) ?? 1 : 0; }

  // Lets the version of this key be heard.
  hear(key) {
    this.heard = key;
    this.#fade();
  }

  // Linear gains by key.
  setGains(gains) {
    this.m_gains = gains;
    this.#fade();
  }

  #fade() {
    if (!this.m_run) return;
    for (const [key, fader] of this.m_run.faders) fader.fade(this.#level(key));
  }
}

