// The packages that the tests run on: in PAGE_PACKAGES, else beside this file.
import { createRequire } from 'node:module';
import path from 'node:path';
import { fileURLToPath } from 'node:url';

const here = path.dirname(fileURLToPath(import.meta.url));
const folder = process.env.PAGE_PACKAGES ?? path.join(here, 'node_modules');
export const load = createRequire(path.join(folder, 'none.js'));
