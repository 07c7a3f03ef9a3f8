// Moving about in a player: loops, keys, zoom, the mouse, the times of guards.
import assert from 'node:assert/strict';
import test, { after } from 'node:test';
import { Browser } from './browser.mjs';
import { clock, heard, kSeconds, kTwoRamps, openPlayer, placeOf, play, press, pressed, range, record,
  recorded, sampleOf, untilRange } from './player_page.mjs';

const browser = await Browser.start();
after(() => browser.stop());

test('[ and ] make a loop that plays nothing else; Escape ends it', async () => {
  const page = await openPlayer(browser, sampleOf(kTwoRamps));
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
  const page = await openPlayer(browser, sampleOf(kTwoRamps));
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
  const page = await openPlayer(browser, sampleOf(kTwoRamps));
  const share = () => page.$eval('.play-line', (line) =>
    new DOMMatrix(line.style.transform).m41 / line.parentNode.clientWidth);
  await page.focus('.player');
  await page.click('.layer');
  const at = await clock(page);
  assert.ok(Math.abs(await share() - 0.5) < 0.01);
  assert.deepEqual(await range(page), [12, 32]);
  await press(page, '+');
  await press(page, '+');
  // The drawing comes after the key, and may come between the two.
  await untilRange(page, (from, to, seconds) => Math.abs(to - from - seconds / 4) < 0.01, kSeconds);
  const [from, to] = await range(page);
  assert.ok(Math.abs((from + to) / 2 - at) < 0.2);
  assert.ok(Math.abs(await share() - 0.5) < 0.01);
  assert.equal(await clock(page), at);
  await press(page, '0');
  await untilRange(page, (start, end) => start === 12 && end === 32);
  await page.close();
});

test('a press goes there, a drag makes a loop', async () => {
  const page = await openPlayer(browser, sampleOf(kTwoRamps));
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
  const page = await openPlayer(browser, sampleOf(kTwoRamps));
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

test('no loop keeps a reader from the place of a guard', async () => {
  const page = await openPlayer(browser, sampleOf(kTwoRamps));
  await page.focus('.player');
  await press(page, '[');
  await page.keyboard.down('Shift');
  await press(page, 'ArrowRight');
  await page.keyboard.up('Shift');
  await press(page, ']');
  assert.equal(await page.$eval('.loop', (loop) => loop.hidden), false);
  await page.click('.guards button');
  await page.waitForSelector('.play[aria-label=Pause]');
  assert.ok(await clock(page) >= 14, `at ${await clock(page)}`);
  assert.equal(await page.$eval('.loop', (loop) => loop.hidden), true);
  await page.close();
});

test('a guard leads to the output that hits it, not to where that is an input', async () => {
  const sample = sampleOf(kTwoRamps);
  const [one] = sample.data.cases;
  const [own] = one.players;
  const other = structuredClone(own);
  other.title = 'later.wav';
  other.versions[0].file = 'later.wav';
  other.versions[1].file = 'output.wav';
  one.players = [other, own];
  const page = await openPlayer(browser, sample);
  await page.click('.guards button');
  await page.waitForSelector('.play[aria-label=Pause]');
  const playing = await page.$eval('.play[aria-label=Pause]', (button) =>
    button.closest('.player').querySelector('h4').textContent);
  assert.match(playing, /^out\.wav/);
  await page.close();
});

test('the buttons of loop and zoom do what their keys do', async () => {
  const page = await openPlayer(browser, sampleOf(kTwoRamps));
  const button = (label) => page.click(`.player [aria-label="${label}"]`);
  const until = (...wanted) => untilRange(page, (from, to, [a, b]) => from === a && to === b, wanted);
  await button('Zoom in');
  await until(12, 22);
  await button('Show later');
  await until(17, 27);
  await button('Show earlier');
  await until(12, 22);
  await button('Zoom out');
  await until(12, 32);
  await button('Loop from here');
  assert.equal(await page.$eval('.loop', (loop) => loop.hidden), false);
  await button('No loop');
  assert.equal(await page.$eval('.loop', (loop) => loop.hidden), true);
  assert.deepEqual(await range(page), [12, 32]);
  await page.close();
});

test('the wheel zooms with Ctrl where it is, and pans with Shift', async () => {
  const page = await openPlayer(browser, sampleOf(kTwoRamps));
  const box = await (await page.$('.layer')).boundingBox();
  const turned = async (key, by, done) => {
    await page.keyboard.down(key);
    await page.mouse.wheel({ deltaY: by });
    await page.keyboard.up(key);
    await untilRange(page, done);
  };
  await page.mouse.move(box.x + box.width / 4, box.y + 30);
  await turned('Control', -400, (from, to) => from > 12 && to < 32);
  const [from, to] = await range(page);
  assert.ok(to - from < 10 && to - from > 5, `${from} to ${to}`);
  assert.ok(Math.abs(from + (to - from) / 4 - 17) < 0.1, `${from} to ${to}`);
  await turned('Shift', -5000, (from) => from === 12);
  const [start, end] = await range(page);
  assert.ok(Math.abs(end - start - (to - from)) < 0.01);
  await page.close();
});
