// What is in a file stays text, and what is in the page stays there.
import assert from 'node:assert/strict';
import { statSync } from 'node:fs';
import test from 'node:test';
import { gzipSync } from 'node:zlib';
import { readFileSync } from 'node:fs';

import {
  clickButton,
  entry,
  openFile,
  onPage,
  pageFile,
  replaceText,
  textOf,
  textsOf,
} from './support/browser.js';

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

onPage('a hover shows a name as it is written', async (page) => {
  await replaceText(
    page,
    '<b>x</b> = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1))(CONNECT_DATA = (SID = s)))\n',
  );
  const place = await page.tab.$eval('#editor .cm-line span', (node) => {
    const { x, y, width, height } = node.getBoundingClientRect();
    return { x: x + width / 2, y: y + height / 2 };
  });
  await page.tab.mouse.move(place.x, place.y);
  await page.tab.waitForSelector('.hover');
  assert.match(await textOf(page.tab, '.hover'), /^<b>x<\/b>: ok/);
  assert.equal(await page.tab.$('.hover b'), null);
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
  // Not even when somebody tries to.
  const refused = await tab.evaluate(async () => {
    const sent = await fetch('https://example.com/').then(
      () => 'sent',
      () => 'refused',
    );
    const socket = (() => {
      try {
        new WebSocket('wss://example.com');
        return 'made';
      } catch {
        return 'refused';
      }
    })();
    const inline = document.createElement('script');
    inline.textContent = 'document.title = "run"';
    document.body.append(inline);
    const image = await new Promise((resolve) => {
      const one = new Image();
      one.onload = () => resolve('loaded');
      one.onerror = () => resolve('refused');
      one.src = 'https://example.com/x.png';
    });
    return {
      sent,
      image,
      socket,
      title: document.title,
      beacon: navigator.sendBeacon('https://example.com/'),
    };
  });
  assert.equal(refused.sent, 'refused');
  assert.equal(refused.image, 'refused');
  assert.equal(refused.title, 'kztns: names files');
  assert.ok(page.errors.filter((text) => text.includes('Content Security Policy')).length >= 3);
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
