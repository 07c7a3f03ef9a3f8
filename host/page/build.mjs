// Makes the page of reports, one file that needs no other: node build.mjs OUT [PACKAGES_FOLDER]
//
// PACKAGES_FOLDER is the node_modules that `npm ci` has filled, the one beside this file by default.
// Two markers stay in the page, each alone on a line: <!--DATA--> and, after the script, <!--AUDIO-->.
import { createHash } from 'node:crypto';
import { readFile, writeFile } from 'node:fs/promises';
import { createRequire } from 'node:module';
import path from 'node:path';
import { fileURLToPath } from 'node:url';

const here = path.dirname(fileURLToPath(import.meta.url));
const [out, packages = path.join(here, 'node_modules')] = process.argv.slice(2);
if (!out) {
  console.error('usage: node build.mjs OUT [PACKAGES_FOLDER]');
  process.exit(2);
}
const esbuild = createRequire(path.join(path.resolve(packages), 'none.js'))('esbuild');

// Returns the one text that an entry and all it imports are bundled to.
async function bundle(entry, options = {}) {
  const result = await esbuild.build({
    entryPoints: [path.join(here, entry)],
    nodePaths: [path.resolve(packages)],
    bundle: true,
    write: false,
    minify: true,
    legalComments: 'none',
    charset: 'utf8',
    format: 'iife',
    target: ['chrome110', 'firefox115'],
    ...options,
  });
  return result.outputFiles[0].text.trim();
}

// Returns name, version, licence and the licence's text of a package that is part of the page.
async function licence(name) {
  const folder = path.join(packages, name);
  const about = JSON.parse(await readFile(path.join(folder, 'package.json'), 'utf8'));
  const text = await readFile(path.join(folder, 'LICENSE'), 'utf8').catch(async () => {
    const readme = await readFile(path.join(folder, 'README.md'), 'utf8');
    const at = readme.search(/^#+ LICENSE$/im);
    if (at < 0) throw new Error(`${name} has no text of its licence`);
    return readme.slice(readme.indexOf('\n', at));
  });
  return { name, version: about.version, licence: about.license, text: text.trim() };
}

// What stands in HTML as text.
const escaped = (text) => text.replace(/[&<>"]/g, (c) => `&#${c.charCodeAt(0)};`);

const about = JSON.parse(await readFile(path.join(here, 'package.json'), 'utf8'));
const licences = await Promise.all(Object.keys(about.dependencies).map(licence));
const worker = await bundle('src/compute/worker.js');
const script = await bundle('src/main.js', {
  define: { WORKER_SOURCE: JSON.stringify(worker) },
});
const style = await bundle('style/page.css');
if (/<\/script|<!--/i.test(script) || /<\/style/i.test(style)) {
  throw new Error('the bundle would end its own element');
}

const hash = createHash('sha256').update(script, 'utf8').digest('base64');
const parts = {
  POLICY: [
    "default-src 'none'",
    `script-src 'sha256-${hash}'`,
    "style-src 'unsafe-inline'",
    'img-src data: blob:',
    'media-src data: blob:',
    'worker-src data: blob:',
    "base-uri 'none'",
    "form-action 'none'",
  ].join('; '),
  STYLE: style,
  SCRIPT: script,
  LICENCES: licences
    .map((one) => `<h3>${escaped(`${one.name} ${one.version}, ${one.licence}`)}</h3>\n` +
                  `<pre>${escaped(one.text)}</pre>`)
    .join('\n'),
};
const template = await readFile(path.join(here, 'template.html'), 'utf8');
const page = template.replace(/\{\{([A-Z]+)\}\}/g, (_, name) => parts[name]);
await writeFile(out, page);
console.log(`${out}: ${page.length} characters`);
