// Listening in Chromium: sources that really run, at one place, equally loud.
import assert from 'node:assert/strict';
import test, { after } from 'node:test';
import { Browser } from './browser.mjs';
import { clock, heard, kRate, kSeconds, kTwoRamps, openPlayer, placeOf, play, press, pressed, record,
  recorded, sampleOf } from './player_page.mjs';
import { level, sine } from './signals.mjs';

const browser = await Browser.start();
after(() => browser.stop());

// The first and the last sample of a sign that follows another one, without what lies between.
function change(samples) {
  const to = samples.findIndex((v) => v < -0.05);
  let from = to;
  while (from > 0 && !(samples[from] > 0.05)) from -= 1;
  return { from, to };
}

test('a player plays: the clock runs and what comes out is not silent', async () => {
  const page = await openPlayer(browser, sampleOf({
    output: { samples: sine(kSeconds, kRate, 440, 0.5) },
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
  // Drawn with the frames of the screen, which a busy machine leaves out.
  await page.waitForFunction(() => parseFloat(document.querySelector('.clock').textContent) > 12);
  await press(page, ' ');
  await page.waitForSelector('.play[aria-label=Play]');
  assert.deepEqual(page.said, []);
  await page.close();
});

test('another version goes on at the same place, without a gap', async () => {
  const page = await openPlayer(browser, sampleOf(kTwoRamps));
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
  const page = await openPlayer(browser, sampleOf({ output: { samples: tone },
                                                    reference: { samples: tone } }));
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
  const page = await openPlayer(browser, sampleOf({ output: { samples: loud, lufs: level(loud) },
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
  assert.deepEqual(said, ['played as it is', 'played +18.66\u00a0dB']);
  await press(page, 'l');
  const [c, d] = await levels();
  assert.ok(Math.abs(c - level(loud)) < 0.1 && Math.abs(d - level(soft)) < 0.1, `${c} and ${d} dB`);
  assert.deepEqual(await page.$$eval('.match', (all) => all.map((e) => e.textContent)), ['', '']);
  await page.close();
});

test('the difference is what is left, and is heard as loud as it is', async () => {
  const a = sine(kSeconds, kRate, 500, 0.5);
  const b = a.map((v, n) => 0.5 * v + (n > kRate ? 0.02 * Math.sin(n * 0.9) : 0));
  const page = await openPlayer(browser, sampleOf(
    { output: { samples: b }, reference: { samples: a } },
    { difference: { of: ['output', 'reference'], db: -37, relative: -25, gain: -6.0206,
                    identical: false } }));
  await page.waitForFunction(() => document.querySelectorAll('canvas[aria-label*=peak]').length === 3);
  // From where there is something left on, again and again.
  await page.focus('.player');
  await page.keyboard.down('Shift');
  await press(page, 'ArrowRight');
  await page.keyboard.up('Shift');
  assert.equal(await clock(page), 13);
  await play(page);
  await press(page, '3');
  await heard(page, 0.2);
  const found = level(await heard(page, 0.3));
  assert.ok(Math.abs(found - 20 * Math.log10(0.02 / Math.SQRT2)) < 0.1, `${found} dB`);
  const words = await page.$eval('.of-difference', (track) => track.textContent);
  assert.ok(words.includes('\u221237.00\u00a0dBFS'), words);
  await page.close();
});

test('the difference is that of the files where one of them plays softer', async () => {
  const a = sine(kSeconds, kRate, 500, 0.4);
  const b = a.map((v, n) => v + (n > kRate ? 0.02 * Math.sin(n * 0.9) : 0));
  const softer = b.map((v) => v / 2);
  const page = await openPlayer(browser, sampleOf(
    { output: { samples: softer, gain: -6.0206 }, reference: { samples: a } },
    { difference: { of: ['output', 'reference'], db: -37, relative: -25, gain: 0,
                    identical: false } }));
  await page.waitForFunction(() => document.querySelectorAll('canvas[aria-label*=peak]').length === 3);
  const words = await page.$eval('.of-difference canvas', (canvas) => canvas.getAttribute('aria-label'));
  const peak = Number(words.match(/peak \u2212([\d.]+)/)[1]);
  assert.ok(Math.abs(peak + 20 * Math.log10(0.01)) < 0.1, words);
  await page.close();
});

test('a sound output that is late is waited for, and that is said', async () => {
  const sample = sampleOf(kTwoRamps);
  const page = await openPlayer(browser, sample);
  await page.evaluate(() => {
    const { resume } = AudioContext.prototype;
    let late = true;
    const answered = new Promise((answer) => { window.answer = answer; }).then(() => { late = false; });
    AudioContext.prototype.resume = function () { return answered.then(() => resume.call(this)); };
    const { get } = Object.getOwnPropertyDescriptor(BaseAudioContext.prototype, 'state');
    Object.defineProperty(AudioContext.prototype, 'state',
                          { get() { return late ? 'suspended' : get.call(this); } });
  });
  await page.click('.play');
  await page.waitForFunction(() =>
    document.querySelector('.bar [role=status]').textContent === 'No sound output answers yet');
  await page.evaluate(() => window.answer());
  await page.waitForSelector('.play[aria-label=Pause]');
  assert.equal(await page.$eval('.bar [role=status]', (state) => state.textContent), '');
  await page.close();
});

test('a recording that cannot be decoded says so, and nothing pretends to play', async () => {
  const sample = sampleOf(kTwoRamps);
  sample.audio.set('0-reference', Buffer.from('no recording'));
  const page = await browser.open(sample);
  await page.waitForSelector('.player .play');
  await page.$eval('.player', (player) => player.scrollIntoView());
  const said = () => page.$eval('.bar [role=status]', (state) => state.textContent);
  await page.waitForFunction(() => document.querySelector('.bar [role=status]').textContent !== '');
  assert.match(await said(), /^Cannot be played: /);
  await page.click('.play');
  await page.evaluate(() => new Promise((done) => setTimeout(done, 100)));
  assert.match(await said(), /^Cannot be played: /);
  assert.equal(await page.$('.play[aria-label=Pause]'), null);
  await page.close();
});
