// Power over time and frequency: Hann windows, the mean power of the channels, dB of full scale.
import FFT from 'fft.js';
import { makeColours } from './colours.js';

const kSoftest = -100;  // dBFS of the darkest colour
const kLoudest = -10;   // dBFS of the lightest
const kRows = 128;      // of an image; each shows the loudest of its bins

const m_colours = makeColours();
const m_plans = new Map();

// A window of about 25 ms.
export function windowSize(rate) {
  return rate > 24000 ? 1024 : rate > 12000 ? 512 : 256;
}

function plan(size) {
  if (!m_plans.has(size)) {
    const window = Float64Array.from({ length: size },
      (_, at) => 0.5 - 0.5 * Math.cos(2 * Math.PI * at / size));
    const fft = new FFT(size);
    m_plans.set(size, { window, fft, bins: fft.createComplexArray(), input: new Array(size).fill(0) });
  }
  return m_plans.get(size);
}

// Power of each bin around the sample `centre`, where a sine of full scale has 1; added to `power`.
function addPower(samples, centre, size, power) {
  const { window, fft, bins, input } = plan(size);
  const start = Math.round(centre) - size / 2;
  for (let at = 0; at < size; ++at) {
    const sample = samples[start + at];
    input[at] = sample === undefined ? 0 : sample * window[at];
  }
  fft.realTransform(bins, input);
  const scale = (4 / size) ** 2;  // The window's mean is a half, and half of the power is below zero.
  for (let bin = 0; bin < size / 2; ++bin) {
    power[bin] += scale * (bins[2 * bin] ** 2 + bins[2 * bin + 1] ** 2);
  }
}

// An image of the samples from..to with so many columns; the highest frequency is in the first row.
export function spectrogram(channels, rate, from, to, columns) {
  const size = windowSize(rate);
  const rows = Math.min(kRows, size / 2);
  const bins = size / 2 / rows;  // of a row
  const image = new ImageData(columns, rows);
  const pixels = new Uint32Array(image.data.buffer);
  const power = new Float64Array(size / 2);
  for (let x = 0; x < columns; ++x) {
    power.fill(0);
    const centre = from + (to - from) * (x + 0.5) / columns;
    for (const samples of channels) addPower(samples, centre, size, power);
    for (let row = 0; row < rows; ++row) {
      const most = Math.max(...power.subarray(row * bins, (row + 1) * bins));
      const level = 10 * Math.log10(most / channels.length + 1e-20);
      const share = (level - kSoftest) / (kLoudest - kSoftest);
      const colour = Math.max(0, Math.min(255, Math.round(255 * share)));
      pixels[(rows - 1 - row) * columns + x] = m_colours[colour];
    }
  }
  return image;
}
