// The page in Firefox: it draws, decodes and plays there too.
import assert from 'node:assert/strict';
import test, { after } from 'node:test';
import { mkdtempSync, rmSync } from 'node:fs';
import os from 'node:os';
import path from 'node:path';
import { askedOutside, Browser, skip } from './browser.mjs';
import { makeSample } from './sample.mjs';
import { startSoundServer } from './sound_server.mjs';

const folder = mkdtempSync(path.join(os.tmpdir(), 'sound-'));
const sound = await startSoundServer(folder);
if (!sound) skip('Firefox plays only where there is a sound server, and pulseaudio is not there');
const browser = await Browser.start('firefox', { PULSE_SERVER: sound.server });
after(async () => {
  await browser.stop();
  await sound.stop();
  rmSync(folder, { recursive: true, force: true });
});

// What goes to the way out of the page's audio is looked at on its way.
function look() {
  const connect = AudioNode.prototype.connect;
  AudioNode.prototype.connect = function (to, ...rest) {
    if (to instanceof AudioDestinationNode) {
      window.heardBy ??= new AnalyserNode(this.context, { fftSize: 2048 });
      connect.call(this, window.heardBy);
    }
    return connect.call(this, to, ...rest);
  };
}

test('Firefox draws, plays and filters without a word', async () => {
  const sample = makeSample({ cases: 12, heard: 6, seconds: 2, rate: 16000 });
  const page = await browser.open(sample, { before: look });
  await page.waitForFunction(() => document.querySelectorAll('.card').length === 12);
  await page.waitForSelector('.player .play');
  await page.$eval('.player', (player) => player.scrollIntoView());
  await page.waitForFunction(() => document.querySelectorAll('.player canvas[aria-label*=peak]').length >= 4);
  // Its name has the peak before it is drawn.
  await page.waitForFunction(() => {
    const canvas = document.querySelector('.player .track:not(.is-ruler) canvas');
    if (canvas.width === 0) return false;
    const pixels = canvas.getContext('2d').getImageData(0, 0, canvas.width, canvas.height).data;
    return pixels.some((v) => v > 0);
  });
  await page.click('.player .play');
  await page.waitForSelector('.play[aria-label=Pause]');
  await page.waitForFunction(() => {
    const values = new Float32Array(2048);
    window.heardBy.getFloatTimeDomainData(values);
    return Math.max(...values) > 0.01;
  });
  await page.keyboard.press('2');
  await page.waitForFunction(() =>
    document.querySelectorAll('.version')[1].getAttribute('aria-pressed') === 'true');
  await page.select('select[name=group]', 'codec');
  await page.waitForFunction(() => location.hash === '#group=codec');
  assert.deepEqual([page.said, askedOutside(page)], [[], []]);
  await page.close();
});
