// All inputs and outputs by name and hash.
import { el } from '../dom.js';
import { copyButton } from '../copy.js';

function line(file) {
  const hash = file.sha256 ?? '';
  return el('tr', {},
    el('th', { scope: 'row', class: 'name' }, file.name),
    el('td', {}, file.role ?? ''),
    el('td', { class: 'hash' }, hash ? [el('code', { title: hash }, hash.slice(0, 16), '\u2026'), ' ',
                                        copyButton(hash, `the hash of ${file.name}`)] : ''),
    el('td', { class: 'name quiet' }, file.path ?? ''));
}

export function filesTable(one) {
  const files = one.files ?? [];
  if (files.length === 0) return null;
  return el('details', { class: 'fold' },
    el('summary', {}, `Files (${files.length})`),
    el('div', { class: 'wide', tabindex: '0', role: 'region', 'aria-label': `Files of ${one.id}` },
       el('table', {},
          el('thead', {}, el('tr', {}, ['File', 'Role', 'SHA-256', 'Path'].map((name) =>
            el('th', { scope: 'col' }, name)))),
          el('tbody', {}, files.map(line)))));
}
