// Writes a page as the bench does: data and recordings in the places that the template has for them.
import { readFileSync, writeFileSync } from 'node:fs';

const kData = '<!--DATA-->';
const kAudio = '<!--AUDIO-->';

// sample: {data, audio: a map of FLAC files by key}
export function writePage(template, sample, out) {
  const page = readFileSync(template, 'utf8');
  for (const marker of [kData, kAudio]) {
    if (page.split(`\n${marker}\n`).length !== 2) throw new Error(`${marker} is not there once`);
  }
  const json = JSON.stringify(sample.data).replace(/</g, '\\u003c');
  const data = `<script type="application/json" id="data">${json}</script>`;
  const audio = [...sample.audio].map(([key, bytes]) =>
    `<script type="application/octet-stream" id="audio-${key}">${bytes.toString('base64')}</script>`);
  writeFileSync(out, page.replace(kData, () => data).replace(kAudio, () => audio.join('\n')));
  return out;
}
