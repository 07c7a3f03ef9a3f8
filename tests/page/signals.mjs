// Signals for the pages of the tests: the same ones on every machine.

// Numbers from -1 to 1.
export function random(seed) {
  let state = seed >>> 0;
  return () => {
    state = (Math.imul(state, 1664525) + 1013904223) >>> 0;
    return state / 2 ** 31 - 1;
  };
}

export function make(seconds, rate, at) {
  return Float64Array.from({ length: Math.round(seconds * rate) }, (_, n) => at(n / rate, n));
}

export function sine(seconds, rate, frequency, peak) {
  return make(seconds, rate, (t) => peak * Math.sin(2 * Math.PI * frequency * t));
}

export function noise(seconds, rate, peak, seed) {
  const next = random(seed);
  return make(seconds, rate, () => peak * next());
}

// Somebody speaks, roughly: syllables of a gliding voice with its formants, and a hiss between them.
export function speech(seconds, rate, peak, seed) {
  const next = random(seed);
  let phase = 0;
  let hiss = 0;
  return make(seconds, rate, (t) => {
    const syllable = Math.floor(t * 3.1 + seed);
    const part = (t * 3.1 + seed) % 1;
    const open = syllable % 5 === 4 ? 0 : Math.sin(Math.PI * Math.min(1, part * 1.25)) ** 2;
    const pitch = 118 + 22 * Math.sin(1.7 * t + seed) + 9 * (syllable % 3);
    phase += 2 * Math.PI * pitch / rate;
    const [first, second] = [[700, 1220], [300, 2300], [450, 1900], [500, 900]][syllable % 4];
    let voice = 0;
    for (let n = 1; open > 0 && n * pitch < Math.min(3600, rate / 2.2); ++n) {
      const f = n * pitch;
      const gain = 1 / (1 + ((f - first) / 130) ** 2) + 0.45 / (1 + ((f - second) / 190) ** 2) + 0.01;
      voice += gain * Math.sin(n * phase);
    }
    hiss = next() - 0.6 * hiss;
    const rustle = part > 0.8 && syllable % 2 === 0 ? 0.16 * hiss : 0.0015 * hiss;
    return peak * Math.max(-1, Math.min(1, 0.34 * open * voice + rustle));
  });
}

// The same, later and softer.
export function echo(samples, rate, delay, gain) {
  const by = Math.round(delay * rate);
  return samples.map((_, n) => n >= by ? gain * samples[n - by] : 0);
}

export function sum(...lists) {
  return lists[0].map((_, n) => lists.reduce((all, list) => all + list[n], 0));
}

export function scaled(samples, gain) { return samples.map((v) => gain * v); }

// Loudness as far as these tests need it: of signals that differ in nothing but level it differs as this.
export function level(samples) {
  const power = samples.reduce((all, v) => all + v * v, 0) / samples.length;
  return 10 * Math.log10(power + 1e-12);
}
