// The page in Chromium: what a reader sees first, chooses, and what the page never does.
import assert from 'node:assert/strict';
import { readFileSync } from 'node:fs';
import test, { after, before } from 'node:test';
import { askedOutside, Browser } from './browser.mjs';
import { hostile, kHostile } from './hostile.mjs';
import { load } from './packages.mjs';
import { makeSample } from './sample.mjs';

const browser = await Browser.start();
after(() => browser.stop());

const kSmall = { cases: 24, heard: 4, seconds: 1, rate: 8000 };
let sample;
before(() => { sample = makeSample(kSmall); });

const texts = (page, selector) => page.$$eval(selector, (all) => all.map((e) => e.textContent));
const ids = (page) => texts(page, '.card h3');

// Waits until as many cards stand there.
const cards = (page, count) => page.waitForFunction(
  (n) => document.querySelectorAll('.card').length === n, {}, count);

// Scrolls to the first case that can be heard, until its player stands there.
async function reachPlayer(page) {
  const place = sample.data.cases.findIndex((one) => one.players.length > 0);
  await page.waitForSelector(`#case-${place}`);
  await page.$eval(`#case-${place}`, (card) => card.scrollIntoView());
  await page.waitForSelector(`#case-${place} .player`);
}

function assertQuiet(page) {
  assert.deepEqual(page.said, []);
  assert.deepEqual(askedOutside(page), []);
}

test('the first screen says what matters, with what and when', async () => {
  const page = await browser.open(sample);
  await cards(page, 24);
  assert.deepEqual(await texts(page, 'h1'), [sample.data.sentence]);
  const head = (await texts(page, '#top'))[0];
  for (const words of [sample.data.bench, sample.data.engine, sample.data.machine,
                       '2026-11-20 10:15 UTC', 'baseline:spring', sample.data.left_out,
                       sample.data.command]) {
    assert.ok(head.includes(words), `${words} is missing`);
  }
  assert.equal((await texts(page, '.measures tbody tr')).length, 5);
  assert.deepEqual(await texts(page, '#measures summary'), ['1 measure is the same']);
  assert.deepEqual(await texts(page, '#measures details tbody th button'), ['delay_error']);
  assert.deepEqual(await ids(page), sample.data.cases.map((one) => one.id));
  assertQuiet(page);
  await page.close();
});

test('many measures leave room for the cases', async () => {
  const data = structuredClone(sample.data);
  const [worse, undecided] = data.measures;
  const many = (measure, n) => Array.from({ length: n }, (_, at) => ({ ...measure, name: `snr.${at}` }));
  for (const [cells, open, summary] of [[10, 12, []], [11, 8, ['5 more measures: 3 worse, 2 undecided']]]) {
    data.measures = [...many(worse, cells), undecided, undecided];
    const page = await browser.open({ data, audio: sample.audio });
    await page.waitForSelector('.measures');
    assert.equal(await page.$$eval('#measures section > .wide tbody tr', (rows) => rows.length), open);
    assert.deepEqual(await texts(page, '#measures summary'), summary);
    assert.equal((await texts(page, '.measures tbody tr')).length, cells + 2);
    await page.close();
  }
});

test('a measure says what its verdict is worth, and no more', async () => {
  const page = await browser.open(sample);
  await page.waitForSelector('.measures');
  assert.deepEqual(await texts(page, '.measures tbody td:nth-child(2)'),
                   ['worse', 'undecidedabout 31 more cases would decide', 'undecided',
                    'bettertaken alone; not certain among so many measures', 'same']);
  await page.close();
});

test('the bar of a measure lies where its interval does', async () => {
  const page = await browser.open(sample);
  const bars = await page.$$eval('.interval', (all) => all.map((bar) => {
    const x = (selector, name) => Number(bar.querySelector(selector)?.getAttribute(name));
    return { words: bar.getAttribute('aria-label'), zero: x('.zero', 'x1'), low: x('.reach', 'x1'),
             high: x('.reach', 'x2'), mean: x('.mean', 'cx'), margin: x('.margin', 'x'),
             wide: x('.margin', 'width') };
  }));
  const [worse] = bars;
  const scale = (worse.zero - worse.margin) / 0.5;  // px for each dB: the margin is 0.5 dB
  assert.ok(Math.abs(worse.zero + scale * -3.914 - worse.low) < 0.01);
  assert.ok(Math.abs(worse.zero + scale * -2.294 - worse.high) < 0.01);
  assert.ok(Math.abs(worse.zero + scale * -3.104 - worse.mean) < 0.01);
  assert.ok(Math.abs(worse.wide - 2 * 0.5 * scale) < 0.01);
  assert.equal(worse.words, 'from \u22123.91\u00a0dB to \u22122.29\u00a0dB, margin 0.50\u00a0dB');
  assert.match(bars[2].words, /too few/);
  await page.close();
});

