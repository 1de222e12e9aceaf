// The page in Chromium, as a person meets it: opened from disk, without a network.
import { mkdtempSync, readFileSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import path from 'node:path';
import test, { after } from 'node:test';
import { pathToFileURL } from 'node:url';

import { transform } from 'esbuild';
import puppeteer from 'puppeteer-core';

import { pageFile } from './places.js';

const root = process.getuid?.() === 0 ? ['--no-sandbox'] : [];
const browser = await puppeteer.launch({
  executablePath: process.env.CHROMIUM ?? '/usr/bin/chromium',
  args: [...root, '--disable-gpu', '--force-color-profile=srgb'],
});
const scratch = mkdtempSync(path.join(tmpdir(), 'kztns-web-'));
after(async () => {
  await browser.close();
  rmSync(scratch, { recursive: true });
});

// A file of that content, to be opened.
export function fileOf(name, content) {
  const file = path.join(scratch, name);
  writeFileSync(file, content);
  return file;
}

export const scratchFolder = scratch;

// A module of the page without imports, for tests that expect what it defines.
export async function moduleOf(name) {
  const source = readFileSync(new URL(`../../src/${name}`, import.meta.url), 'utf8');
  const { code } = await transform(source, { loader: 'ts', format: 'esm' });
  return import(`data:text/javascript;base64,${Buffer.from(code).toString('base64')}`);
}

// A page that has checked its example. requests: what it asked for after itself; errors: what
// it complained of.
async function openPage({ width = 1280, height = 820, scheme = 'light' } = {}) {
  const tab = await browser.newPage();
  await tab.setViewport({ width, height });
  await tab.emulateMediaFeatures([{ name: 'prefers-color-scheme', value: scheme }]);
  const requests = [];
  const errors = [];
  tab.on('request', (request) => requests.push(request.url()));
  tab.on('pageerror', (error) => errors.push(error.message));
  tab.on('console', (message) => {
    if (message.type() === 'error') errors.push(message.text());
  });
  tab.on('dialog', (dialog) => {
    errors.push(`a dialog: ${dialog.message()}`);
    void dialog.dismiss();
  });
  await tab.goto(pathToFileURL(pageFile).href);
  const page = { tab, requests, errors };
  await statusOf(page, 'entries');
  await listShown(page);
  return page;
}

// A test on a page of its own. Between its name and what it does there may be options.
export function onPage(name, ...rest) {
  const run = rest.pop();
  const [{ timeout, ...look } = {}] = rest;
  test(name, { timeout }, async (context) => {
    const page = await openPage(look);
    try {
      await run(page, context);
    } finally {
      await page.tab.close();
    }
  });
}

// The line below the text, as soon as it says that.
export async function statusOf({ tab }, words, timeout = 20_000) {
  await tab.waitForFunction(
    (wanted) => document.getElementById('status').textContent.includes(wanted),
    { timeout, polling: 'mutation' },
    words,
  );
  return textOf(tab, '#status');
}

export const textOf = (tab, selector) => tab.$eval(selector, (node) => node.textContent);
export const textsOf = (tab, selector) =>
  tab.$$eval(selector, (nodes) => nodes.map((node) => node.textContent));

// Opens a file by the button's way, and waits until it was checked.
export async function openPath(page, file) {
  const chooser = await page.tab.$('#file');
  await untilChecked(page, () => chooser.uploadFile(file));
}

export async function openFile(page, name, content) {
  await openPath(page, fileOf(name, content));
}

// How often a check's findings were shown; each replaces what is in the status line.
async function checkCount({ tab }) {
  return tab.evaluate(() => {
    if (globalThis.checks === undefined) {
      globalThis.checks = 0;
      new MutationObserver(() => (globalThis.checks += 1)).observe(
        document.getElementById('status'),
        { childList: true },
      );
    }
    return globalThis.checks;
  });
}

// Does what changes the text, and waits for the findings that come of it and for the list of
// entries that follows.
export async function untilChecked(page, action, timeout = 30_000) {
  const { tab } = page;
  const before = await checkCount(page);
  await action();
  await tab.waitForFunction((count) => globalThis.checks > count, { timeout, polling: 20 }, before);
  await listShown(page, timeout);
}

// Waits until the entries are those of the text.
async function listShown({ tab }, timeout = 20_000) {
  await tab.waitForFunction(() => document.querySelector('.entries').ariaBusy === 'false', {
    timeout,
    polling: 20,
  });
}

// Replaces the text by way of the keyboard, as by pasting.
export async function replaceText(page, text) {
  await untilChecked(page, async () => {
    await page.tab.focus('.cm-content');
    await pressTogether(page.tab, 'Control', 'a');
    await page.tab.keyboard.sendCharacter(text);
  });
}

// The text as the editor shows it; of a short one that is all.
export const shownText = (tab) =>
  tab.$$eval('#editor .cm-line', (lines) => lines.map((line) => line.textContent).join('\n'));

// Presses the last key while the others are held.
export async function pressTogether({ keyboard }, ...keys) {
  const held = keys.slice(0, -1);
  for (const key of held) await keyboard.down(key);
  await keyboard.press(keys.at(-1));
  for (const key of held.reverse()) await keyboard.up(key);
}

export async function clickButton(tab, label, within = 'body') {
  const clicked = await tab.evaluate(
    (words, area) => {
      const all = [...document.querySelectorAll(`${area} button`)];
      const found = all.find((button) => button.textContent.trim() === words);
      found?.click();
      return found !== undefined;
    },
    label,
    within,
  );
  if (!clicked) throw new Error(`no button ${label}`);
}

export const names = (tab) => textsOf(tab, '.entry .name');
export const verdicts = (tab) => textsOf(tab, '.entry .verdict');

export async function waitForText(tab, selector, words) {
  await tab.waitForFunction(
    (place, wanted) => document.querySelector(place)?.textContent.includes(wanted),
    { timeout: 10_000 },
    selector,
    words,
  );
}

// Ends the worker as a fault in it does.
export async function endWorker({ tab }) {
  const worker = tab.workers()[0];
  await worker
    .evaluate(() =>
      setTimeout(() => {
        throw new Error('no memory left');
      }),
    )
    .catch(() => {});
  await waitForText(tab, '#notice', 'The checker has stopped (no memory left).');
}

// An entry that is fine, but for what is added to its connect data.
export const entry = (name, more = '') =>
  `${name} = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1))(CONNECT_DATA = (SID = s)${more}))\n`;
