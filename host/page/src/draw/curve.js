// A figure over time, such as ERLE, on the time axis of the recordings above it.
import uPlot from 'uplot';
import { el } from '../dom.js';
import { number, quantity } from '../words.js';
import { kGutter } from './canvas.js';
import { colours } from './theme.js';

export const kCurveHeight = 90;

function describe(curve) {
  const values = curve.values.filter((v) => typeof v === 'number');
  if (values.length === 0) return `${curve.name} over time: no values`;
  const mean = values.reduce((sum, v) => sum + v, 0) / values.length;
  return `${curve.name} over time: from ${number(Math.min(...values), curve.unit)} to ` +
         `${quantity(Math.max(...values), curve.unit)}, mean ${quantity(mean, curve.unit)}`;
}

export class Curve {
  // start: the time of the recording's first sample, as the curve counts.
  constructor(curve, start) {
    this.m_curve = curve;
    this.m_times = curve.values.map((_, at) => curve.from + at * curve.step - start);
    this.m_plot = null;
    this.m_box = el('div', { class: 'pane curve', role: 'img', 'aria-label': describe(curve) });
    this.m_box.style.height = `${kCurveHeight}px`;
    this.node = el('div', { class: 'track is-curve' },
      el('div', { class: 'track-head' }, el('strong', {}, curve.name),
         el('span', { class: 'quiet' }, `${curve.unit} over time`)),
      this.m_box);
  }

  draw(width, view) {
    if (!this.m_plot) this.#make(width, view);
    if (this.m_plot.width !== width) this.m_plot.setSize({ width, height: kCurveHeight });
    this.m_plot.setScale('x', { min: view.from, max: view.to });
  }

  #make(width, view) {
    const ink = colours();
    this.m_plot = new uPlot({
      width, height: kCurveHeight, padding: [6, 0, 4, 0],
      legend: { show: false }, cursor: { show: false }, select: { show: false },
      scales: { x: { time: false, range: () => [view.from, view.to] } },
      axes: [{ show: false },
             { size: kGutter, stroke: ink.quiet, font: '10px system-ui, sans-serif', space: 24,
               grid: { stroke: ink.line, width: 1 }, ticks: { show: false }, gap: 2 }],
      series: [{}, { stroke: ink.accent, width: 1.5, spanGaps: false, points: { show: false } }],
    }, [this.m_times, this.m_curve.values], this.m_box);
  }

  // Made again when it is next drawn, as in other colours.
  release() {
    this.m_plot?.destroy();
    this.m_plot = null;
  }
}
