// A card in Chromium: where its figures and guards are, how it is reached, copied and printed.
import assert from 'node:assert/strict';
import test, { after } from 'node:test';
import { Browser } from './browser.mjs';
import { kTwoRamps, openPlayer, sampleOf } from './player_page.mjs';
import { makeSample } from './sample.mjs';

const browser = await Browser.start();
after(() => browser.stop());

const kSmall = { cases: 24, heard: 6, seconds: 1, rate: 8000 };
// A sample that a test may change.
function small(extra = {}) {
  const { data, audio } = makeSample({ ...kSmall, ...extra });
  return { data: structuredClone(data), audio };
}
const texts = (page, selector) => page.$$eval(selector, (all) => all.map((e) => e.textContent));
const failedOf = (sample) => sample.data.cases.findIndex((one) => one.verdict === 'fail');

async function openCard(sample, place = failedOf(sample), how = {}) {
  const page = await browser.open(sample, how);
  await page.waitForSelector(`#case-${place}`);
  await page.$eval(`#case-${place}`, (card) => {
    card.open = true;
    card.scrollIntoView();
  });
  await page.waitForSelector(`#case-${place} .record`);
  return page;
}

test('channels are left and right of two, and nothing of one', async () => {
  for (const [channels, guard, figure] of [[1, 'out.wav', 'out.wav'], [2, 'out.wav, left', 'out.wav, right'],
                                           [3, 'out.wav, channel 1', 'out.wav, channel 2']]) {
    const sample = small({ heard: 0, channels });
    const place = failedOf(sample);
    const page = await openCard(sample, place);
    assert.deepEqual(await texts(page, `#case-${place} .guards li > .quiet`), [guard]);
    const where = await texts(page, `#case-${place} tbody td.name:nth-child(2)`);
    assert.ok(where.includes(figure) && where.includes('out.wav'), where.join());
    await page.close();
  }
});

test('a lone change of a figure stands in the line of its card, whatever its size', async () => {
  const sample = small({ heard: 0 });
  Object.assign(sample.data.cases[failedOf(sample)].figures[0],
                { name: 'bandwidth_of', value: 7400, against: 19745, unit: 'Hz' });
  const page = await browser.open(sample, { fragment: '#measure=bandwidth_of' });
  await page.waitForFunction(() => document.querySelectorAll('.card').length === 1);
  assert.deepEqual(await texts(page, '.card-figure'),
                   ['bandwidth_of 7\u2009400\u00a0Hz (\u221212\u2009345)']);
  await page.close();
});

test('a link leads to its case, which is open; another choice leaves it', async () => {
  const sample = small({ heard: 0 });
  const folded = sample.data.cases.find((one) => one.verdict === 'pass' && one.change === 'same');
  const page = await browser.open(sample);
  const shown = async (count) => {
    await page.waitForFunction((n) => document.querySelectorAll('.card').length === n, {}, count);
    return page.$$eval('.card', (all) => all.map((card) => [card.querySelector('h3').textContent, card.open]));
  };
  await shown(24);
  await page.evaluate((id) => { location.hash = new URLSearchParams({ case: id }); }, folded.id);
  assert.deepEqual(await shown(1), [[folded.id, true]]);
  await page.waitForSelector('.card .record');
  await page.type('input[name=text]', 'dropout');
  const found = sample.data.cases.filter((one) => one.guards.some((g) => g.name === 'dropout'));
  assert.equal((await shown(found.length)).length, found.length);
  assert.equal(await page.evaluate(() => location.hash), '#text=dropout');
  await page.close();
});

test('a measure leads to the case that has lost most', async () => {
  const sample = small({ heard: 0 });
  const page = await browser.open(sample);
  await page.waitForSelector('.measures');
  const worst = sample.data.measures[0].worst_case;
  await page.click('.measures tbody tr:first-child td.name button');
  await page.waitForFunction(() => document.querySelectorAll('.card').length === 1);
  assert.deepEqual(await texts(page, '.card h3'), [worst]);
  // A case that is not in the page is a name only.
  const last = await page.$eval('.measures tbody tr:last-child td.name', (cell) =>
    [cell.textContent, cell.querySelector('button') === null]);
  assert.deepEqual(last, ['codec/erik_train_112', true]);
  await page.close();
});

