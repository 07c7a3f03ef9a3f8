// What is left of one version when another is taken away, as a version of its own.
import { quantity, signed } from '../words.js';

// The gain in dB of what is taken away, or null where it is not known. The measured one is that of the
// files; either recording may play softer than its file.
export function playedGain({ gain }, a, b) {
  return typeof gain === 'number' ? gain + (a.gain ?? 0) - (b.gain ?? 0) : null;
}

// Null where there is no difference, or where one of the two is not in the page.
export function differenceVersion(player) {
  const difference = player.difference;
  const labels = (difference?.of ?? []).map((key) => player.versions.find((v) => v.key === key));
  if (labels.length !== 2 || labels.some((v) => !v?.audio)) return null;
  const level = difference.identical ? 'none: they are the same'
    : typeof difference.db === 'number' ? quantity(difference.db, 'dBFS') : '';
  const relative = typeof difference.relative === 'number'
    ? `${signed(difference.relative, 'dB')} beside ${labels[1].label.toLowerCase()}` : '';
  return { key: 'difference', label: 'Difference', channels: labels[0].channels, lufs: null,
           file: [`${labels[0].label} less ${labels[1].label.toLowerCase()}`, level, relative]
             .filter(Boolean).join(' · '),
           gain: 0 };
}
