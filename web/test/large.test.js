// Long files: how long one waits for findings after a key press, and that one can go on typing.
import assert from 'node:assert/strict';

import {
  clickButton,
  onPage,
  openFile,
  pressTogether,
  statusOf,
  textOf,
  untilChecked,
} from './support/browser.js';
import { fileOfSize, shortEntriesOfSize } from './support/long_files.js';

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

// Notes how long the page does not heed the keyboard at most from now on.
async function watchStandstills(tab) {
  await tab.evaluate(() => {
    globalThis.longest = 0;
    new PerformanceObserver((list) => {
      for (const { duration } of list.getEntries())
        globalThis.longest = Math.max(globalThis.longest, duration);
    }).observe({ type: 'longtask' });
  });
}

// In milliseconds.
const longestStandstill = async (tab) => Math.round(await tab.evaluate(() => globalThis.longest));

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
    await watchStandstills(page.tab);
    await page.tab.keyboard.type('# some words ', { delay: 60 });
    await new Promise((resolve) => setTimeout(resolve, 1500));
    const standstill = await longestStandstill(page.tab);
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

const sizes = [
  ['1 MB', 1_000_000],
  ['5 MB', 5_000_000],
];
const patience = 120_000;

// How long one waits, until the findings are those of the text, in milliseconds.
async function timed(page, action) {
  const begin = performance.now();
  await untilChecked(page, action, patience);
  return Math.round(performance.now() - begin);
}

async function undo(tab) {
  await tab.focus('.cm-content');
  await pressTogether(tab, 'Control', 'z');
}

const firstLine = (tab) => textOf(tab, '#editor .cm-line');

// Notes how many edits a worker's answers have.
async function watchAnswers(tab) {
  await tab.evaluate(() => {
    globalThis.mostEdits = 0;
    const { postMessage } = Worker.prototype;
    Worker.prototype.postMessage = function (...message) {
      this.onmessage ??= ({ data }) =>
        (globalThis.mostEdits = Math.max(globalThis.mostEdits, data.result?.edits?.length ?? 0));
      postMessage.apply(this, message);
    };
  });
}

// The editor's work for a change grows with its edits: a hundred thousand stop the page.
async function hadFewEdits(tab) {
  const mostEdits = await tab.evaluate(() => globalThis.mostEdits);
  assert.ok(mostEdits > 0 && mostEdits < 2000, `${mostEdits} edits`);
}

for (const [label, size] of sizes)
  onPage(`${label} are laid out, and back again`, { timeout: patience }, async (page, context) => {
    const { tab } = page;
    await openFile(page, 'long.ora', shortEntriesOfSize(size));
    await watchStandstills(tab);
    await watchAnswers(tab);
    let whileItWorks;
    const laidOut = await timed(page, async () => {
      await tab.click('#format');
      await tab.type('.filter input', 'n1');
      whileItWorks = [await firstLine(tab), await tab.$eval('.filter input', ({ value }) => value)];
    });
    assert.match(whileItWorks[0], /^n0=\(/);
    assert.equal(whileItWorks[1], 'n1');
    assert.equal(await firstLine(tab), 'n0 =');
    const undone = await timed(page, () => undo(tab));
    assert.match(await firstLine(tab), /^n0=\(/);
    const standstill = await longestStandstill(tab);
    context.diagnostic(
      `${label}: laid out after ${laidOut} ms, undone after ${undone} ms, longest standstill ${standstill} ms`,
    );
    await hadFewEdits(tab);
    assert.deepEqual(page.errors, []);
  });

for (const [label, size] of sizes)
  onPage(`${label} are fixed, and back again`, { timeout: patience }, async (page, context) => {
    const { tab } = page;
    const text = shortEntriesOfSize(size, '(SERVER=X)');
    const count = text.match(/SERVER/g).length.toLocaleString('en');
    await openFile(page, 'long.ora', text);
    await statusOf(page, `${count} errors`);
    await watchStandstills(tab);
    await watchAnswers(tab);
    const begin = performance.now();
    await tab.click('#fix-all');
    await tab.waitForSelector('dialog .cm-merge-b', { timeout: patience });
    const offered = Math.round(performance.now() - begin);
    assert.match(await textOf(tab, 'dialog header'), new RegExp(`${count} findings are mended`));
    const fixed = await timed(page, () => clickButton(tab, 'Apply', 'dialog'));
    await statusOf(page, 'nothing wrong');
    const undone = await timed(page, () => undo(tab));
    await statusOf(page, `${count} errors`);
    const standstill = await longestStandstill(tab);
    context.diagnostic(
      `${label}: fixes shown after ${offered} ms, applied after ${fixed} ms, undone after ${undone} ms, longest standstill ${standstill} ms`,
    );
    await hadFewEdits(tab);
    assert.deepEqual(page.errors, []);
  });
