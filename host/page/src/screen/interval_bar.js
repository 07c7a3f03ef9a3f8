// The interval of a measure's difference as a bar: zero in the middle, the margin shaded around it, more
// to the right.
import { svg } from '../dom.js';
import { differenceUnit, quantity, signed } from '../words.js';

const kWide = 150;
const kHigh = 18;

// How far the bar reaches on either side of zero, in the unit of the measure.
function reach(measure) {
  const ends = [measure.low, measure.high, measure.difference].map((v) => Math.abs(v ?? 0));
  return Math.max(...ends, 2 * (measure.margin ?? 0)) * 1.1 || 1;
}

export function describeInterval(measure) {
  const unit = measure.unit;
  const margin = `margin ${quantity(measure.margin, differenceUnit(unit))}`;
  if (measure.low === null || measure.low === undefined) return `too few for an interval, ${margin}`;
  return `from ${signed(measure.low, unit)} to ${signed(measure.high, unit)}, ${margin}`;
}

export function intervalBar(measure) {
  const words = describeInterval(measure);
  const scale = kWide / 2 / reach(measure);
  const x = (value) => kWide / 2 + value * scale;
  const margin = measure.margin ?? 0;
  const middle = kHigh / 2;
  const whole = svg('svg', { class: `interval is-${measure.verdict}`, viewBox: `0 0 ${kWide} ${kHigh}`,
                             width: kWide, height: kHigh, role: 'img', 'aria-label': words },
    svg('title', {}, words),
    svg('rect', { class: 'margin', x: x(-margin), y: 0, width: x(margin) - x(-margin),
                  height: kHigh }),
    svg('line', { class: 'zero', x1: x(0), x2: x(0), y1: 0, y2: kHigh }));
  if (measure.low !== null && measure.low !== undefined) {
    whole.append(
      svg('line', { class: 'reach', x1: x(measure.low), x2: x(measure.high), y1: middle, y2: middle }),
      svg('path', { class: 'ends', d: `M${x(measure.low)} 5v8M${x(measure.high)} 5v8` }));
  }
  if (measure.difference !== null && measure.difference !== undefined) {
    whole.append(svg('circle', { class: 'mean', cx: x(measure.difference), cy: middle, r: 3.5 }));
  }
  return whole;
}
