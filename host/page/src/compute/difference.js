// What is left of one signal when another is taken away.

const kNone = 1e-12;  // mean square below which there is nothing to fit to

// The gain by which b is nearest to a, over all channels.
export function fitGain(a, b) {
  let product = 0;
  let power = 0;
  a.forEach((samples, channel) => {
    const other = b[channel % b.length];
    const length = Math.min(samples.length, other.length);
    for (let at = 0; at < length; ++at) {
      product += samples[at] * other[at];
      power += other[at] * other[at];
    }
  });
  return power > kNone * a.length * a[0].length ? product / power : 1;
}

// a less b times a gain, channel by channel.
export function subtract(a, b, gain) {
  return a.map((samples, channel) => {
    const other = b[channel % b.length];
    const result = new Float32Array(samples.length);
    for (let at = 0; at < samples.length; ++at) {
      result[at] = samples[at] - gain * (other[at] ?? 0);
    }
    return result;
  });
}