test('each control chooses cases, and the address keeps the choice', async () => {
  const page = await browser.open(sample);
  await cards(page, 24);
  const expected = (keep) => sample.data.cases.filter(keep).map((one) => one.id);
  const check = async (keep, fragment) => {
    await cards(page, expected(keep).length);
    assert.deepEqual(await ids(page), expected(keep));
    assert.equal(await page.evaluate(() => location.hash), fragment);
  };
  await page.type('input[name=text]', 'dropout');
  await check((one) => one.guards.some((g) => g.name === 'dropout'), '#text=dropout');
  await page.evaluate(() => [...document.querySelectorAll('button')]
    .find((b) => b.textContent === 'Show all').click());
  await check(() => true, '');
  await page.select('select[name=group]', 'codec');
  await check((one) => one.group === 'codec', '#group=codec');
  await page.select('select[name=group]', '');
  await page.select('select[name=tag]', 'car');
  await check((one) => one.tags.includes('car'), '#tag=car');
  await page.select('select[name=tag]', '');
  await page.click('[aria-label=Verdict] .chip:first-child');
  await check((one) => one.verdict === 'error', '#verdict=error');
  await page.click('[aria-label=Verdict] .chip:nth-child(2)');
  await check((one) => ['error', 'fail'].includes(one.verdict), '#verdict=error,fail');
  assert.deepEqual(await page.$$eval('.chip[aria-pressed=true]', (all) => all.length), 2);
  await page.click('[aria-label=Verdict] .chip:first-child');
  await page.click('[aria-label=Verdict] .chip:nth-child(2)');
  await page.click('[aria-label=Change] .chip:first-child');
  await check((one) => one.change === 'worse', '#change=worse');
  assertQuiet(page);
  await page.close();
});

test('a link opens on what was chosen', async () => {
  const page = await browser.open(sample, { fragment: '#group=aec&order=id' });
  const wanted = sample.data.cases.filter((one) => one.group === 'aec').map((one) => one.id);
  await cards(page, wanted.length);
  assert.deepEqual(await ids(page), [...wanted].sort());
  assert.equal(await page.$eval('select[name=group]', (box) => box.value), 'aec');
  await page.close();
});

