// What the page does, step by step as a person would.
import assert from 'node:assert/strict';
import { readFileSync } from 'node:fs';
import path from 'node:path';
import test from 'node:test';

import {
  checkCount,
  clickButton,
  nextCheck,
  openFile,
  openPage,
  replaceText,
  scratchFolder,
  shownText,
  statusOf,
  textOf,
  textsOf,
} from './support/browser.js';

const entry = (name, more = '') =>
  `${name} = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1))(CONNECT_DATA = (SID = s)${more}))\n`;

const names = (tab) => textsOf(tab, '.entry .name');
const verdicts = (tab) => textsOf(tab, '.entry .verdict');

async function waitForText(tab, selector, words) {
  await tab.waitForFunction(
    (place, wanted) => document.querySelector(place)?.textContent.includes(wanted),
    { timeout: 10_000 },
    selector,
    words,
  );
}

test('shows an example: entries, verdicts, findings', async () => {
  const face = await openPage();
  assert.equal(await textOf(face.tab, '#status'), '2 errors1 warning4 entries, 1 ok');
  assert.deepEqual(await names(face.tab), ['sales', 'orders', 'reports', 'sales']);
  assert.deepEqual(await verdicts(face.tab), ['ok', 'refused', 'refused', 'shadowed']);
  await face.tab.click('#tab-findings');
  assert.deepEqual(await textsOf(face.tab, '.finding .place .mono'), [
    'unknown-key',
    'unknown-key',
    'duplicate',
  ]);
  assert.deepEqual(face.errors, []);
  await face.tab.close();
});

test('says what is wrong as one types, and forgets it when it is mended', async () => {
  const face = await openPage();
  await replaceText(face, entry('sales'));
  assert.equal(await textOf(face.tab, '#status'), 'nothing wrong1 entry, 1 ok');
  await replaceText(face, entry('sales', '(SERVER = X)'));
  await statusOf(face, '1 error');
  await face.tab.waitForSelector('.cm-lintRange-error');
  assert.equal(await textOf(face.tab, '.cm-lintRange-error'), 'SERVER');
  await replaceText(face, entry('sales'));
  await statusOf(face, 'nothing wrong');
  assert.equal(await face.tab.$('.cm-lintRange-error'), null);
  await face.tab.close();
});

test('applies a quick fix from the text, with the keyboard alone', async () => {
  const face = await openPage();
  await replaceText(face, entry('orders', '(SERVER = X)'));
  await statusOf(face, '1 error');
  await face.tab.keyboard.press('F8');
  await face.tab.waitForSelector('.cm-tooltip .cm-diagnosticAction');
  const before = await checkCount(face);
  await face.tab.focus('.cm-diagnosticAction');
  await face.tab.keyboard.press('Enter');
  await nextCheck(face, before);
  assert.equal(await shownText(face.tab), entry('orders'));
  await face.tab.close();
});

test('applies a quick fix from the list of findings', async () => {
  const face = await openPage();
  await replaceText(face, entry('orders', '(SERVER = X)'));
  await statusOf(face, '1 error');
  await face.tab.click('#tab-findings');
  const before = await checkCount(face);
  await clickButton(face.tab, 'Fix', '.finding');
  await nextCheck(face, before);
  assert.equal(await shownText(face.tab), entry('orders'));
  assert.equal(await textOf(face.tab, '#panel-findings'), 'Nothing is wrong with this file.');
  await face.tab.close();
});

test('goes from a finding to its place', async () => {
  const face = await openPage();
  await face.tab.click('#tab-findings');
  await clickButton(face.tab, '32:33', '.finding');
  assert.equal(await textOf(face.tab, '.cm-activeLine'), '    (ADDRESS = (PROTOCOL = TCP)(HSOT = reports.example.com)(PORT = 2881))');
  assert.equal(await face.tab.evaluate(() => document.activeElement.className), 'cm-content');
  await face.tab.close();
});

