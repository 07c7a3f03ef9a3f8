// Makes the pictures of docs/page.md: node tests/page/figures.mjs, with PAGE_TEMPLATE set; takes ffmpeg.
import { execFileSync } from 'node:child_process';
import { rmSync } from 'node:fs';
import path from 'node:path';
import { fileURLToPath } from 'node:url';
import { Browser } from './browser.mjs';
import { makeSample } from './sample.mjs';

const folder = path.join(path.dirname(fileURLToPath(import.meta.url)), '../../docs/figures');
const browser = await Browser.start();
const sample = makeSample({ cases: 80, heard: 8, rate: 16000, seconds: 6,
                            keys: ['output', 'input', 'against'] });

// The first card that failed, with its player drawn.
async function toCard(page) {
  const place = sample.data.cases.findIndex((one) => one.players.length > 0);
  await page.waitForSelector(`#case-${place}`);
  await page.$eval(`#case-${place}`, (card) => card.scrollIntoView());
  await page.waitForFunction((id) => document.querySelectorAll(
    `${id} canvas[aria-label*=peak]`).length === 4, {}, `#case-${place}`);
  await page.$eval(`#case-${place}`, (card) => card.scrollIntoView());
  await new Promise((done) => setTimeout(done, 1500));
}

async function picture(name, how, go = null) {
  const page = await browser.open(sample, how);
  await page.waitForFunction(() => document.querySelectorAll('.card').length === 80);
  if (go) await go(page);
  const out = path.join(folder, name);
  await page.screenshot({ path: `${out}.full.png` });
  // Few colours make a small file.
  execFileSync('ffmpeg', ['-loglevel', 'error', '-y', '-i', `${out}.full.png`, '-vf',
    'split[a][b];[a]palettegen=max_colors=96[p];[b][p]paletteuse=dither=none', out]);
  rmSync(`${out}.full.png`);
  await page.close();
}

await picture('page_first.png', { height: 860 });
await picture('page_card.png', { height: 1000 }, toCard);
await picture('page_dark.png', { height: 1000, dark: true }, toCard);
await picture('page_narrow.png', { width: 400, height: 860 }, toCard);
await browser.stop();
