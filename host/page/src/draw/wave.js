// The waveform: what lies between the peaks lighter, the RMS of each column stronger, a lane for each
// channel. Full scale is marked at the edge where it is reached.
import { column } from '../compute/envelope.js';
import { mark } from './canvas.js';
import { laneWords } from '../words.js';
import { colours } from './theme.js';

const kFull = 0.9999;
const kDecibels = (value) => `${(20 * Math.log10(value)).toFixed(0)} dB`.replace('-', '\u2212');

// shown: {channels, outlines, rate}; top is the value at the edge of a lane.
export function drawWave(context, width, height, view, shown, top, colour) {
  const { channels, outlines } = shown;
  const lane = height / channels.length;
  channels.forEach((samples, at) => {
    const middle = lane * (at + 0.5);
    const columns = reduce(samples, outlines[at], view, shown.rate, width);
    context.strokeStyle = colours().line;
    context.beginPath();
    context.moveTo(0, middle);
    context.lineTo(width, middle);
    context.stroke();
    drawLane(context, columns, middle, (lane / 2 - 2) / top, colour);
    markFull(context, columns, lane * at);
  });
  mark(context, kDecibels(top), 6, height, colours().quiet);
  laneWords(channels.length).forEach((word, at) => {
    mark(context, word, lane * (at + 0.5), height, colours().quiet);
  });
}

function reduce(samples, outline, view, rate, width) {
  const list = [];
  for (let x = 0; x < width; ++x) {
    list.push(column(samples, outline, view.time(x / width) * rate, view.time((x + 1) / width) * rate,
                     {}));
  }
  return list;
}

function drawLane(context, columns, middle, scale, colour) {
  context.fillStyle = colour;
  context.globalAlpha = 0.42;
  area(context, columns, (c) => middle - c.high * scale, (c) => middle - c.low * scale);
  context.globalAlpha = 1;
  area(context, columns, (c) => middle - c.rms * scale, (c) => middle + c.rms * scale);
}

// Fills what lies between two lines; never thinner than a hair, so that silence is seen.
function area(context, columns, upper, lower) {
  context.beginPath();
  columns.forEach((c, x) => {
    const y = upper(c);
    context.rect(x, y, 1, Math.max(0.6, lower(c) - y));
  });
  context.fill();
}

function markFull(context, columns, y) {
  context.fillStyle = colours().fail;
  columns.forEach((c, x) => {
    if (c.high >= kFull || c.low <= -kFull) context.fillRect(x, y, 1.5, 3);
  });
}
