// A run whose every word wants to be markup or a program.
const kScript = '<script>window.hurt = 1</script>';
const kImage = '"><img src=x onerror="window.hurt = 2">';
const kLink = 'javascript:window.hurt=3';
const kEnd = '</script><svg onload="window.hurt = 4">';

export const kHostile = [kScript, kImage, kLink, kEnd];

// Each text of `data` becomes a hostile one that still tells which it was; words that choose are kept.
function spoil(value, path) {
  const kept = ['verdict', 'change', 'key', 'audio', 'better', 'unit', 'started', 'of', 'href'];
  if (typeof value === 'string') {
    return kept.includes(path.at(-1)) || value === '' ? value
      : `${kHostile[path.length % kHostile.length]} ${path.at(-1)}`;
  }
  if (Array.isArray(value)) {
    return kept.includes(path.at(-1)) ? value : value.map((item) => spoil(item, path));
  }
  if (value === null || typeof value !== 'object') return value;
  return Object.fromEntries(Object.entries(value).map(([key, item]) => [key, spoil(item, [...path, key])]));
}

// The same sample with hostile words, and links that lead elsewhere.
export function hostile(sample) {
  const data = spoil(sample.data, []);
  data.against.verdict = kScript;
  data.cases.forEach((one, at) => {
    one.id = `${kHostile[at % kHostile.length]} ${at}`;
    for (const player of one.players) {
      player.versions.forEach((version, n) => {
        version.href = [kLink, '//elsewhere.invalid/a.flac', 'files/../../a.flac',
                        'files/0-out.flac'][n % 4];
      });
    }
  });
  return { data, audio: sample.audio };
}
