// What is tested, and where it is.
import path from 'node:path';
import { fileURLToPath } from 'node:url';

export const project =
  process.env.KZTNS_PROJECT ?? fileURLToPath(new URL('../../..', import.meta.url));
export const pageFile = path.join(project, 'build/web/kztns.html');
export const engineFolder = path.join(project, 'build/web/web/engine');
export const command = path.join(project, 'build/kztns');
