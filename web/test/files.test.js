// Files in and out.
import assert from 'node:assert/strict';
import { readFileSync } from 'node:fs';
import path from 'node:path';

import {
  clickButton,
  endWorker,
  entry,
  names,
  onPage,
  openFile,
  pressTogether,
  replaceText,
  scratchFolder,
  shownText,
  textOf,
  untilChecked,
  waitForText,
} from './support/browser.js';

onPage('opens a file and downloads it as it came', async (page) => {
  const session = await page.tab.createCDPSession();
  await session.send('Browser.setDownloadBehavior', {
    behavior: 'allow',
    downloadPath: scratchFolder,
    eventsEnabled: true,
  });
  const done = new Promise((resolve) =>
    session.on('Browser.downloadProgress', ({ state }) => state === 'completed' && resolve()),
  );
  const content = `\uFEFF# ä\r\n${entry('sales').trim()}\r\n`;
  await openFile(page, 'mine.ora', content);
  assert.equal(await textOf(page.tab, '#file-name'), 'mine.ora');
  await page.tab.click('#download');
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
});

onPage('opens a file that is dropped', async (page) => {
  await untilChecked(page, () =>
    page.tab.evaluate((text) => {
      const dataTransfer = new DataTransfer();
      dataTransfer.items.add(new File([text], 'dropped.ora'));
      const target = document.querySelector('.cm-content');
      for (const type of ['dragover', 'drop'])
        target.dispatchEvent(
          new DragEvent(type, { dataTransfer, bubbles: true, cancelable: true }),
        );
    }, entry('dropped')),
  );
  assert.deepEqual(await names(page.tab), ['dropped']);
  assert.equal(await textOf(page.tab, '#file-name'), 'dropped.ora');
  assert.equal(await page.tab.$eval('#drop', (node) => node.hidden), true);
});

onPage('takes a text that is pasted, whatever its lines end with', async (page) => {
  await replaceText(page, '# empty\n');
  await untilChecked(page, () =>
    page.tab.evaluate(
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
    ),
  );
  assert.deepEqual(await names(page.tab), ['a', 'b']);
  assert.equal(await shownText(page.tab), `# empty\n${entry('a')}${entry('b')}`);
});

onPage('what takes the place of the whole example is a file of its own', async (page) => {
  await waitForText(page.tab, '#notice', 'This is an example.');
  await replaceText(page, entry('mine'));
  assert.equal(await textOf(page.tab, '#file-name'), 'tnsnames.ora');
  assert.equal(await page.tab.$eval('#notice', (notice) => notice.hidden), true);
  // In another file of that name nothing is the example's.
  await openFile(page, 'example.ora', entry('other'));
  await replaceText(page, entry('mine'));
  assert.equal(await textOf(page.tab, '#file-name'), 'example.ora');
});

onPage('an example that is changed is still an example', async (page) => {
  await untilChecked(page, async () => {
    await page.tab.focus('.cm-content');
    await pressTogether(page.tab, 'Control', 'End');
    await page.tab.keyboard.sendCharacter(entry('more'));
  });
  assert.equal(await textOf(page.tab, '#file-name'), 'example.ora');
  await waitForText(page.tab, '#notice', 'This is an example.');
  assert.equal(await page.tab.$eval('#notice', (notice) => notice.hidden), false);
  // What is cut is replaced by what is pasted next.
  await untilChecked(page, async () => {
    await pressTogether(page.tab, 'Control', 'a');
    await page.tab.keyboard.press('Delete');
  });
  assert.equal(await textOf(page.tab, '#file-name'), 'tnsnames.ora');
});

onPage('what is said of the checker stays when the example is replaced', async (page) => {
  await endWorker(page);
  await page.tab.focus('.cm-content');
  await pressTogether(page.tab, 'Control', 'a');
  await page.tab.keyboard.sendCharacter(entry('mine'));
  await waitForText(page.tab, '#file-name', 'tnsnames.ora');
  assert.equal(await page.tab.$eval('#notice', (notice) => notice.hidden), false);
});

// Whether the page lets itself be closed without a question.
const mayBeClosed = ({ tab }) =>
  tab.evaluate(() => dispatchEvent(new Event('beforeunload', { cancelable: true })));

onPage('keeps what one wrote when another file is opened', async (page) => {
  await openFile(page, 'first.ora', entry('first'));
  assert.equal(await page.tab.$eval('#notice', (notice) => notice.hidden), true);
  await replaceText(page, entry('mine'));
  await openFile(page, 'other.ora', '# other\n');
  assert.equal(await shownText(page.tab), '# other\n');
  // What is said later is said elsewhere.
  await page.tab.click('#format');
  await waitForText(page.tab, '#notice', 'laid out already');
  assert.equal(await mayBeClosed(page), false);
  await untilChecked(page, () =>
    clickButton(page.tab, 'Return to your edited first.ora', '#way-back'),
  );
  assert.equal(await shownText(page.tab), entry('mine'));
  assert.equal(await textOf(page.tab, '#file-name'), 'first.ora');
});

onPage('asks before it is closed with what was not downloaded', async (page) => {
  assert.equal(await mayBeClosed(page), true);
  await replaceText(page, entry('mine'));
  assert.equal(await mayBeClosed(page), false);
});

onPage('says so when the lines of a file end differently', async (page) => {
  await openFile(page, 'mixed.ora', `# a\r\n${entry('mixed')}`);
  assert.match(await textOf(page.tab, '#notice'), /download has line feeds alone/);
  await openFile(page, 'lone.ora', `# a\r${entry('lone')}`);
  assert.match(await textOf(page.tab, '#notice'), /the text after this conversion/);
  await openFile(page, 'dos.ora', `# a\r\n`);
  assert.equal(await page.tab.$eval('#notice', (notice) => notice.hidden), true);
});

onPage('says so when a file is not in UTF-8', async (page) => {
  await openFile(page, 'wide.ora', Buffer.from(`\uFEFF${entry('wide')}`, 'utf16le'));
  assert.match(await textOf(page.tab, '#notice'), /UTF-16/);
  assert.deepEqual(await names(page.tab), ['wide']);
  await openFile(page, 'old.ora', Buffer.from(`# \xE4\n${entry('old')}`, 'latin1'));
  assert.match(await textOf(page.tab, '#notice'), /Windows-1252/);
  assert.match(await shownText(page.tab), /^# ä/);
});
