// What is in a file stays text, and what is in the page stays there.
import assert from 'node:assert/strict';
import { readFileSync, statSync } from 'node:fs';
import test from 'node:test';
import { gzipSync } from 'node:zlib';

import {
  clickButton,
  entry,
  openFile,
  onPage,
  replaceText,
  textOf,
  textsOf,
} from './support/browser.js';
import { pageFile } from './support/places.js';

const markup = '<img/src=x/onerror="document.title=1"><script>document.title=1</script>';
const quoted = `"${markup.replaceAll('"', "'")}"`;
const hostile =
  `${quoted} = (DESCRIPTION = (ADDRESS = (HOST = ${quoted})(PORT = 1))(CONNECT_DATA = (SERVICE_NAME = ${quoted})))\n` +
  `<b>bold</b> = (DESCRIPTION = (<i>key</i> = ${quoted}))\n` +
  `other = (DESCRIPTION = (KZLB = ${quoted})(ADDRESS = (HOST = <u>h</u>)(PORT = 2)))\n`;

onPage('markup and scripts in a file are shown as they are written', async (page) => {
  const { tab } = page;
  await openFile(page, `${'<img src=x onerror=alert(1)>'}.ora`, hostile);
  const elements = () =>
    tab.$$eval(
      'img, #editor b, #editor i, .side b, .side i, .side u, .side script',
      (all) => all.length,
    );
  const names = await textsOf(tab, '.entry .name');
  assert.ok(names[0].startsWith("<img/src=x/onerror='document.title=1'><script>"));
  assert.equal(names[1], '<b>bold</b>');
  assert.equal(await textOf(tab, '#file-name'), '<img src=x onerror=alert(1)>.ora');
  for (const row of ['#entry-0', '#entry-1', '#entry-2']) {
    await tab.click(row);
    await tab.waitForFunction((id) => document.querySelector(id).ariaSelected === 'true', {}, row);
    for (const view of ['#show-picture', '#show-tree'])
      await tab.$eval(view, (one) => one.click()).catch(() => {});
    assert.equal(await elements(), 0);
  }
  await tab.click('#tab-findings');
  assert.ok((await textsOf(tab, '.finding')).some((text) => text.includes('<i>key</i>')));
  await tab.click('#tab-why');
  await tab.type('#identifier', '<img src=x onerror=alert(1)>');
  await tab.keyboard.press('Enter');
  await tab.waitForFunction(() => !document.querySelector('.answer').hidden);
  assert.match(await textOf(tab, '.answer h2'), /^<img src=x/);
  assert.equal(await elements(), 0);
  assert.equal(await tab.title(), 'kztns: names files');
  assert.deepEqual(page.errors, []);
});

onPage('what is invisible in a name is shown', async (page) => {
  await openFile(page, '\u202Eevil.ora', `ab\u202Ecd${entry('').replace('h)', '\u200Bh)')}`);
  assert.deepEqual(await textsOf(page.tab, '.entry .name'), ['ab\\xe2\\x80\\xaecd']);
  assert.deepEqual(await textsOf(page.tab, '.entry .link-string'), ['\\xe2\\x80\\x8bh:1/s']);
  assert.equal(await textOf(page.tab, '#file-name'), '\\xe2\\x80\\xaeevil.ora');
  const all = await page.tab.$eval('.side', (side) => side.textContent);
  assert.doesNotMatch(all, /[\u200B\u202E]/);
});

onPage('what is invisible is shown in the text, in pictures and in titles', async (page) => {
  const { tab } = page;
  const unseen = ['\u00A0', '\u202F', '\u2066', '\uFFFE', '\uFFFF', '\uFFF9'];
  await openFile(page, 'a\\x41.ora', `"a${unseen.join('b')}c"${entry('')}`);
  assert.equal(await textOf(tab, '#file-name'), 'a\\x5cx41.ora');
  const bytes = (text) => Buffer.from(text).toString('hex').replace(/../g, '\\x$&');
  const expected = `a${unseen.map(bytes).join('b')}c`;
  assert.deepEqual(await textsOf(tab, '.entry .name'), [expected]);
  await tab.waitForFunction(() => !document.querySelector('.choice').hidden);
  await tab.click('#show-picture');
  const label = await tab.$eval('.detail svg', (svg) => svg.getAttribute('aria-label'));
  assert.equal(label, `Picture of ${expected}`);
  assert.equal((await tab.$$('#editor .cm-specialChar')).length, unseen.length);
  const all = await tab.$eval('.side', (side) => side.outerHTML.replaceAll('&nbsp;', '\u00A0'));
  assert.ok(unseen.every((one) => !all.includes(one)));
});

