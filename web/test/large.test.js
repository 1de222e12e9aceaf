// Long files: how long one waits for findings after a key press, and that one can go on typing.
import assert from 'node:assert/strict';
import test from 'node:test';

import { checkCount, nextCheck, openFile, openPage, statusOf, textOf } from './support/browser.js';

function fileOfSize(size) {
  const parts = [];
  for (let length = 0, number = 0; length < size; number += 1) {
    const entry =
      `name${number} =\n  (DESCRIPTION =\n` +
      `    (ADDRESS = (PROTOCOL = TCP)(HOST = host${number}.example.com)(PORT = 2881))\n` +
      `    (CONNECT_DATA = (SERVICE_NAME = service${number}))\n  )\n\n`;
    parts.push(entry);
    length += entry.length;
  }
  return parts.join('');
}

// The time from a key press to the findings that come of it, in milliseconds: the middle one.
async function keyToFindings(face, key, presses) {
  const times = [];
  for (let press = 0; press < presses; press += 1) {
    await new Promise((resolve) => setTimeout(resolve, 600));
    const before = await checkCount(face);
    await face.tab.evaluate(() => {
      addEventListener('keydown', () => (globalThis.pressed = performance.now()), {
        once: true,
        capture: true,
      });
      const observer = new MutationObserver(() => {
        globalThis.told = performance.now();
        observer.disconnect();
      });
      observer.observe(document.getElementById('status'), { childList: true });
    });
    await face.tab.keyboard.press(key);
    await nextCheck(face, before);
    times.push(await face.tab.evaluate(() => globalThis.told - globalThis.pressed));
  }
  return Math.round(times.sort((left, right) => left - right)[(presses - 1) / 2]);
}

// How long the page did not heed the keyboard at most while text was typed, in milliseconds.
async function longestStandstill(face) {
  await face.tab.evaluate(() => {
    globalThis.longest = 0;
    new PerformanceObserver((list) => {
      for (const { duration } of list.getEntries())
        globalThis.longest = Math.max(globalThis.longest, duration);
    }).observe({ type: 'longtask' });
  });
  await face.tab.keyboard.type('# some words ', { delay: 60 });
  await new Promise((resolve) => setTimeout(resolve, 1500));
  return Math.round(await face.tab.evaluate(() => globalThis.longest));
}

for (const [label, size, limit] of [
  ['10 kB', 10_000, 500],
  ['1 MB', 1_000_000, 1500],
  ['5 MB', 5_000_000, 4000],
])
  test(`a file of ${label}`, async (context) => {
    const face = await openPage();
    await openFile(face, 'long.ora', fileOfSize(size));
    await statusOf(face, 'nothing wrong');
    await face.tab.focus('.cm-content');
    const waited = await keyToFindings(face, 'x', 5);
    // The worst key: no lookup comes past it.
    const broken = await keyToFindings(face, ')', 1);
    assert.match(await textOf(face.tab, '#status'), /error/);
    const standstill = await longestStandstill(face);
    context.diagnostic(
      `${label}: findings ${waited} ms after a key press, ${broken} ms after one that breaks the file, longest standstill ${standstill} ms`,
    );
    assert.ok(Math.max(waited, broken) < limit, `${waited} ms, ${broken} ms`);
    assert.ok(standstill < 1000, `${standstill} ms`);
    // Of thousands of entries only some are elements.
    assert.ok((await face.tab.$$('.entry')).length < 60);
    await face.tab.focus('.entries');
    await face.tab.keyboard.press('End');
    await face.tab.waitForFunction(() => document.querySelector('.entry[aria-selected=true]'));
    assert.deepEqual(face.errors, []);
    await face.tab.close();
  });

// A file in which each entry is laid out anew, and has a finding that can be fixed.
function unformattedOfSize(size) {
  const parts = [];
  for (let length = 0, number = 0; length < size; number += 1) {
    const one = `n${number}=(DESCRIPTION=(ADDRESS=(HOST=h)(PORT=1))(CONNECT_DATA=(SID=s))${number % 2 ? '' : ' '})\n`;
    parts.push(one);
    length += one.length;
  }
  return parts.join('');
}

for (const [label, size, limit] of [['1 MB', 1_000_000, 20_000]])
  test(`a file of ${label} is laid out, and back again`, { timeout: 120_000 }, async (context) => {
    const face = await openPage();
    const { tab } = face;
    await openFile(face, 'long.ora', unformattedOfSize(size));
    await tab.evaluate(() => {
      globalThis.longest = 0;
      new PerformanceObserver((list) => {
        for (const { duration } of list.getEntries())
          globalThis.longest = Math.max(globalThis.longest, duration);
      }).observe({ type: 'longtask' });
    });
    const timed = async (action) => {
      const before = await checkCount(face);
      const begin = performance.now();
      await action();
      await nextCheck(face, before, 60_000);
      return Math.round(performance.now() - begin);
    };
    const laidOut = await timed(() => tab.click('#format'));
    assert.equal(await textOf(tab, '#editor .cm-line'), 'n0 =');
    const undone = await timed(async () => {
      await tab.focus('.cm-content');
      await tab.keyboard.down('Control');
      await tab.keyboard.press('z');
      await tab.keyboard.up('Control');
    });
    assert.match(await textOf(tab, '#editor .cm-line'), /^n0=\(DESC/);
    const standstill = Math.round(await tab.evaluate(() => globalThis.longest));
    context.diagnostic(
      `${label}: laid out after ${laidOut} ms, undone after ${undone} ms, longest standstill ${standstill} ms`,
    );
    assert.ok(Math.max(laidOut, undone) < limit, `${laidOut} ms, ${undone} ms`);
    assert.deepEqual(face.errors, []);
    await tab.close();
  });
