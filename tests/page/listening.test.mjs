// Listening in Chromium: sources that really run, at one place, equally loud, blind.
import assert from 'node:assert/strict';
import test, { after } from 'node:test';
import { Browser } from './browser.mjs';
import { listen } from './ear.mjs';
import { flac } from './flac.mjs';
import { makeSample } from './sample.mjs';
import { level, make, sine } from './signals.mjs';

const browser = await Browser.start();
after(() => browser.stop());

const kRate = 8000;
const kSeconds = 20;
const m_files = new Map();  // FLAC files by their samples

// A page with one case and one player of these versions: {key: {samples, lufs}}.
function sampleOf(versions, extra = {}) {
  const { data } = makeSample({ cases: 2, heard: 0 });
  const audio = new Map();
  const list = Object.entries(versions).map(([key, { samples, lufs = null }]) => {
    if (!m_files.has(samples)) m_files.set(samples, flac([samples], kRate, 24));
    audio.set(`0-${key}`, m_files.get(samples));
    return { key, label: `The ${key}`, file: `${key}.wav`, audio: `0-${key}`, href: null, rate: kRate,
             channels: 1, lufs, delay: 0, gain: 0 };
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
const kTwoRamps = { output: { samples: kRamps[0] }, reference: { samples: kRamps[1] } };
const placeOf = (value) => (Math.abs(value) - 0.1) / 0.8 * kSeconds;

async function openPlayer(sample) {
  const page = await browser.open(sample, { before: listen, anyScript: true });
  await page.waitForSelector('.player .play');
  await page.$eval('.player', (player) => player.scrollIntoView());
  await page.waitForFunction(() => document.querySelector('.player canvas[aria-label*=peak]'));
  return page;
}

// All of it again and again, so that a busy machine does not come too late.
const play = async (page) => {
  await page.click('[aria-label="Loop from here"]');
  await page.click('.play');
  await page.waitForSelector('.play[aria-label=Pause]');
};
const record = (page) => page.evaluate(() => window.ear.ready.then(() => window.ear.record()));
// All since then, and so many seconds from now on.
const recorded = (page, seconds) => page.evaluate((s) =>
  window.ear.until(window.ear.context.currentTime + s), seconds);
const heard = async (page, seconds) => { await record(page); return recorded(page, seconds); };
const press = (page, key) => page.keyboard.press(key);
const pressed = (page) => page.$$eval('.version', (all) =>
  all.findIndex((b) => b.getAttribute('aria-pressed') === 'true'));
const clock = (page) => page.$eval('.clock', (node) =>
  node.textContent.split(':').reduce((sum, part) => 60 * sum + parseFloat(part), 0));

// The first and the last sample of a sign that follows another one, without what lies between.
function change(samples) {
  const to = samples.findIndex((v) => v < -0.05);
  let from = to;
  while (from > 0 && !(samples[from] > 0.05)) from -= 1;
  return { from, to };
}

test('a player plays: the clock runs and what comes out is not silent', async () => {
  const page = await openPlayer(sampleOf({ output: { samples: sine(kSeconds, kRate, 440, 0.5) },
                                           reference: { samples: sine(kSeconds, kRate, 440, 0.1) } }));
  await play(page);
  const before = await page.evaluate(() => window.ear.context.currentTime);
  await heard(page, 0.3);
  const after = await page.evaluate(() => {
    const values = new Float32Array(8192);
    window.ear.analyser.getFloatTimeDomainData(values);
    return { time: window.ear.context.currentTime, peak: Math.max(...values),
             state: window.ear.context.state };
  });
  assert.equal(after.state, 'running');
  assert.ok(after.time > before + 0.2);
  assert.ok(Math.abs(after.peak - 0.5) < 0.01, `peak ${after.peak}`);
  assert.ok(await clock(page) > 12);
  await press(page, ' ');
  await page.waitForSelector('.play[aria-label=Play]');
  assert.deepEqual(page.said, []);
  await page.close();
});

test('another version goes on at the same place, without a gap', async () => {
  const page = await openPlayer(sampleOf(kTwoRamps));
  await play(page);
  await heard(page, 0.1);
  await record(page);
  await recorded(page, 0.1);
  await press(page, '2');
  const samples = await recorded(page, 0.15);
  assert.equal(await pressed(page), 1);
  const { from, to } = change(samples);
  assert.ok(to > 0, 'the other version was not heard');
  assert.ok((to - from) / kRate < 0.012, `${to - from} samples from one to the other`);
  const later = Math.min(samples.length - 1, to + 400);
  const earlier = Math.max(0, from - 400);
  const gone = placeOf(samples[later]) - placeOf(samples[earlier]);
  const error = (gone + kSeconds) % kSeconds - (later - earlier) / kRate;
  assert.ok(Math.abs(error) < 0.005, `off by ${1000 * error} ms`);
  await page.close();
});

test('while two that are alike are changed nothing is heard of it', async () => {
  const tone = sine(kSeconds, kRate, 440, 0.5);
  const page = await openPlayer(sampleOf({ output: { samples: tone }, reference: { samples: tone } }));
  await play(page);
  await heard(page, 0.1);
  await record(page);
  await press(page, '2');
  const samples = await recorded(page, 0.15);
  const step = Math.max(...samples.slice(1).map((v, at) => Math.abs(v - samples[at])));
  assert.ok(step < 0.5 * 2 * Math.PI * 440 / kRate * 1.05, `a step of ${step}`);
  for (let at = 0; at + 60 < samples.length; at += 60) {
    assert.ok(Math.max(...samples.slice(at, at + 60)) > 0.49, `softer at ${at}`);
  }
  await page.close();
});

test('all are equally loud to 0.1 dB, and it says by how much; without it they are as they are', async () => {
  const [loud, soft] = [sine(kSeconds, kRate, 1000, 0.6), sine(kSeconds, kRate, 1000, 0.07)];
  const page = await openPlayer(sampleOf({ output: { samples: loud, lufs: level(loud) },
                                           reference: { samples: soft, lufs: level(soft) } }));
  const levels = async () => {
    const list = [];
    for (const key of ['1', '2']) {
      await press(page, key);
      await heard(page, 0.1);
      list.push(level(await heard(page, 0.2)));
    }
    return list;
  };
  await play(page);
  const [a, b] = await levels();
  assert.ok(Math.abs(a - b) < 0.1, `${a} and ${b} dB`);
  const said = await page.$$eval('.match', (all) => all.map((e) => e.textContent));
  assert.deepEqual(said, ['played 0.00\u00a0dB', 'played +18.66\u00a0dB']);
  await press(page, 'l');
  const [c, d] = await levels();
  assert.ok(Math.abs(c - level(loud)) < 0.1 && Math.abs(d - level(soft)) < 0.1, `${c} and ${d} dB`);
  assert.deepEqual(await page.$$eval('.match', (all) => all.map((e) => e.textContent)), ['', '']);
  await page.close();
});

test('[ and ] make a loop that plays nothing else; Escape ends it', async () => {
  const page = await openPlayer(sampleOf(kTwoRamps));
  await page.focus('.player');
  for (let n = 0; n < 10; ++n) await press(page, 'ArrowRight');
  assert.equal(await clock(page), 13);
  await press(page, '[');
  for (let n = 0; n < 3; ++n) await press(page, 'ArrowRight');
  await press(page, ']');
  await press(page, ' ');
  await page.waitForSelector('.play[aria-label=Pause]');
  await heard(page, 0.1);
  const places = (await heard(page, 0.8)).map(placeOf);
  const [least, most] = [Math.min(...places), Math.max(...places)];
  assert.ok(Math.abs(least - 1) < 0.001 && Math.abs(most - 1.3) < 0.001, `${least} to ${most} s`);
  const shown = await clock(page);
  assert.ok(shown >= 13 && shown <= 13.31, `shows ${shown}`);
  await press(page, 'Escape');
  await page.waitForFunction(() => parseFloat(document.querySelector('.clock').textContent) > 13.5);
  assert.equal(await page.$eval('.loop', (loop) => loop.hidden), true);
  await page.close();
});

test('arrows move, and choose versions', async () => {
  const page = await openPlayer(sampleOf(kTwoRamps));
  await page.focus('.player');
  await page.keyboard.down('Shift');
  await press(page, 'ArrowRight');
  await page.keyboard.up('Shift');
  assert.equal(await clock(page), 13);
  await press(page, 'ArrowLeft');
  assert.equal(await clock(page), 12.9);
  await press(page, 'ArrowDown');
  assert.equal(await pressed(page), 1);
  await press(page, 'ArrowUp');
  assert.equal(await pressed(page), 0);
  await page.close();
});

test('a zoom keeps the place that is heard where it is, for the eye and for the ear', async () => {
  const page = await openPlayer(sampleOf(kTwoRamps));
  const share = () => page.$eval('.play-line', (line) =>
    new DOMMatrix(line.style.transform).m41 / line.parentNode.clientWidth);
  const shown = () => page.$eval('.is-ruler canvas', (ruler) => ruler.getAttribute('aria-label'));
  await page.focus('.player');
  await page.click('.layer');
  const at = await clock(page);
  assert.ok(Math.abs(await share() - 0.5) < 0.01);
  assert.equal(await shown(), 'Time from 12.000\u00a0s to 32.000\u00a0s');
  await press(page, '+');
  await press(page, '+');
  await page.waitForFunction(() => !document.querySelector('.is-ruler canvas')
    .getAttribute('aria-label').includes('12.000'));
  const [from, to] = (await shown()).match(/[\d:.]+/g).map((words) =>
    words.split(':').reduce((sum, part) => 60 * sum + parseFloat(part), 0));
  assert.ok(Math.abs(to - from - kSeconds / 4) < 0.01, `${from} to ${to}`);
  assert.ok(Math.abs((from + to) / 2 - at) < 0.2);
  assert.ok(Math.abs(await share() - 0.5) < 0.01);
  assert.equal(await clock(page), at);
  await press(page, '0');
  await page.waitForFunction(() => document.querySelector('.is-ruler canvas')
    .getAttribute('aria-label').includes('12.000'));
  await page.close();
});

test('a press goes there, a drag makes a loop', async () => {
  const page = await openPlayer(sampleOf(kTwoRamps));
  const box = await (await page.$('.layer')).boundingBox();
  const at = (share) => [box.x + share * box.width, box.y + 30];
  await page.mouse.click(...at(0.5));
  assert.ok(Math.abs(await clock(page) - 12 - kSeconds / 2) < 0.3);
  await page.mouse.move(...at(0.25));
  await page.mouse.down();
  await page.mouse.move(...at(0.4), { steps: 3 });
  await page.mouse.move(...at(0.5));
  await page.mouse.up();
  const [left, width] = await page.$eval('.loop', (loop) => [loop.style.left, loop.style.width]);
  assert.ok(Math.abs(parseFloat(left) - 25) < 0.5 && Math.abs(parseFloat(width) - 25) < 0.5);
  await page.close();
});

test('the time of a guard plays from just before it', async () => {
  const page = await openPlayer(sampleOf(kTwoRamps));
  // Played once, so that what is heard from the very first on is taken.
  await play(page);
  await press(page, ' ');
  await page.waitForSelector('.play[aria-label=Play]');
  await page.waitForFunction(() => window.ear.context.state === 'suspended');
  await record(page);
  await page.click('.guards button');
  await page.waitForSelector('.play[aria-label=Pause]');
  const place = placeOf((await recorded(page, 0.1)).find((v) => v > 0.1));
  assert.ok(Math.abs(place - 2) < 0.001, `${place} s`);
  await page.close();
});

test('a blind test counts, shows nothing meanwhile, and tells the p of its score', async () => {
  const page = await openPlayer(sampleOf(kTwoRamps));
  await page.focus('.player');
  await press(page, '[');
  await press(page, 'x');
  await page.waitForSelector('.abx .answer');
  await page.waitForSelector('.play[aria-label=Pause]');
  let right = 0;
  for (let trial = 0; trial < 10; ++trial) {
    assert.equal(await page.$eval('.abx p', (p) => p.textContent), `Trial ${trial + 1} of 10`);
    assert.equal(await pressed(page), -1);
    assert.equal(await page.$('.is-heard'), null);
    assert.equal(await page.$eval('.version', (b) => b.disabled), true);
    await heard(page, 0.03);
    const x = (await heard(page, 0.03)).at(-1) > 0 ? 'a' : 'b';
    const answer = trial === 4 || trial === 7 ? { a: 'b', b: 'a' }[x] : x;
    right += answer === x ? 1 : 0;
    await press(page, answer);
  }
  assert.equal(right, 8);
  await page.waitForSelector('.score');
  assert.match(await page.$eval('.score', (p) => p.textContent),
               /^8 of 10 right: p = 0\.05469, the probability/);
  assert.equal(await pressed(page), 0);
  await page.close();
});

test('in a blind test A, B and X are what they are called', async () => {
  const page = await openPlayer(sampleOf(kTwoRamps));
  await page.focus('.player');
  await press(page, '[');
  await press(page, 'x');
  await page.waitForSelector('.play[aria-label=Pause]');
  const sign = async (key) => {
    await press(page, key);
    await heard(page, 0.06);
    return Math.sign((await heard(page, 0.03)).at(-1));
  };
  assert.equal(await sign('1'), 1);
  assert.equal(await sign('2'), -1);
  const x = await sign('x');
  assert.ok(x === 1 || x === -1);
  // Neither the arrows nor the switch of the levels tell which one it is.
  assert.deepEqual([await sign('ArrowDown'), await sign('ArrowUp'), await sign('l')], [x, x, x]);
  assert.equal(await page.$eval('.abx [aria-pressed=true]', (b) => b.textContent), 'X');
  assert.equal(await page.$eval('.tick input', (box) => box.checked), true);
  await page.evaluate(() => [...document.querySelectorAll('.abx button')]
    .find((b) => b.textContent === 'End now').click());
  assert.match(await page.$eval('.score', (p) => p.textContent), /No trial was made/);
  await page.close();
});

test('the difference is what is left, and is heard as loud as it is', async () => {
  const a = sine(kSeconds, kRate, 500, 0.5);
  const b = a.map((v, n) => 0.5 * v + (n > kRate ? 0.02 * Math.sin(n * 0.9) : 0));
  const page = await openPlayer(sampleOf(
    { output: { samples: b }, reference: { samples: a } },
    { difference: { of: ['output', 'reference'], db: -37, relative: -25, gain: -6.0206,
                    identical: false } }));
  await page.waitForFunction(() => document.querySelectorAll('canvas[aria-label*=peak]').length === 3);
  await play(page);
  await press(page, 'Shift');
  await page.keyboard.down('Shift');
  await press(page, 'ArrowRight');
  await page.keyboard.up('Shift');
  await press(page, '3');
  await heard(page, 0.2);
  const found = level(await heard(page, 0.3));
  assert.ok(Math.abs(found - 20 * Math.log10(0.02 / Math.SQRT2)) < 0.1, `${found} dB`);
  const words = await page.$eval('.of-difference', (track) => track.textContent);
  assert.ok(words.includes('\u221237.00\u00a0dBFS'), words);
  await page.close();
});
