// A page with one player, opened so that what it plays can be listened to.
import { listen } from './ear.mjs';
import { flac } from './flac.mjs';
import { makeSample } from './sample.mjs';
import { make } from './signals.mjs';

export const kRate = 8000;
export const kSeconds = 20;
const m_files = new Map();  // FLAC files by their samples

// A page with one case and one player of these versions: {key: {samples, lufs, gain}}.
export function sampleOf(versions, extra = {}) {
  const { data } = makeSample({ cases: 2, heard: 0 });
  const audio = new Map();
  const list = Object.entries(versions).map(([key, { samples, lufs = null, gain = 0 }]) => {
    if (!m_files.has(samples)) m_files.set(samples, flac([samples], kRate, 24));
    audio.set(`0-${key}`, m_files.get(samples));
    return { key, label: `The ${key}`, file: `${key}.wav`, audio: `0-${key}`, href: null, rate: kRate,
             channels: 1, lufs, delay: 0, gain };
  });
  data.cases[0].verdict = 'fail';
  data.cases[0].players = [{ title: 'out.wav', start: 12, seconds: kSeconds, whole: 30, marks: [],
                             versions: list, difference: null, curves: [], ...extra }];
  data.cases[0].guards = [{ name: 'click', file: 'output.wav', at: 14.5, channel: 0, fails: true,
                            new: false, text: 'A click.' }];
  return { data, audio };
}

// Samples that tell their place: from 0.1 at the start to 0.9 at the end, of either sign.
const kRamps = [1, -1].map((sign) =>
  make(kSeconds, kRate, (t) => sign * (0.1 + 0.8 * t / kSeconds)));
export const kTwoRamps = { output: { samples: kRamps[0] }, reference: { samples: kRamps[1] } };
export const placeOf = (value) => (Math.abs(value) - 0.1) / 0.8 * kSeconds;

export async function openPlayer(browser, sample) {
  const page = await browser.open(sample, { before: listen, anyScript: true });
  await page.waitForSelector('.player .play');
  await page.$eval('.player', (player) => player.scrollIntoView());
  await page.waitForFunction(() => document.querySelector('.player canvas[aria-label*=peak]'));
  return page;
}

// All of it again and again, so that a busy machine does not come too late.
export const play = async (page) => {
  await page.click('[aria-label="Loop from here"]');
  await page.click('.play');
  await page.waitForSelector('.play[aria-label=Pause]');
};
export const record = (page) => page.evaluate(() => window.ear.ready.then(() => window.ear.record()));
// All since then, and so many seconds from now on.
export const recorded = (page, seconds) => page.evaluate((s) =>
  window.ear.until(window.ear.context.currentTime + s), seconds);
export const heard = async (page, seconds) => { await record(page); return recorded(page, seconds); };
export const press = (page, key) => page.keyboard.press(key);
export const pressed = (page) => page.$$eval('.version', (all) =>
  all.findIndex((b) => b.getAttribute('aria-pressed') === 'true'));
export const clock = (page) => page.$eval('.clock', (node) =>
  node.textContent.split(':').reduce((sum, part) => 60 * sum + parseFloat(part), 0));

// What the ruler shows, in s: the drawing of a zoom comes some frames after it.
export const range = (page) => page.evaluate(readRange);
// Until it shows what is wanted: wanted(from, to, value) runs in the page.
export const untilRange = (page, wanted, value = null) => page.waitForFunction(
  `(${wanted})(...(${readRange})(), ${JSON.stringify(value)})`);

function readRange() {
  const words = document.querySelector('.is-ruler canvas').getAttribute('aria-label').match(/[\d:.]+/g);
  return words.map((time) => time.split(':').reduce((sum, part) => 60 * sum + parseFloat(part), 0));
}