test('completes keys and words, and says what they mean', async () => {
  const face = await openPage();
  await replaceText(face, 'a = (DESCRIPTION = ');
  await face.tab.keyboard.type('(KZLB_REA');
  await waitForText(face.tab, '.cm-tooltip-autocomplete li[aria-selected=true]', 'KZLB_READ_TIMEOUT');
  await waitForText(face.tab, '.cm-completionInfo', 'Value: integer');
  // A list that has just come takes no key yet: it may have been meant for the text.
  await new Promise((resolve) => setTimeout(resolve, 200));
  await face.tab.keyboard.press('Enter');
  assert.match(await shownText(face.tab), /^a = \(DESCRIPTION = \(KZLB_READ_TIMEOUT = \)?$/);
  await replaceText(face, 'a = (DESCRIPTION = (KZLB =');
  await face.tab.keyboard.type(' ');
  await face.tab.keyboard.down('Control');
  await face.tab.keyboard.press('Space');
  await face.tab.keyboard.up('Control');
  await face.tab.waitForSelector('.cm-tooltip-autocomplete li');
  assert.deepEqual(await textsOf(face.tab, '.cm-tooltip-autocomplete .cm-completionLabel'), ['OFF', 'ON']);
  await face.tab.close();
});

test('tells what an entry means that one points at', async () => {
  const face = await openPage();
  const place = await face.tab.$eval('#editor .cm-line:nth-of-type(4) span', (node) => {
    const { x, y, width, height } = node.getBoundingClientRect();
    return { x: x + width / 2, y: y + height / 2 };
  });
  await face.tab.mouse.move(place.x, place.y);
  await face.tab.waitForSelector('.hover');
  assert.match(await textOf(face.tab, '.hover'), /sales: ok: lookups find it.*Link string: 10\.0\.1\.11:2881\/sales/);
  await face.tab.close();
});

test('lays the text out, once and no more', async () => {
  const face = await openPage();
  await replaceText(face, 'sales=(description=(address=(host=h)(port=1))(connect_data=(sid=s))) # note\n');
  const before = await checkCount(face);
  await face.tab.click('#format');
  await nextCheck(face, before);
  const text = await shownText(face.tab);
  assert.match(text, /^sales =\n {2}\(description =\n/);
  assert.match(text, /# note/);
  await face.tab.click('#format');
  await waitForText(face.tab, '#notice', 'laid out already');
  assert.equal(await shownText(face.tab), text);
  await face.tab.close();
});

test('shows tree, link string and picture of the selected entry', async () => {
  const face = await openPage();
  await waitForText(face.tab, '.detail', 'ADDRESS_LIST 2');
  assert.equal(await textOf(face.tab, '.detail .link-string'), '10.0.1.11:2881/sales');
  const summaries = await textsOf(face.tab, '.tree summary');
  assert.deepEqual(summaries.slice(0, 3), ['DESCRIPTION', 'ADDRESS_LIST 1RANDOM', '10.0.1.11:288140 %']);
  const isShown = (selector) => face.tab.$eval(selector, (node) => node.checkVisibility());
  assert.equal(await isShown('.tree .by-default'), false);
  await face.tab.click('#with-defaults');
  assert.equal(await isShown('.tree .by-default'), true);
  await face.tab.click('#show-picture');
  const drawn = await textsOf(face.tab, '.detail .picture text');
  assert.ok(drawn.includes('KZLB_CONNECT_TIMEOUT = 3000'));
  assert.equal(drawn.filter((text) => /^10\.0\./.test(text)).length, 5);
  assert.equal((await face.tab.$$('.detail .picture path')).length, 9);
  await clickButton(face.tab, 'Enlarge', '.detail');
  assert.ok(await face.tab.$('dialog[open] .picture svg'));
  await face.tab.keyboard.press('Escape');
  await face.tab.waitForFunction(() => document.querySelector('dialog') === null);
  await face.tab.close();
});

test('says of a refused entry why it is', async () => {
  const face = await openPage();
  await face.tab.click('#entry-1');
  await waitForText(face.tab, '.detail h2', 'orders');
  assert.match(await textOf(face.tab, '.detail .reason'), /unknown key SERVER/);
  assert.equal(await face.tab.$eval('.detail .choice', (node) => node.hidden), true);
  await face.tab.close();
});

test('finds entries by a part of name, verdict or address', async () => {
  const face = await openPage();
  await face.tab.type('.filter input', 'REFUSED');
  assert.deepEqual(await names(face.tab), ['orders', 'reports']);
  await face.tab.type('.filter input', '!');
  assert.match(await textOf(face.tab, '#panel-entries .empty'), /^None of 4 entries/);
  await face.tab.close();
});

test('tells why a lookup leads nowhere, and again when the text changes', async () => {
  const face = await openPage();
  await face.tab.click('#tab-why');
  await face.tab.type('#identifier', 'Orders');
  await face.tab.keyboard.press('Enter');
  await waitForText(face.tab, '.answer', 'not found');
  assert.match(await textOf(face.tab, '.answer'), /4 entries passed over.*differs only in case/);
  await face.tab.$eval('#identifier', (input) => (input.value = 'orders'));
  await face.tab.focus('#identifier');
  await face.tab.keyboard.press('Enter');
  await waitForText(face.tab, '.answer', 'malformed');
  assert.match(await textOf(face.tab, '.answer'), /unknown key SERVER/);
  await replaceText(face, entry('orders'));
  await waitForText(face.tab, '.answer', 'link string h:1/s');
  await face.tab.close();
});

test('fixes all after it has shown what would change', async () => {
  const face = await openPage();
  const text = entry('a', '(SERVER = X)') + entry('b') + entry('c', '(SERVER = Y)');
  await replaceText(face, text);
  await statusOf(face, '2 errors');
  await face.tab.click('#fix-all');
  await face.tab.waitForSelector('dialog .cm-merge-b');
  assert.match(await textOf(face.tab, 'dialog .cm-merge-a'), /SERVER = X.*SERVER = Y/);
  assert.doesNotMatch(await textOf(face.tab, 'dialog .cm-merge-b'), /SERVER/);
  await clickButton(face.tab, 'Cancel', 'dialog');
  assert.equal(await shownText(face.tab), text);
  await face.tab.click('#fix-all');
  await face.tab.waitForSelector('dialog .cm-merge-b');
  await clickButton(face.tab, 'Apply', 'dialog');
  await statusOf(face, 'nothing wrong');
  assert.equal(await shownText(face.tab), entry('a') + entry('b') + entry('c'));
  await face.tab.close();
});

test('opens a file and downloads it as it came', async () => {
  const face = await openPage();
  const session = await face.tab.createCDPSession();
  await session.send('Browser.setDownloadBehavior', { behavior: 'allow', downloadPath: scratchFolder, eventsEnabled: true });
  const done = new Promise((resolve) =>
    session.on('Browser.downloadProgress', ({ state }) => state === 'completed' && resolve()),
  );
  const content = `\uFEFF# ä\r\n${entry('sales').trim()}\r\n`;
  await openFile(face, 'mine.ora', content);
  assert.equal(await textOf(face.tab, '#file-name'), 'mine.ora');
  await face.tab.click('#download');
  await done;
  const saved = ['mine (1).ora', 'mine.ora']
    .map((name) => path.join(scratchFolder, name))
    .map((file) => { try { return readFileSync(file, 'utf8'); } catch { return null; } })
    .find((text) => text !== null);
  assert.equal(saved, content);
  await face.tab.close();
});

test('opens a file that is dropped', async () => {
  const face = await openPage();
  const before = await checkCount(face);
  await face.tab.evaluate((text) => {
    const dataTransfer = new DataTransfer();
    dataTransfer.items.add(new File([text], 'dropped.ora'));
    const target = document.querySelector('.cm-content');
    for (const type of ['dragover', 'drop'])
      target.dispatchEvent(new DragEvent(type, { dataTransfer, bubbles: true, cancelable: true }));
  }, entry('dropped'));
  await nextCheck(face, before);
  assert.deepEqual(await names(face.tab), ['dropped']);
  assert.equal(await textOf(face.tab, '#file-name'), 'dropped.ora');
  assert.equal(await face.tab.$eval('#drop', (node) => node.hidden), true);
  await face.tab.close();
});

test('takes a text that is pasted, whatever its lines end with', async () => {
  const face = await openPage();
  await replaceText(face, '# empty\n');
  const before = await checkCount(face);
  await face.tab.evaluate((text) => {
    const clipboardData = new DataTransfer();
    clipboardData.setData('text/plain', text);
    document
      .querySelector('.cm-content')
      .dispatchEvent(new ClipboardEvent('paste', { clipboardData, bubbles: true, cancelable: true }));
  }, entry('a') .replace('\n', '\r\n') + entry('b'));
  await nextCheck(face, before);
  assert.deepEqual(await names(face.tab), ['a', 'b']);
  assert.equal(await shownText(face.tab), `# empty\n${entry('a')}${entry('b')}`);
  await face.tab.close();
});

test('keeps what one wrote when another file is opened', async () => {
  const face = await openPage();
  await openFile(face, 'first.ora', entry('first'));
  assert.equal(await face.tab.$eval('#notice', (notice) => notice.hidden), true);
  await replaceText(face, entry('mine'));
  await openFile(face, 'other.ora', entry('other'));
  assert.deepEqual(await names(face.tab), ['other']);
  const before = await checkCount(face);
  await clickButton(face.tab, 'Back to what you wrote in first.ora', '#notice');
  await nextCheck(face, before);
  assert.equal(await shownText(face.tab), entry('mine'));
  assert.equal(await textOf(face.tab, '#file-name'), 'first.ora');
  await face.tab.close();
});

test('asks before it is closed with what was not downloaded', async () => {
  const face = await openPage();
  const leaves = () =>
    face.tab.evaluate(() => dispatchEvent(new Event('beforeunload', { cancelable: true })));
  assert.equal(await leaves(), true);
  await replaceText(face, entry('mine'));
  assert.equal(await leaves(), false);
  await face.tab.close();
});

test('starts its checker again when that has stopped', async () => {
  const face = await openPage();
  await replaceText(face, entry('sales', '(SERVER = X)'));
  const worker = face.tab.workers()[0];
  await worker.evaluate(() => setTimeout(() => { throw new Error('no memory left'); })).catch(() => {});
  await waitForText(face.tab, '#notice', 'The checker has stopped (Uncaught Error: no memory left).');
  const before = await checkCount(face);
  await clickButton(face.tab, 'Start it again', '#notice');
  await nextCheck(face, before);
  assert.deepEqual(await verdicts(face.tab), ['refused']);
  assert.equal(await shownText(face.tab), entry('sales', '(SERVER = X)'));
  await face.tab.close();
});

test('says so when a file is not in UTF-8', async () => {
  const face = await openPage();
  await openFile(face, 'wide.ora', Buffer.from(`\uFEFF${entry('wide')}`, 'utf16le'));
  assert.match(await textOf(face.tab, '#notice'), /UTF-16/);
  assert.deepEqual(await names(face.tab), ['wide']);
  await openFile(face, 'old.ora', Buffer.from(`# \xE4\n${entry('old')}`, 'latin1'));
  assert.match(await textOf(face.tab, '#notice'), /Windows-1252/);
  assert.match(await shownText(face.tab), /^# ä/);
  await face.tab.close();
});

test('names the licences of all that is in it', async () => {
  const face = await openPage();
  await face.tab.click('#licences');
  const text = await textOf(face.tab, 'dialog .licences');
  for (const name of ['@codemirror/view', '@lezer/common', 'style-mod', 'w3c-keyname', 'nlohmann-json', 'emscripten'])
    assert.ok(text.includes(name), name);
  await face.tab.close();
});
