// Files in and out.
import assert from 'node:assert/strict';
import { readFileSync } from 'node:fs';
import path from 'node:path';
import test from 'node:test';

import {
  checkCount,
  clickButton,
  entry,
  names,
  nextCheck,
  openFile,
  openPage,
  replaceText,
  scratchFolder,
  shownText,
  textOf,
} from './support/browser.js';

test('opens a file and downloads it as it came', async () => {
  const face = await openPage();
  const session = await face.tab.createCDPSession();
  await session.send('Browser.setDownloadBehavior', {
    behavior: 'allow',
    downloadPath: scratchFolder,
    eventsEnabled: true,
  });
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
    .map((file) => {
      try {
        return readFileSync(file, 'utf8');
      } catch {
        return null;
      }
    })
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
  await face.tab.evaluate(
    (text) => {
      const clipboardData = new DataTransfer();
      clipboardData.setData('text/plain', text);
      document
        .querySelector('.cm-content')
        .dispatchEvent(
          new ClipboardEvent('paste', { clipboardData, bubbles: true, cancelable: true }),
        );
    },
    entry('a').replace('\n', '\r\n') + entry('b'),
  );
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
  // What is said later is said elsewhere.
  await face.tab.click('#format');
  await face.tab.waitForSelector('#notice:not([hidden])').catch(() => {});
  const leaves = () =>
    face.tab.evaluate(() => dispatchEvent(new Event('beforeunload', { cancelable: true })));
  assert.equal(await leaves(), false);
  const before = await checkCount(face);
  await clickButton(face.tab, 'Return to your edited first.ora', '#way-back');
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

test('says so when the lines of a file end differently', async () => {
  const face = await openPage();
  await openFile(face, 'mixed.ora', `# a\r\n${entry('mixed')}`);
  assert.match(await textOf(face.tab, '#notice'), /download has line feeds alone/);
  await openFile(face, 'lone.ora', `# a\r${entry('lone')}`);
  assert.match(await textOf(face.tab, '#notice'), /the text after this conversion/);
  await openFile(face, 'dos.ora', `# a\r\n`);
  assert.equal(await face.tab.$eval('#notice', (notice) => notice.hidden), true);
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
