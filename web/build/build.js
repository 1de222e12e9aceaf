// Makes the page: one file with all that it needs inside.
//
//   KZTNS_PROJECT=FOLDER node build/build.js ENGINE_FOLDER OUTPUT
//
// The folder has what emscripten makes: kztns_engine.js and kztns_engine.wasm.
import { createHash } from 'node:crypto';
import { readFile, writeFile } from 'node:fs/promises';
import path from 'node:path';
import { fileURLToPath } from 'node:url';

import { build } from 'esbuild';

import { loadEngine } from './engine.js';
import { licences } from './licences.js';

const web = path.dirname(path.dirname(fileURLToPath(import.meta.url)));
const [engine, output] = process.argv.slice(2).map((argument) => path.resolve(argument));
const source = (file) => path.join(web, 'src', file);

const common = {
  bundle: true,
  minify: true,
  target: 'es2022',
  write: false,
  legalComments: 'none',
  absWorkingDir: web,
};

// Modules that are made here, by name.
const provided = (modules) => ({
  name: 'provided',
  setup({ onResolve, onLoad }) {
    const filter = new RegExp(`^(${Object.keys(modules).join('|')})$`);
    onResolve({ filter }, ({ path: name }) => ({ path: name, namespace: 'provided' }));
    onLoad({ filter: /.*/, namespace: 'provided' }, ({ path: name }) => modules[name]);
  },
});

async function bundle(entry, options) {
  const { outputFiles, metafile } = await build({
    ...common,
    entryPoints: [entry],
    metafile: true,
    ...options,
  });
  return { text: outputFiles[0].text, inputs: Object.keys(metafile.inputs) };
}

// What the command calls things, asked of it once.
const askEngine = await loadEngine(engine);
const [{ result: words }] = askEngine({ id: 1, method: 'kztns/words' });

const glue = await readFile(path.join(engine, 'kztns_engine.js'), 'utf8');
const worker = await bundle(source('engine/worker.ts'), {
  format: 'iife',
  // What emscripten asks of node stays out of the browser's worker.
  external: ['fs', 'path', 'node:*'],
  plugins: [provided({ engine: { contents: glue, loader: 'js' } })],
});
const page = await bundle(source('main.ts'), {
  format: 'iife',
  loader: { '.ora': 'text' },
  plugins: [
    provided({
      'engine-wasm': {
        contents: await readFile(path.join(engine, 'kztns_engine.wasm')),
        loader: 'binary',
      },
      words: { contents: JSON.stringify(words), loader: 'json' },
      'worker-source': { contents: worker.text, loader: 'text' },
      licences: { contents: await licences(web, process.env.KZTNS_PROJECT), loader: 'text' },
    }),
  ],
});
const style = await bundle(source('style.css'), { loader: { '.css': 'css' } });

// In a page, the end of a script is where its end tag is, also in a text.
const script = page.text
  .trim()
  .replace(/<\/(script)/gi, '<\\/$1')
  .replaceAll('<!--', '<\\!--');
const hash = createHash('sha256').update(script).digest('base64');
// The worker comes from a blob, the engine is compiled from bytes; nothing else is loaded or sent.
const policy = [
  "default-src 'none'",
  `script-src 'sha256-${hash}' 'wasm-unsafe-eval'`,
  'worker-src blob:',
  "style-src 'unsafe-inline'",
  "base-uri 'none'",
  "form-action 'none'",
].join('; ');

const template = await readFile(source('page.html'), 'utf8');
const html = template
  .replace('@POLICY@', () => policy)
  .replace(/\s*@STYLE@\s*/, () => style.text.trim())
  .replace(/\s*@SCRIPT@\s*/, () => script);
await writeFile(output, html);
