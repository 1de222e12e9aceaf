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

export async function licences(web) {
  const modules = path.join(web, 'node_modules');
  const { dependencies } = JSON.parse(await readFile(path.join(web, 'package.json'), 'utf8'));
  const byText = new Map();
  for (const name of [...(await bundledPackages(modules, Object.keys(dependencies)))].sort()) {
    const text = await licenceOf(path.join(modules, name));
    byText.set(text, [...(byText.get(text) ?? []), name]);
  }
  const own =
    'kztns: the kzoci authors, Apache License 2.0 (https://www.apache.org/licenses/LICENSE-2.0)';
  const others = [...byText].map(([text, names]) => `${names.join(', ')}\n\n${text}`);
  const compiled = [
    'JSON for Modern C++ (nlohmann-json): Copyright (c) 2013-2022 Niels Lohmann, MIT License',
    'emscripten: Copyright (c) 2010-2014 Emscripten authors, MIT License; musl: Copyright © 2005-2020 Rich Felker, et al., MIT License; libc++: LLVM project, Apache License 2.0 with LLVM exceptions',
  ];
  return [own, ...compiled, ...others].join(`\n\n${'-'.repeat(40)}\n\n`);
}