test('a measure leads to its cases, what has lost most first', async () => {
  const page = await browser.open(sample);
  await cards(page, 24);
  await page.click('.measures tbody tr:first-child button');
  await page.waitForFunction(() => location.hash === '#measure=erle&order=measure');
  const gained = (one) => {
    const figure = one.figures.find((f) => f.name === 'erle');
    return figure ? figure.value - figure.against : null;
  };
  const wanted = sample.data.cases.filter((one) => gained(one) !== null);
  await cards(page, wanted.length);
  const shown = await ids(page);
  const order = shown.map((id) => gained(sample.data.cases.find((one) => one.id === id)));
  assert.deepEqual(order, [...order].sort((a, b) => a - b));
  assert.notDeepEqual(shown, wanted.map((one) => one.id));
  assert.match((await texts(page, '.card-figure'))[0], /^erle .*dB \(/);
  await page.close();
});

test('a card says why, when, and how it has changed, in words', async () => {
  const page = await browser.open(sample);
  const failed = sample.data.cases.findIndex((one) => one.verdict === 'fail');
  await page.waitForSelector(`#case-${failed} .player`);
  const card = (await texts(page, `#case-${failed}`))[0];
  for (const words of ['dropout in out.wav at 14.100 s', '14.100', 'worse', 'exact zeros',
                       'audio_bench run', 'aec done'.slice(0, 3)]) {
    assert.ok(card.includes(words), `${words} is missing`);
  }
  const row = (await texts(page, `#case-${failed} tbody tr`))[0];
  assert.match(row, /worse/);
  assert.match(row, /higher|lower|none/);
  const hash = await page.$eval(`#case-${failed} .hash code`, (code) => code.title);
  assert.equal(hash, sample.data.cases[failed].files[0].sha256);
  await page.close();
});

test('the button copies the command', async () => {
  const page = await browser.open(sample);
  await page.evaluate(() => {
    window.copied = null;
    Object.defineProperty(navigator, 'clipboard',
      { value: { writeText: async (text) => { window.copied = text; } } });
  });
  await page.click('#top .command button');
  await page.waitForFunction(() => window.copied !== null);
  assert.equal(await page.evaluate(() => window.copied), sample.data.command);
  await page.close();
});

test('hostile words stay words', async () => {
  const page = await browser.open(hostile(sample));
  await cards(page, 24);
  await reachPlayer(page);
  const seen = await page.evaluate(() => ({
    hurt: window.hurt ?? null,
    inside: document.querySelectorAll('main script, main img, header img, header script, [onload], [onerror]').length,
    links: [...document.querySelectorAll('.player a')].map((a) => a.getAttribute('href')),
    text: document.body.innerText,
  }));
  assert.equal(seen.hurt, null);
  assert.equal(seen.inside, 0);
  assert.ok(seen.links.length > 0 && seen.links.every((href) => href === 'files/0-out.flac'),
            seen.links.join());
  for (const word of kHostile) assert.ok(seen.text.includes(word), `${word} is not shown`);
  assertQuiet(page);
  await page.close();
});

test('no program but its own runs in the page', async () => {
  const page = await browser.open(sample);
  const ran = await page.evaluate(() => {
    const script = document.createElement('script');
    script.textContent = 'window.hurt = 1';
    document.body.append(script);
    return window.hurt ?? null;
  });
  assert.equal(ran, null);
  assert.match(page.said.join(), /Content Security Policy/);
  const policy = await page.$eval('meta[http-equiv]', (meta) => meta.content);
  assert.match(policy, /default-src 'none'/);
  assert.match(policy, /script-src 'sha256-[^']+';/);
  await page.close();
});

test('axe finds nothing serious, in light, dark and narrow', async () => {
  const axe = readFileSync(load.resolve('axe-core/axe.min.js'), 'utf8');
  for (const how of [{}, { dark: true }, { width: 400 }]) {
    const page = await browser.open(sample, how);
    await cards(page, 24);
    // With all that can be opened.
    await page.evaluate(() => {
      for (const what of ['details', '.card details']) {
        for (const fold of document.querySelectorAll(what)) fold.open = true;
        dispatchEvent(new Event('beforeprint'));
      }
    });
    assert.equal((await page.$$('.record')).length, 24);
    await page.evaluate(axe);
    const { violations } = await page.evaluate(() => window.axe.run());
    const serious = violations.filter((v) => ['serious', 'critical'].includes(v.impact));
    assert.deepEqual(serious.map((v) => `${v.id}: ${v.nodes.map((n) => n.html).slice(0, 3)} ` +
                                        v.nodes[0].failureSummary), []);
    await page.close();
  }
});

test('nothing is wider than a narrow window', async () => {
  const page = await browser.open(sample, { width: 360, height: 740 });
  await reachPlayer(page);
  const [wide, window] = await page.evaluate(() => [document.documentElement.scrollWidth, innerWidth]);
  assert.ok(wide <= window, `${wide} px in a window of ${window}`);
  await page.close();
});

test('on paper every card that is open has its text', async () => {
  const page = await browser.open(sample);
  await cards(page, 24);
  await page.evaluate(() => { dispatchEvent(new Event('beforeprint')); });
  const empty = await page.$$eval('.card[open]', (all) =>
    all.filter((card) => !card.querySelector('.record')).length);
  assert.equal(empty, 0);
  const pdf = await page.pdf();
  assert.ok(pdf.length > 20000);
  await page.close();
});

test('the licences of what is in the page are named', async () => {
  const page = await browser.open(sample);
  const foot = (await texts(page, '.page-foot'))[0];
  for (const words of ['uplot 1.6.32, MIT', 'fft.js 4.0.4, MIT', 'Permission is hereby granted']) {
    assert.ok(foot.includes(words), `${words} is missing`);
  }
  await page.close();
});