test('figures beyond the first ten come at a press, and the focus stays', async () => {
  const sample = small({ heard: 0, channels: 1 });
  const place = failedOf(sample);
  const count = sample.data.cases[place].figures.length + sample.data.cases[place].results.length;
  const page = await openCard(sample, place);
  const rows = () => page.$$eval(`#case-${place} .wide > table > tbody > tr`, (all) => all.length);
  const more = `#case-${place} section > button.small`;
  assert.deepEqual(await texts(page, more), [`${count - 10} more figures`]);
  const before = await rows();
  await page.$eval(more, (button) => { button.focus(); button.click(); });
  assert.equal(await rows() - before, count - 10);
  assert.equal(await page.evaluate(() => document.activeElement.className), 'wide');
  await page.close();
});

test('what has changed stands first among the figures, with its direction in a word', async () => {
  const sample = small({ heard: 0 });
  const place = failedOf(sample);
  const figures = sample.data.cases[place].figures;
  const last = figures.findLast((f) => f.change === 'same');
  Object.assign(last, { change: 'better', against: last.value - 2, better: 'higher' });
  const page = await openCard(sample, place);
  const cells = await page.$$eval(`#case-${place} tbody tr`, (all) =>
    all.slice(0, 2).map((row) => [row.cells[0].textContent, row.cells[4].textContent,
                                  row.cells[5].textContent, row.cells[6].textContent]));
  assert.deepEqual(cells.map((row) => [row[0], row[2]]), [[figures[0].name, 'worse'], [last.name, 'better']]);
  assert.match(cells[1][1], /^\+2/);
  assert.equal(cells[1][3], '\u2191 higher');
  await page.close();
});

test('where no clipboard is to be had the text is copied as a selection', async () => {
  const sample = small({ heard: 0 });
  const page = await browser.open(sample);
  await page.evaluate(() => {
    Object.defineProperty(navigator, 'clipboard',
      { value: { writeText: async () => { throw new Error('not here'); } } });
    window.copied = null;
    addEventListener('copy', (event) => { window.copied = event.target.value; });
    // The word stands there for a moment only: all of them are kept, with where the focus is.
    window.words = [];
    const button = document.querySelector('#top .command button');
    new MutationObserver(() => window.words.push([button.textContent, document.activeElement === button]))
      .observe(button, { childList: true });
  });
  await page.click('#top .command button');
  await page.waitForFunction(() => window.words.length === 2);
  assert.equal(await page.evaluate(() => window.copied), sample.data.command);
  assert.deepEqual(await page.evaluate(() => window.words), [['Copied', true], ['Copy', true]]);
  await page.close();
});

test('the page of many cases says that these are the worst, and of how many', async () => {
  const sample = small({ heard: 0 });
  Object.assign(sample.data, { total: 100000, worst_only: 'The worst 24 of 100000 cases.', title: 'calls' });
  const page = await browser.open(sample);
  await page.waitForFunction(() => document.querySelectorAll('.card').length === 24);
  assert.ok((await texts(page, '#top .note')).includes('The worst 24 of 100000 cases.'));
  assert.deepEqual(await texts(page, '.shown'), ['All 24 cases in this page']);
  assert.ok((await texts(page, '.facts'))[0].includes('Suitecalls.toml'));
  await page.select('select[name=group]', 'codec');
  await page.waitForFunction(() => /^4 of 24 cases in this page$/
    .test(document.querySelector('.shown').textContent));
  await page.close();
});

test('the title is not said twice', async () => {
  const page = await browser.open(small({ heard: 0 }));
  assert.ok(!(await texts(page, '.facts'))[0].includes('Suite'));
  assert.deepEqual(await texts(page, '.shown'), ['All 24 cases']);
  await page.close();
});

test('on paper the times of guards stay, and nothing is an empty drawing', async () => {
  const sample = small({ seconds: 3 });
  const place = failedOf(sample);
  const page = await openCard(sample, place);
  await page.waitForSelector(`#case-${place} .player.is-drawn`);
  await page.evaluate(() => {
    for (const card of document.querySelectorAll('.card')) card.open = true;
    dispatchEvent(new Event('beforeprint'));
  });
  await page.emulateMediaType('print');
  const shown = (selector) => page.$$eval(selector, (all) =>
    all.map((node) => getComputedStyle(node).display !== 'none'));
  assert.deepEqual(await shown(`#case-${place} .guards button`), [true]);
  assert.deepEqual(await shown(`#case-${place} .tracks`), [true]);
  const players = await page.$$eval('.player', (all) => all.map((player) => ({
    drawn: player.classList.contains('is-drawn'),
    tracks: getComputedStyle(player.querySelector('.tracks')).display !== 'none' })));
  assert.ok(players.some((player) => !player.drawn));
  for (const player of players) assert.equal(player.tracks, player.drawn);
  assert.deepEqual([...new Set(await shown('.filters, .bar'))], [false]);
  await page.close();
});

