// Colours of a spectrogram, from soft to loud: each step is lighter than the one before it, so that it is
// read alike by eyes that tell colours apart in other ways, and on paper.

const kStops = [
  [0.00, 8, 8, 20], [0.15, 28, 16, 68], [0.32, 84, 20, 110], [0.48, 142, 36, 104],
  [0.64, 200, 66, 74], [0.78, 238, 112, 40], [0.90, 250, 184, 48], [1.00, 252, 250, 190],
];

// 256 colours as bytes of red, green, blue and opacity.
export function makeColours() {
  const colours = new Uint32Array(256);
  const bytes = new Uint8Array(colours.buffer);
  let stop = 0;
  for (let at = 0; at < 256; ++at) {
    const share = at / 255;
    while (stop < kStops.length - 2 && share > kStops[stop + 1][0]) ++stop;
    const [from, ...low] = kStops[stop];
    const [to, ...high] = kStops[stop + 1];
    const part = (share - from) / (to - from);
    for (let c = 0; c < 3; ++c) bytes[4 * at + c] = Math.round(low[c] + part * (high[c] - low[c]));
    bytes[4 * at + 3] = 255;
  }
  return colours;
}
