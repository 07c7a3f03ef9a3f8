// The time axis: round times of the whole recording.
import { colours } from './theme.js';

const kApart = 70;  // px between words

function step(span, width) {
  const least = span * kApart / width;
  const ten = 10 ** Math.floor(Math.log10(least));
  return [1, 2, 5, 10].map((n) => n * ten).find((s) => s >= least);
}

export function drawRuler(context, width, height, view, start) {
  const by = step(view.span, width);
  const decimals = Math.max(0, -Math.floor(Math.log10(by) + 1e-9));
  context.strokeStyle = colours().line;
  context.fillStyle = colours().quiet;
  context.textBaseline = 'middle';
  context.textAlign = 'center';
  context.beginPath();
  for (let n = Math.ceil((start + view.from) / by); n * by <= start + view.to; ++n) {
    const x = view.share(n * by - start) * width;
    context.moveTo(x, height - 5);
    context.lineTo(x, height);
    const text = `${(n * by).toFixed(decimals)} s`;
    const half = context.measureText(text).width / 2;
    context.fillText(text, Math.max(half, Math.min(width - half, x)), height / 2 - 2);
  }
  context.stroke();
}
