// Figures, times and verdicts as readers write them.

const kDecibels = /^(dB|dBFS|dBTP|LUFS|LU)$/;
const kMinus = '\u2212';

// A number without its unit: decibels to a hundredth, others to four figures.
export function number(value, unit = '') {
  if (value === null || value === undefined) return '\u2013';
  if (typeof value !== 'number') return String(value);
  let text;
  if (kDecibels.test(unit)) {
    text = value.toFixed(2);
  } else if (Number.isInteger(value) || Math.abs(value) >= 10000) {
    text = String(Math.round(value)).replace(/\B(?=(\d{3})+$)/g, '\u2009');
  } else if (value !== 0 && Math.abs(value) < 0.001) {
    text = value.toExponential(2);
  } else {
    text = String(Number(value.toPrecision(4)));
  }
  return unsignedZero(text).replace(/-/g, kMinus);
}

// What rounds to nothing is neither above nor below it.
function unsignedZero(text) { return Number(text) === 0 ? text.replace('-', '') : text; }

// A number with its unit; "1" is none.
export function quantity(value, unit) {
  const bare = number(value, unit);
  return value === null || value === undefined || !unit || unit === '1'
    ? bare : `${bare}\u00a0${unit}`;
}

// Two levels that refer to full scale differ by decibels or loudness units, which do not.
export function differenceUnit(unit) {
  return { dBFS: 'dB', dBTP: 'dB', LUFS: 'LU' }[unit] ?? unit;
}

// A difference of two values of this unit, with its sign.
export function signed(value, unit = '') {
  return plus(value, unit) + quantity(value, differenceUnit(unit));
}

// The same without its unit, rounded as in it.
export function signedNumber(value, unit = '') { return plus(value, unit) + number(value, unit); }

function plus(value, unit) { return value > 0 && /[1-9]/.test(number(value, unit)) ? '+' : ''; }

// Seconds: 13.200 s, or 1:02.345 from a minute on.
export function time(seconds, decimals = 3) {
  if (seconds === null || seconds === undefined) return '\u2013';
  const rounded = Number(seconds.toFixed(decimals));
  const minutes = Math.floor(rounded / 60);
  if (minutes < 1) return `${rounded.toFixed(decimals)}\u00a0s`;
  const rest = (rounded - 60 * minutes).toFixed(decimals);
  return `${minutes}:${rest.padStart(decimals + 3, '0')}`;
}

// How long something took.
export function duration(seconds) {
  if (seconds === null || seconds === undefined) return '\u2013';
  if (seconds < 1) return `${number(seconds * 1000)}\u00a0ms`;
  return `${seconds.toFixed(2)}\u00a0s`;
}

// "2026-11-20T10:15:00Z" as "2026-11-20 10:15 UTC"; anything else as it is.
export function when(text) {
  const parts = /^(\d{4}-\d{2}-\d{2})T(\d{2}:\d{2})/.exec(text ?? '');
  return parts ? `${parts[1]} ${parts[2]} UTC` : text ?? '';
}

// One thing or several: count(2, 'case') is "2 cases".
export function count(how, what) {
  return `${number(how)} ${what}${how === 1 ? '' : 's'}`;
}

// "left" and "right" of two channels, nothing of a single one; of others their number from 1, as
// where it is not known how many there are.
export function channel(index, of = null) {
  if (index === null || index === undefined || of === 1) return '';
  if (of === 2 && index < 2) return index === 0 ? 'left' : 'right';
  return `channel ${index + 1}`;
}

// What stands in the middle of the lanes of a waveform, one for each channel.
export function laneWords(channels) {
  if (channels === 1) return ['\u2212\u221e'];
  return channels === 2 ? ['L', 'R'] : Array.from({ length: channels }, (_, at) => String(at + 1));
}

// How many channels a file of a case has, or null.
export function channelsOfFile(one, name) {
  const named = (one.files ?? []).filter((file) => file.name === name);
  return (named.find((file) => file.role === 'output') ?? named[0])?.channels ?? null;
}

// What a verdict or a change says, in words; empty for another word.
const kMeaning = {
  pass: 'did what it should',
  warn: 'a guard was hit or there is something to know',
  fail: 'did not do what it should',
  error: 'could not be run to its end',
  skip: 'was not run here',
  known: 'fails as is known',
  not_run: 'has not run yet',
  worse: 'worse than the other run',
  changed: 'neither more nor less is better, but it has changed',
  better: 'better than the other run',
  same: 'the same as the other run',
  undecided: 'too few cases or too much spread to say',
  new: 'the other run has it not',
  gone: 'only the other run has it',
};

export function meaning(word) { return Object.hasOwn(kMeaning, word) ? kMeaning[word] : ''; }

// A word of the data as a reader writes it.
export function plain(word) {
  return word === 'not_run' ? 'not run' : String(word ?? '');
}
