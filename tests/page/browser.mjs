// A page of the report in a browser without a window; whoever has none skips.
import { existsSync, mkdtempSync, rmSync } from 'node:fs';
import os from 'node:os';
import path from 'node:path';
import { pathToFileURL } from 'node:url';
import { load } from './packages.mjs';
import { writePage } from './page_file.mjs';

const kSkip = 77;
const kPrograms = { chrome: ['chromium', 'chromium-browser', 'google-chrome'],
                    firefox: ['firefox-esr', 'firefox'] };

// Ends the program as one that could not be run here.
export function skip(why) {
  console.log(`Skipped: ${why}`);
  process.exit(kSkip);
}

// The path of the browser; without one the program ends as skipped.
function find(browser) {
  for (const folder of process.env.PATH.split(':')) {
    for (const name of kPrograms[browser]) {
      if (existsSync(path.join(folder, name))) return path.join(folder, name);
    }
  }
  return skip(`none of ${kPrograms[browser].join(', ')} is there`);
}

// Chromium's sandbox is not for root, who runs tests in containers.
const kWords = {
  chrome: ['--autoplay-policy=user-gesture-required', '--mute-audio', '--disable-gpu',
           '--disable-dev-shm-usage', ...(process.getuid() === 0 ? ['--no-sandbox'] : [])],
  firefox: [],
};

// What a page asked for beside itself; what it has in itself needs no network.
export function askedOutside(page) {
  return page.asked.filter((url) => url.split('#')[0] !== page.address && !/^(blob|data):/.test(url));
}

export class Browser {
  static async start(browser = 'chrome', env = {}) {
    const executablePath = find(browser);
    const self = new Browser();
    self.folder = mkdtempSync(path.join(os.tmpdir(), 'page-'));
    const puppeteer = load('puppeteer-core');
    self.browser = await (puppeteer.default ?? puppeteer).launch({
      browser, executablePath, headless: true, protocolTimeout: 0,
      args: kWords[browser], env: { ...process.env, ...env },
    });
    return self;
  }

  // Opens a page with this sample in it. What the page says and asks for is in said and asked.
  async open(sample, { fragment = '', before = null, width = 1280, height = 900, dark = false,
                       anyScript = false } = {}) {
    const file = path.join(this.folder, 'report.html');
    writePage(process.env.PAGE_TEMPLATE, sample, file);
    const page = await this.browser.newPage();
    page.setDefaultTimeout(0);  // However busy the machine is: ctest has a limit for the whole.
    page.said = [];
    page.asked = [];
    page.on('console', (message) => page.said.push(message.text()));
    page.on('pageerror', (error) => page.said.push(String(error)));
    page.on('request', (request) => page.asked.push(request.url()));
    await page.setViewport({ width, height });
    if (dark) await page.emulateMediaFeatures([{ name: 'prefers-color-scheme', value: 'dark' }]);
    // For tests that bring programs of their own.
    if (anyScript) await page.setBypassCSP(true);
    if (before) await page.evaluateOnNewDocument(before);
    page.address = pathToFileURL(file).href;
    await page.goto(page.address + fragment, { waitUntil: 'domcontentloaded', timeout: 0 });
    return page;
  }

  async stop() {
    await this.browser.close();
    rmSync(this.folder, { recursive: true, force: true });
  }
}
