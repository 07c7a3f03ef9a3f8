// The outline of a signal: lowest, highest and mean square of blocks, from which any zoom is drawn.

export const kBlock = 32;  // samples

// Of one channel: three lists with an entry for each block.
export function outline(samples) {
  const blocks = Math.ceil(samples.length / kBlock);
  const low = new Float32Array(blocks);
  const high = new Float32Array(blocks);
  const power = new Float32Array(blocks);
  for (let block = 0; block < blocks; ++block) {
    const from = block * kBlock;
    const to = Math.min(from + kBlock, samples.length);
    let least = samples[from];
    let most = samples[from];
    let sum = 0;
    for (let at = from; at < to; ++at) {
      const value = samples[at];
      if (value < least) least = value;
      if (value > most) most = value;
      sum += value * value;
    }
    low[block] = least;
    high[block] = most;
    power[block] = sum / (to - from);
  }
  return { low, high, power };
}

// The largest absolute value.
export function peakOf(outlines) {
  let peak = 0;
  for (const { low, high } of outlines) {
    for (let block = 0; block < low.length; ++block) {
      peak = Math.max(peak, high[block], -low[block]);
    }
  }
  return peak;
}

// What a column of the drawing shows: {low, high, rms} of the samples from..to (fractions are fine).
export function column(samples, { low, high, power }, from, to, into) {
  const first = Math.max(0, Math.floor(from));
  const last = Math.min(samples.length, Math.max(first + 1, Math.ceil(to)));
  let least = Infinity;
  let most = -Infinity;
  let sum = 0;
  let parts = 0;
  if (to - from < 4 * kBlock) {
    for (let at = first; at < last; ++at) {
      const value = samples[at];
      if (value < least) least = value;
      if (value > most) most = value;
      sum += value * value;
    }
    parts = last - first;
  } else {
    const end = Math.min(low.length, Math.ceil(last / kBlock));
    for (let block = Math.floor(first / kBlock); block < end; ++block) {
      if (low[block] < least) least = low[block];
      if (high[block] > most) most = high[block];
      sum += power[block];
      ++parts;
    }
  }
  into.low = parts > 0 ? least : 0;
  into.high = parts > 0 ? most : 0;
  into.rms = parts > 0 ? Math.sqrt(sum / parts) : 0;
  return into;
}
