// Reads the data of the page and draws it.
import { el } from './dom.js';
import { drawKeys } from './listen/keys.js';
import { Cases } from './screen/cases.js';
import { drawHead } from './screen/head.js';
import { drawMeasures } from './screen/measures_table.js';

const kVersion = 1;

function start() {
  const head = document.getElementById('top');
  const text = document.getElementById('data')?.textContent;
  if (!text) {
    head.append(el('h1', {}, 'This page has no results in it'));
    return;
  }
  const data = JSON.parse(text);
  if (data.version !== kVersion) {
    head.append(el('h1', {}, `This page shows results of version ${kVersion}, not ${data.version}`));
    return;
  }
  drawHead(head, data);
  const cases = new Cases(document.getElementById('cases'), data);
  drawMeasures(document.getElementById('measures'), data, (part) => {
    cases.choose(part);
    document.getElementById('cases').scrollIntoView();
  });
  drawKeys(document.getElementById('keys'));
}

start();
