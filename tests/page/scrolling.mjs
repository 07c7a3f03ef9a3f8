// How long a page of 80 cases takes to its first screen, and how busy its main thread is while a reader
// scrolls through it: PAGE_TEMPLATE=... node tests/page/scrolling.mjs. A measurement, not a test.
//
// Times of tasks are those that the thread really ran, so that other work of the machine does not count.
import { readFileSync, rmSync, statSync } from 'node:fs';
import path from 'node:path';
import { Browser } from './browser.mjs';
import { makeSample } from './sample.mjs';

const kStep = 120;  // px of a turn of the wheel
const browser = await Browser.start();
const sample = makeSample({ cases: 80, heard: 26, keys: ['output', 'reference', 'against'] });
const file = path.join(browser.folder, 'trace.json');

function firstScreen() {
  const paint = performance.getEntriesByName('first-contentful-paint')[0];
  return { paint: paint?.startTime, parsed: performance.timing.domContentLoadedEventEnd -
           performance.timing.navigationStart };
}

async function scroll(page) {
  await page.mouse.move(640, 450);
  for (;;) {
    const before = await page.evaluate(() => scrollY);
    await page.mouse.wheel({ deltaY: kStep });
    await new Promise((done) => setTimeout(done, 30));
    const [y, end] = await page.evaluate(() => [scrollY, document.documentElement.scrollHeight]);
    if (y === before && y + 910 >= end) return end;
  }
}

// Top-level tasks of the page's main thread and the starts of its frames, in ms.
function read(trace) {
  const events = JSON.parse(readFileSync(trace, 'utf8')).traceEvents;
  const mains = events.filter((e) => e.name === 'thread_name' && e.args.name === 'CrRendererMain');
  const busy = (main) => events.filter((e) => e.pid === main.pid && e.tid === main.tid);
  const own = mains.map(busy).sort((a, b) => b.length - a.length)[0];
  const tasks = own.filter((e) => e.name === 'RunTask' && e.ph === 'X')
    .map((e) => ({ at: e.ts / 1000, wall: e.dur / 1000, ran: (e.tdur ?? e.dur) / 1000 }));
  const frames = own.filter((e) => e.name === 'WebFrameWidgetImpl::BeginMainFrame')
    .map((e) => e.ts / 1000).sort((a, b) => a - b);
  return { tasks, frames };
}

const page = await browser.open(sample);
await page.waitForFunction(() => performance.getEntriesByName('first-contentful-paint').length > 0);
const first = await page.evaluate(firstScreen);
await page.waitForFunction(() => document.readyState === 'complete');
await page.tracing.start({ path: file, categories: ['devtools.timeline', 'blink', '__metadata',
                                                    'disabled-by-default-devtools.timeline'] });
const height = await scroll(page);
await page.tracing.stop();
const { tasks, frames } = read(file);
const ran = frames.slice(1).map((end, at) =>
  tasks.filter((t) => t.at >= frames[at] && t.at < end).reduce((sum, t) => sum + t.ran, 0));
ran.sort((a, b) => a - b);
const share = ran.filter((ms) => ms < 16).length / ran.length;
const round = (ms) => Number(ms.toFixed(1));
console.log({
  megabytes: round(statSync(path.join(browser.folder, 'report.html')).size / 1e6),
  firstScreenMs: round(first.paint), parsedMs: first.parsed, heightPx: height, frames: ran.length,
  framesBelow16Ms: `${(100 * share).toFixed(2)} %`,
  frameMs: { median: round(ran[ran.length >> 1]), p99: round(ran[Math.floor(0.99 * ran.length)]),
             most: round(ran.at(-1)) },
  longestTaskMs: { ran: round(Math.max(...tasks.map((t) => t.ran))),
                   byTheClock: round(Math.max(...tasks.map((t) => t.wall))) },
  tasksAbove50Ms: tasks.filter((t) => t.ran > 50).length,
});
rmSync(file);
await browser.stop();
