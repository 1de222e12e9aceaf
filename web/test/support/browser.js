// The page in Chromium, as a person meets it: opened from disk, without a network.
import { mkdtempSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import path from 'node:path';
import { after } from 'node:test';
import { fileURLToPath, pathToFileURL } from 'node:url';

import puppeteer from 'puppeteer-core';

export const project =
  process.env.KZTNS_PROJECT ?? fileURLToPath(new URL('../../..', import.meta.url));
export const page = path.join(project, 'build/web/kztns.html');
export const command = path.join(project, 'build/kztns');

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

// A page that has checked its example. requests: what it asked for after itself; errors: what
// it complained of.
export async function openPage({ width = 1280, height = 820, scheme = 'light' } = {}) {
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
  await tab.goto(pathToFileURL(page).href);
  const face = { tab, requests, errors };
  await statusOf(face, 'entries');
  await listShown(face);
  return face;
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
export async function openFile(face, name, content) {
  const chooser = await face.tab.$('#file');
  const before = await checkCount(face);
  await chooser.uploadFile(fileOf(name, content));
  await nextCheck(face, before);
}

// How often a check's findings were shown; each replaces what is in the status line.
export async function checkCount({ tab }) {
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

// Waits for the findings of the next check, and for the list of entries that follows.
export async function nextCheck(face, before, timeout = 30_000) {
  const { tab } = face;
  await tab.waitForFunction((count) => globalThis.checks > count, { timeout, polling: 20 }, before);
  await listShown(face, timeout);
}

// Waits until the entries are those of the text.
async function listShown({ tab }, timeout = 20_000) {
  await tab.waitForFunction(() => document.querySelector('.entries').ariaBusy === 'false', {
    timeout,
    polling: 20,
  });
}

// Replaces the text by way of the keyboard, as by pasting.
export async function replaceText(face, text) {
  const before = await checkCount(face);
  await face.tab.focus('.cm-content');
  await face.tab.keyboard.down('Control');
  await face.tab.keyboard.press('a');
  await face.tab.keyboard.up('Control');
  await face.tab.keyboard.sendCharacter(text);
  await nextCheck(face, before);
}

// The text as the editor shows it; of a short one that is all.
export const shownText = (tab) =>
  tab.$$eval('#editor .cm-line', (lines) => lines.map((line) => line.textContent).join('\n'));

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
