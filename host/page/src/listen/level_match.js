// Gains by which all versions sound equally loud.
import { quantity, signed } from '../words.js';

const kCeiling = -1;    // dBFS to which a version may be made louder
const kTooSoft = -70;   // LUFS: nothing to go by

function decibels(linear) { return linear > 0 ? 20 * Math.log10(linear) : -Infinity; }

export function linear(db) { return 10 ** (db / 20); }

// versions: {key, lufs, peak}, the peak linear. Returns a map of dB by key.
//
// All are brought to the loudest loudness that none exceeds the ceiling at, and that is not above the
// loudest version: a residual at -50 LUFS comes up to its reference as far as it can, and what
// is near full scale is not made louder. What is too soft to be measured stays as it is.
export function matchLevels(versions) {
  const measured = versions.filter((v) => typeof v.lufs === 'number' && v.lufs > kTooSoft);
  const gains = new Map(versions.map((v) => [v.key, 0]));
  if (measured.length < 2) return gains;
  const reachable = measured.map((v) => v.lufs + Math.max(0, kCeiling - decibels(v.peak)));
  const target = Math.min(Math.max(...measured.map((v) => v.lufs)), ...reachable);
  for (const v of measured) gains.set(v.key, target - v.lufs);
  return gains;
}

// What a version is heard at; one that nothing is done to has no figure.
export function playedText(db) {
  const text = signed(db, 'dB');
  return text === quantity(0, 'dB') ? 'played as it is' : `played ${text}`;
}