onPage('the difference marks what is invisible', async (page) => {
  await replaceText(page, `# \u202E\n${entry('a', '(SERVER = X)')}`);
  await page.tab.click('#fix-all');
  await page.tab.waitForSelector('dialog .cm-merge-b .cm-specialChar');
});

// What the mouse points at in the first line.
async function pointAtName(tab) {
  const place = await tab.$eval('#editor .cm-line span', (node) => {
    const { x, y, width, height } = node.getBoundingClientRect();
    return { x: x + width / 2, y: y + height / 2 };
  });
  await tab.mouse.move(place.x, place.y);
}

onPage('hover, findings, completion and difference show markup as it is written', async (page) => {
  const { tab } = page;
  const name = '<b>x</b>';
  const elements = () => tab.$$eval('b, i, u', (all) => all.length);
  await replaceText(page, entry(name, '(<i>k</i> = <u>v</u>)'));
  await pointAtName(tab);
  await tab.waitForSelector('.hover');
  assert.match(await textOf(tab, '.hover'), /^<b>x<\/b>: refused.*<i>k<\/i>/);
  assert.equal(await elements(), 0);
  await tab.keyboard.press('F8');
  await tab.waitForSelector('.cm-tooltip .cm-diagnosticText');
  assert.match(await textOf(tab, '.cm-tooltip .cm-diagnosticText'), /<b>x<\/b>.*<i>k<\/i>/);
  assert.equal(await elements(), 0);
  await replaceText(page, entry(name, '(SERVER = <u>v</u>)'));
  await tab.click('#fix-all');
  await tab.waitForSelector('dialog .cm-merge-a');
  assert.match(await textOf(tab, 'dialog .cm-merge-a .cm-content'), /<b>x<\/b>.*<u>v<\/u>/);
  assert.equal(await elements(), 0);
  await clickButton(tab, 'Cancel', 'dialog');
  await replaceText(page, `${name} = (DESCRIPTION = (<i>KZLB</i> = 1)`);
  await tab.keyboard.type('(KZLB_REA');
  await tab.waitForSelector('.cm-tooltip-autocomplete li');
  assert.equal(await elements(), 0);
  assert.deepEqual(page.errors, []);
});

onPage('nothing is loaded and nothing is sent', async (page) => {
  const { tab, requests } = page;
  await replaceText(page, hostile);
  await tab.click('#format');
  await clickButton(tab, 'Why?', '.tabs');
  // The page itself, and its worker.
  assert.equal(requests.length, 2);
  assert.match(requests[0], /^file:.*\.html$/);
  assert.match(requests[1], /^blob:/);
});

// What somebody who has got into the page tries, there and in the worker. Each way out is
// refused by the policy, not for want of a network.
async function tryToSend() {
  const refused = new Set();
  addEventListener('securitypolicyviolation', ({ blockedURI }) => refused.add(blockedURI));
  const ignore = () => {};
  await fetch('https://example.com/fetch').catch(ignore);
  try {
    new WebSocket('wss://example.com/socket').onerror = ignore;
  } catch {
    // Some versions refuse it at once.
  }
  return new Promise((resolve) => setTimeout(() => resolve([...refused].sort()), 300));
}

onPage('nothing can be sent by those who try', async (page) => {
  const { tab } = page;
  const refused = await tab.evaluate(async () => {
    const uris = new Set();
    addEventListener('securitypolicyviolation', ({ blockedURI }) => uris.add(blockedURI));
    const made = (tag, attributes) =>
      document.body.append(Object.assign(document.createElement(tag), attributes));
    navigator.sendBeacon('https://example.com/beacon');
    made('img', { src: 'https://example.com/image' });
    made('script', { textContent: 'document.title = "run"' });
    made('iframe', { src: 'https://frame.example.com' });
    await new Promise((resolve) => setTimeout(resolve, 300));
    return [...uris].sort();
  });
  assert.deepEqual(refused, [
    'https://example.com/beacon',
    'https://example.com/image',
    'https://frame.example.com',
    'inline',
  ]);
  assert.equal(await tab.title(), 'kztns: names files');
  for (const place of [tab, tab.workers()[0]])
    assert.deepEqual(await place.evaluate(tryToSend), [
      'https://example.com/fetch',
      'wss://example.com/socket',
    ]);
});

test('the page is one file of less than 2 MB when it is compressed', (context) => {
  const compressed = gzipSync(readFileSync(pageFile), { level: 9 }).length;
  context.diagnostic(`${statSync(pageFile).size} bytes, ${compressed} compressed`);
  assert.ok(compressed < 2e6);
  const html = readFileSync(pageFile, 'utf8');
  assert.match(
    html,
    /default-src 'none'; script-src 'sha256-[^']+' 'wasm-unsafe-eval'; worker-src blob:;/,
  );
  assert.doesNotMatch(html, /connect-src|unsafe-eval' '|https:\/\/cdn/);
});
