// The licences of all that is in the page, as one text.
import { readdir, readFile } from 'node:fs/promises';
import path from 'node:path';

async function licenceOf(folder) {
  const file = (await readdir(folder)).find((name) => /^licen[cs]e/i.test(name));
  if (file === undefined) throw new Error(`${folder} has no licence`);
  return (await readFile(path.join(folder, file), 'utf8')).trim();
}

// The packages that are bundled: those that package.json needs, and what they need.
async function bundledPackages(modules, names, found = new Set()) {
  for (const name of names) {
    if (found.has(name)) continue;
    found.add(name);
    const { dependencies = {} } = JSON.parse(
      await readFile(path.join(modules, name, 'package.json'), 'utf8'),
    );
    await bundledPackages(modules, Object.keys(dependencies), found);
  }
  return found;
}

async function ofPackages(web) {
  const modules = path.join(web, 'node_modules');
  const { dependencies } = JSON.parse(await readFile(path.join(web, 'package.json'), 'utf8'));
  const byText = new Map();
  for (const name of [...(await bundledPackages(modules, Object.keys(dependencies)))].sort()) {
    const text = await licenceOf(path.join(modules, name));
    byText.set(text, [...(byText.get(text) ?? []), name]);
  }
  return [...byText].map(([text, names]) => `${names.join(', ')}\n\n${text}`);
}

const debianCopyright = (name) => `/usr/share/doc/${name}/copyright`;

// The paragraphs of a copyright file of Debian; each names its files, or is a licence's text.
async function paragraphsOf(file) {
  const text = await readFile(file, 'utf8');
  return text.split(/\n\s*\n/);
}

// A licence's text, without Debian's marks for lines.
async function licenceIn(file, name) {
  const found = (await paragraphsOf(file)).find((one) => one.startsWith(`License: ${name}\n `));
  if (found === undefined) throw new Error(`${file} has no text of ${name}`);
  return found
    .split('\n')
    .slice(1)
    .map((line) => line.replace(/^ \.?/, ''))
    .join('\n');
}

// The copyright of files, by the beginning of their paragraph.
async function copyrightIn(file, files) {
  const of = (await paragraphsOf(file)).find((one) => files.test(one));
  const found = of?.match(/^Copyright:((?:.|\n )*)/m)?.[1];
  if (!found) throw new Error(`${file} has no copyright of ${files}`);
  return found
    .trim()
    .split('\n')
    .map((line) => `Copyright (c) ${line.trim()}`)
    .join('\n');
}

async function ofJson() {
  const file = debianCopyright('nlohmann-json3-dev');
  const holders = await Promise.all(
    [/^Files: \*/, /^Files: .*\/to_chars\.hpp/, /^Files: .*\/serializer\.hpp/].map((files) =>
      copyrightIn(file, files),
    ),
  );
  return `nlohmann-json (JSON for Modern C++)\n\n${holders.join('\n')}\n\n${await licenceIn(file, 'Expat')}`;
}

// What emscripten puts into a program: its own library, musl, and LLVM's libraries of C++.
async function ofCompiler() {
  const file = debianCopyright('emscripten');
  const own = await copyrightIn(file, /^Files:\s+\*\n/);
  const musl = await readFile('/usr/share/emscripten/system/lib/libc/musl/COPYRIGHT', 'utf8');
  return [
    `emscripten\n\n${own}\n\n${await licenceIn(file, 'Expat')}`,
    `musl, in emscripten\n\n${musl.trim()}`,
    'libc++, libc++abi and compiler-rt, in emscripten: the LLVM project, Apache License 2.0 (above) with LLVM Exceptions',
  ];
}

export async function licences(web, project) {
  const own = await licenceOf(project);
  return [
    `kztns\n\nCopyright (c) the kzoci authors\n\n${own}`,
    await ofJson(),
    ...(await ofCompiler()),
    ...(await ofPackages(web)),
  ].join(`\n\n${'-'.repeat(40)}\n\n`);
}
