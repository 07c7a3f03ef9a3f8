// What is left of one version when another is taken away, as a version of its own.
import { quantity, signed } from '../words.js';

// The gain in dB of what is taken away, or null where it is not known. The measured one is that of the
// files; either recording may play softer than its file.
export function playedGain({ gain }, a, b) {
  return typeof gain === 'number' ? gain + (a.gain ?? 0) - (b.gain ?? 0) : null;
}

// The two that a difference is of.
function pair({ difference, versions }) {
  return (difference?.of ?? []).map((key) => versions.find((v) => v.key === key)).filter(Boolean);
}

// A sentence where nothing is left: there is nothing to draw or to hear of it.
export function sameWords(player) {
  const labels = pair(player);
  if (labels.length !== 2 || !player.difference.identical) return '';
  return `No difference: ${labels[0].label} and ${labels[1].label} are the same here, sample for sample.`;
}

// Null where there is no difference, or where one of the two is not in the page.
export function differenceVersion(player) {
  const difference = player.difference;
  const labels = pair(player);
  if (labels.length !== 2 || difference.identical || labels.some((v) => !v.audio)) return null;
  const level = typeof difference.db === 'number' ? quantity(difference.db, 'dBFS') : '';
  const relative = typeof difference.relative === 'number'
    ? `${signed(difference.relative, 'dB')} beside ${labels[1].label.toLowerCase()}` : '';
  return { key: 'difference', label: 'Difference', channels: labels[0].channels, lufs: null,
           file: [`${labels[0].label} less ${labels[1].label.toLowerCase()}`, level, relative]
             .filter(Boolean).join(' · '),
           gain: 0 };
}
