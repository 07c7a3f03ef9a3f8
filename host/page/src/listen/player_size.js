// How high the parts of a player are, in px: known before anything is drawn, so that nothing moves.
export const kSpectrum = 84;
export const kRuler = 20;
const kMono = 56;
const kStereo = 76;

export function waveHeight(version) { return (version.channels ?? 1) > 1 ? kStereo : kMono; }

export function playerHeight(player) {
  const versions = player.versions ?? [];
  const difference = player.difference && versions.length > 0 ? [versions[0]] : [];
  const tracks = [...versions, ...difference]
    .reduce((sum, version) => sum + waveHeight(version) + kSpectrum + 10, 0);
  return 150 + kRuler + tracks + 100 * (player.curves ?? []).length;
}
