// The first lines: the sentence that matters, then who made it, where and when.
import { badge } from '../icons.js';
import { el } from '../dom.js';
import { count, when } from '../words.js';
import { copyButton } from '../copy.js';

function fact(name, value) {
  return value ? [el('div', {}, el('dt', {}, name), el('dd', {}, value))] : [];
}

export function drawHead(root, data) {
  document.title = data.title || data.sentence || 'Report';
  const against = data.against;
  root.append(
    el('p', { class: 'page-title' }, data.title ?? ''),
    el('h1', {}, data.sentence ?? ''),
    el('dl', { class: 'facts' },
       fact('Bench', data.bench), fact('Engine', data.engine), fact('Machine', data.machine),
       fact('Started', when(data.started)),
       fact('Suite', data.suite === data.title ? '' : data.suite)));
  if (against) {
    root.append(el('p', { class: 'against' },
                   el('span', {}, 'Against ', el('strong', {}, against.name), ':'),
                   badge(against.verdict),
                   el('span', { class: 'quiet' },
                      [against.engine, when(against.started)].filter(Boolean).join(', '))));
  }
  for (const note of [data.worst_only || fewer(data), data.left_out]) {
    if (note) root.append(el('p', { class: 'note' }, note));
  }
  if (data.command) {
    root.append(el('div', { class: 'command' }, el('code', {}, data.command),
                   copyButton(data.command, 'the command of this run')));
  }
}

function fewer(data) {
  const shown = data.shown ?? data.cases.length;
  return data.total > shown ? `The worst ${shown} of ${count(data.total, 'case')}.` : '';
}