test('the only channel of a file is not told beside the file', async () => {
  const sample = small({ heard: 0, channels: 1 });
  const one = sample.data.cases[failedOf(sample)];
  one.results = [];
  const whole = { ...one.figures[0], name: 'erle', channel: null };
  one.figures = [whole, { ...whole, channel: 0 }, { ...whole, name: 'dc', channel: 0 }];
  const page = await openCard(sample);
  const names = `#case-${failedOf(sample)} .wide > table:has(.figure) > tbody th`;
  assert.deepEqual(await texts(page, names), ['erle', 'dc']);
  await page.close();
});

test('a known failure that has gone is said loudly', async () => {
  const sample = small({ heard: 0 });
  const place = sample.data.cases.findIndex((one) => one.verdict === 'pass' && one.change === 'same');
  sample.data.cases[place].known = 'fails: ticket 17';
  const page = await browser.open(sample);
  await page.waitForSelector(`#case-${place}[open]`);
  await page.$eval(`#case-${place}`, (card) => card.scrollIntoView());
  await page.waitForSelector(`#case-${place} .record`);
  assert.deepEqual(await texts(page, `#case-${place} .note`),
                   ['Passes, though it is known to fail: fails: ticket 17']);
  await page.close();
});

test('paper says what it leaves out', async () => {
  const sample = small({ heard: 0 });
  const place = failedOf(sample);
  const page = await openCard(sample, place);
  await page.emulateMediaType('print');
  const told = await page.$$eval(`#case-${place} button.more, #measures summary`, (all) =>
    all.map((node) => [node.textContent, node.checkVisibility()]));
  assert.deepEqual(told, [['1 measure is the same', true], [told[1][0], true]]);
  assert.match(told[1][0], /^\d+ more figures$/);
  await page.close();
});

test('the scale of a spectrogram has room beside it', async () => {
  const page = await openCard(small({ seconds: 1, rate: 44100, heard: 6 }));
  await page.waitForSelector('.player.is-drawn');
  // Nothing stands at the left edge of what is drawn, where a longer word would be cut off.
  await page.waitForFunction(() => {
    const canvas = document.querySelector('.player.is-drawn canvas[aria-label^=Spectrogram]');
    if (canvas.width === 0) return false;
    const scale = canvas.width / canvas.clientWidth;
    const { data } = canvas.getContext('2d').getImageData(0, 0, Math.round(44 * scale), canvas.height);
    const inked = (x) => {
      for (let at = 4 * x + 3; at < data.length; at += 4 * Math.round(44 * scale)) if (data[at] > 0) return true;
      return false;
    };
    const columns = Array.from({ length: Math.round(44 * scale) }, (_, x) => inked(x));
    window.firstInk = columns.indexOf(true);
    return window.firstInk >= 0;
  });
  assert.ok(await page.evaluate(() => window.firstInk) > 0);
  await page.close();
});

test('on paper a curve is as wide as the recordings above it', async () => {
  const curves = [{ name: 'ERLE', unit: 'dB', from: 12, step: 1, values: [20, 24, 22, 30] }];
  const page = await openPlayer(browser, sampleOf(kTwoRamps, { curves }));
  await page.waitForSelector('.player.is-drawn .curve .u-wrap');
  await page.emulateMediaType('print');
  const [curve, recording] = await page.$eval('.player', (player) => {
    // A window that was wider than the paper is.
    for (const part of player.querySelectorAll('.uplot, .u-wrap')) part.style.width = '3000px';
    return ['.curve .u-wrap', '.pane:not(.curve)'].map((one) =>
      player.querySelector(one).getBoundingClientRect().width);
  });
  assert.ok(recording > 0);
  assert.equal(curve, recording);
  await page.close();
});

test('many guards leave room for what there is to hear', async () => {
  const sample = small();
  const place = failedOf(sample);
  const guard = { ...sample.data.cases[place].guards[0], fails: false, new: false };
  sample.data.cases[place].guards = [...Array(9).fill(guard), { ...guard, name: 'click', fails: true }];
  const page = await openCard(sample, place);
  const names = () => texts(page, `#case-${place} .guards li strong`);
  assert.equal((await names()).length, 8);
  assert.equal((await names())[0], 'click');
  assert.deepEqual(await texts(page, `#case-${place} .guards > button`), ['2 more guards']);
  await page.click(`#case-${place} .guards > button`);
  assert.equal((await names()).length, 10);
  assert.deepEqual(await texts(page, `#case-${place} .guards > button`), []);
  await page.close();
});
