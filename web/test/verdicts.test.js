// The page says of a file's entries what the command says: of the odd files that the project
// keeps, and of generated ones, which scripts/web writes.
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { readdirSync, readFileSync } from 'node:fs';
import path from 'node:path';

import { fileOf, moduleOf, onPage, openPath, textOf } from './support/browser.js';
import { command, project } from './support/places.js';

const generated = path.join(project, 'build/web/files');

function listed(file) {
  const text = execFileSync(command, ['list', '--format', 'json', file], { encoding: 'utf8' });
  return JSON.parse(text).map(({ name, line, verdict, link }) => [
    name,
    String(line),
    verdict,
    link,
  ]);
}

const { invisible } = await moduleOf('invisible.ts');

// What is invisible is shown by its bytes, an empty name as such.
const visible = (text) =>
  text.replace(invisible, (one) => Buffer.from(one).toString('hex').replace(/../g, '\\x$&'));
const shown = ([name, line, verdict, link]) => [
  name === '' ? '""' : visible(name),
  line,
  verdict,
  visible(link),
];

async function shownEntries(tab) {
  return tab.$$eval('.entry', (rows) =>
    rows.map((row) => [
      row.querySelector('.name').textContent,
      row.querySelector('.second span:last-child').textContent.replace('line ', ''),
      row.querySelector('.verdict').textContent,
      row.querySelector('.link-string')?.textContent ?? '',
    ]),
  );
}

async function openAndList(page, file) {
  await openPath(page, file);
  return shownEntries(page.tab);
}

onPage('the odd files that are kept', { height: 1600 }, async (page) => {
  const folder = path.join(project, 'tests/probes');
  const files = readdirSync(folder).filter((name) => name.endsWith('.ora'));
  assert.ok(files.length >= 54);
  for (const name of files) {
    const entries = await openAndList(page, path.join(folder, name));
    if (name === '05_utf16le.ora') {
      // It is converted, which the page says.
      assert.match(await textOf(page.tab, '#notice'), /UTF-16/);
      const text = readFileSync(path.join(folder, name)).toString('utf16le').replace('\uFEFF', '');
      assert.deepEqual(entries, listed(fileOf(name, text)).map(shown), name);
    } else {
      assert.deepEqual(entries, listed(path.join(folder, name)).map(shown), name);
    }
  }
});

onPage('300 generated files', { height: 1600 }, async (page) => {
  const files = readdirSync(generated).filter((name) => name.endsWith('.ora'));
  assert.equal(files.length, 300);
  const verdicts = new Set();
  for (const name of files) {
    const file = path.join(generated, name);
    const expected = listed(file).map(shown);
    assert.deepEqual(await openAndList(page, file), expected, name);
    expected.forEach(([, , verdict]) => verdicts.add(verdict));
  }
  assert.ok(verdicts.has('ok') && verdicts.has('refused') && verdicts.has('unreachable'));
});
