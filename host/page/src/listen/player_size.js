// How high the parts of a player are, in px: known before anything is drawn, so that nothing moves.
export const kSpectrum = 84;
export const kRuler = 20;
const kMono = 56;
const kLane = 38;  // of several channels
const kLow = 18;   // of more than two

export function waveHeight({ channels }) {
  if ((channels ?? 1) === 1) return kMono;
  return channels === 2 ? 2 * kLane : Math.max(2 * kLane, channels * kLow);
}

export function playerHeight(player) {
  const versions = player.versions ?? [];
  const differ = player.difference && !player.difference.identical;
  const difference = differ && versions.length > 0 ? [versions[0]] : [];
  const tracks = [...versions, ...difference]
    .reduce((sum, version) => sum + waveHeight(version) + kSpectrum + 10, 0);
  return 150 + kRuler + tracks + 100 * (player.curves ?? []).length;
}
