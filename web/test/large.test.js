// Long files: how long one waits for findings after a key press, and that one can go on typing.
import assert from 'node:assert/strict';

import {
  onPage,
  openFile,
  pressTogether,
  statusOf,
  textOf,
  untilChecked,
} from './support/browser.js';

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
async function keyToFindings(page, key, presses) {
  const times = [];
  for (let press = 0; press < presses; press += 1) {
    await new Promise((resolve) => setTimeout(resolve, 600));
    await page.tab.evaluate(() => {
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
    await untilChecked(page, () => page.tab.keyboard.press(key));
    times.push(await page.tab.evaluate(() => globalThis.told - globalThis.pressed));
  }
  return Math.round(times.sort((left, right) => left - right)[(presses - 1) / 2]);
}

// How long the page did not heed the keyboard at most while text was typed, in milliseconds.
async function longestStandstill(page) {
  await page.tab.evaluate(() => {
    globalThis.longest = 0;
    new PerformanceObserver((list) => {
      for (const { duration } of list.getEntries())
        globalThis.longest = Math.max(globalThis.longest, duration);
    }).observe({ type: 'longtask' });
  });
  await page.tab.keyboard.type('# some words ', { delay: 60 });
  await new Promise((resolve) => setTimeout(resolve, 1500));
  return Math.round(await page.tab.evaluate(() => globalThis.longest));
}

for (const [label, size, limit] of [
  ['10 kB', 10_000, 500],
  ['1 MB', 1_000_000, 1500],
  ['5 MB', 5_000_000, 4000],
])
  onPage(`a file of ${label}`, async (page, context) => {
    await openFile(page, 'long.ora', fileOfSize(size));
    await statusOf(page, 'nothing wrong');
    await page.tab.focus('.cm-content');
    const waited = await keyToFindings(page, 'x', 5);
    // The worst key: no lookup comes past it.
    const broken = await keyToFindings(page, ')', 1);
    assert.match(await textOf(page.tab, '#status'), /error/);
    const standstill = await longestStandstill(page);
    context.diagnostic(
      `${label}: findings ${waited} ms after a key press, ${broken} ms after one that breaks the file, longest standstill ${standstill} ms`,
    );
    assert.ok(Math.max(waited, broken) < limit, `${waited} ms, ${broken} ms`);
    assert.ok(standstill < 1000, `${standstill} ms`);
    // Of thousands of entries only some are elements.
    assert.ok((await page.tab.$$('.entry')).length < 60);
    await page.tab.focus('.entries');
    await page.tab.keyboard.press('End');
    await page.tab.waitForFunction(() => document.querySelector('.entry[aria-selected=true]'));
    assert.deepEqual(page.errors, []);
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
  onPage(
    `a file of ${label} is laid out, and back again`,
    { timeout: 120_000 },
    async (page, context) => {
      const { tab } = page;
      await openFile(page, 'long.ora', unformattedOfSize(size));
      await tab.evaluate(() => {
        globalThis.longest = 0;
        new PerformanceObserver((list) => {
          for (const { duration } of list.getEntries())
            globalThis.longest = Math.max(globalThis.longest, duration);
        }).observe({ type: 'longtask' });
      });
      const timed = async (action) => {
        const begin = performance.now();
        await untilChecked(page, action, 60_000);
        return Math.round(performance.now() - begin);
      };
      const laidOut = await timed(() => tab.click('#format'));
      assert.equal(await textOf(tab, '#editor .cm-line'), 'n0 =');
      const undone = await timed(async () => {
        await tab.focus('.cm-content');
        await pressTogether(tab, 'Control', 'z');
      });
      assert.match(await textOf(tab, '#editor .cm-line'), /^n0=\(DESC/);
      const standstill = Math.round(await tab.evaluate(() => globalThis.longest));
      context.diagnostic(
        `${label}: laid out after ${laidOut} ms, undone after ${undone} ms, longest standstill ${standstill} ms`,
      );
      assert.ok(Math.max(laidOut, undone) < limit, `${laidOut} ms, ${undone} ms`);
      assert.deepEqual(page.errors, []);
    },
  );
