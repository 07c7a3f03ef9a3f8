// Blind tests in a player: what is heard, what is shown, what is counted.
import assert from 'node:assert/strict';
import test, { after } from 'node:test';
import { Browser } from './browser.mjs';
import { heard, kTwoRamps, openPlayer, press, pressed, sampleOf } from './player_page.mjs';

const browser = await Browser.start();
after(() => browser.stop());

test('a blind test counts, shows nothing meanwhile, and tells the p of its score', async () => {
  const page = await openPlayer(browser, sampleOf(kTwoRamps));
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
    const sound = (await heard(page, 0.03)).at(-1);
    assert.ok(Math.abs(sound) > 0.09, `nothing is heard: ${sound}`);
    const x = sound > 0 ? 'a' : 'b';
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
  const page = await openPlayer(browser, sampleOf(kTwoRamps));
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
