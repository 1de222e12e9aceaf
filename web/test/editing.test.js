// What one does in the text, step by step as a person would.
import assert from 'node:assert/strict';
import test from 'node:test';

import {
  checkCount,
  clickButton,
  endWorker,
  entry,
  names,
  nextCheck,
  openFile,
  openPage,
  replaceText,
  shownText,
  statusOf,
  textOf,
  textsOf,
  verdicts,
  waitForText,
} from './support/browser.js';

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
  await face.tab.keyboard.press('Tab');
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
  assert.equal(
    await textOf(face.tab, '.cm-activeLine'),
    '    (ADDRESS = (PROTOCOL = TCP)(HSOT = reports.example.com)(PORT = 2881))',
  );
  assert.equal(await face.tab.evaluate(() => document.activeElement.className), 'cm-content');
  await face.tab.close();
});

test('completes keys and words, and says what they mean', async () => {
  const face = await openPage();
  await replaceText(face, 'a = (DESCRIPTION = ');
  await face.tab.keyboard.type('(KZLB_REA');
  await waitForText(
    face.tab,
    '.cm-tooltip-autocomplete li[aria-selected=true]',
    'KZLB_READ_TIMEOUT',
  );
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
  assert.deepEqual(await textsOf(face.tab, '.cm-tooltip-autocomplete .cm-completionLabel'), [
    'OFF',
    'ON',
  ]);
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
  assert.match(
    await textOf(face.tab, '.hover'),
    /sales: ok: lookups find it.*Link string: 10\.0\.1\.11:2881\/sales/,
  );
  await face.tab.close();
});

test('lays the text out, once and no more', async () => {
  const face = await openPage();
  await replaceText(
    face,
    'sales=(description=(address=(host=h)(port=1))(connect_data=(sid=s))) # note\n',
  );
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

test('says which entries keep their layout, and why', async () => {
  const face = await openPage();
  await replaceText(face, entry('a', '(SERVER = X)'));
  await face.tab.click('#format');
  await waitForText(
    face.tab,
    '#notice',
    'Nothing to lay out. 1 entry keeps its layout: the library refuses it (line 1).',
  );
  await face.tab.close();
});

test('lays out and downloads by keys, wherever the focus is', async () => {
  const face = await openPage();
  await replaceText(face, '# note\n');
  await face.tab.focus('#tab-entries');
  await face.tab.keyboard.down('Shift');
  await face.tab.keyboard.down('Alt');
  await face.tab.keyboard.press('KeyF');
  await face.tab.keyboard.up('Alt');
  await face.tab.keyboard.up('Shift');
  await waitForText(face.tab, '#notice', 'laid out already');
  await face.tab.close();
});

test('starts its checker again when that has stopped', async () => {
  const face = await openPage();
  await replaceText(face, entry('sales', '(SERVER = X)'));
  await endWorker(face);
  const before = await checkCount(face);
  await clickButton(face.tab, 'Start it again', '#notice');
  await nextCheck(face, before);
  assert.deepEqual(await verdicts(face.tab), ['refused']);
  assert.equal(await shownText(face.tab), entry('sales', '(SERVER = X)'));
  await face.tab.close();
});

test('a file that is opened after the checker has stopped starts it again', async () => {
  const face = await openPage();
  await endWorker(face);
  await openFile(face, 'other.ora', entry('other'));
  assert.deepEqual(await names(face.tab), ['other']);
  await face.tab.close();
});

test('says that the checker has stopped to whoever asks it', async () => {
  const face = await openPage();
  await endWorker(face);
  await clickButton(face.tab, 'Dismiss', '#notice');
  await face.tab.click('#format');
  await waitForText(face.tab, '#notice', 'The checker has stopped (no memory left).');
  const before = await checkCount(face);
  await clickButton(face.tab, 'Start it again', '#notice');
  await nextCheck(face, before);
  await face.tab.close();
});

test('the focus stays among the findings when one of them is mended', async () => {
  const face = await openPage();
  await replaceText(face, entry('a', '(SERVER = X)') + entry('b', '(SERVER = Y)'));
  await statusOf(face, '2 errors');
  await face.tab.click('#tab-findings');
  await face.tab.focus('.finding .fix');
  const before = await checkCount(face);
  await face.tab.keyboard.press('Enter');
  await nextCheck(face, before);
  const isAmongThem = () =>
    face.tab.evaluate(() => document.activeElement.closest('.findings') !== null);
  assert.equal(await isAmongThem(), true);
  assert.equal(await face.tab.evaluate(() => document.activeElement.className), 'fix');
  await face.tab.close();
});

test('a block of the tree that was opened stays open when another entry changes', async () => {
  const face = await openPage();
  await replaceText(face, entry('a'));
  await waitForText(face.tab, '.detail h2', 'a');
  await face.tab.click('.tree details details summary');
  await face.tab.$eval('.tree details:not([open])', (one) => (one.open = true)).catch(() => {});
  const openBlocks = () => face.tab.$$eval('.tree details[open]', (all) => all.length);
  const opened = await openBlocks();
  await face.tab.$$eval('.tree details', (all) => all.forEach((one) => (one.dataset.seen = 'yes')));
  const before = await checkCount(face);
  await face.tab.focus('.cm-content');
  await face.tab.keyboard.down('Control');
  await face.tab.keyboard.press('End');
  await face.tab.keyboard.up('Control');
  await face.tab.keyboard.sendCharacter(entry('b'));
  await nextCheck(face, before);
  await new Promise((resolve) => setTimeout(resolve, 200));
  assert.equal(await openBlocks(), opened);
  const kept = await face.tab.$$eval('.tree details', (all) => all.map((one) => one.dataset.seen));
  assert.ok(kept.every((seen) => seen === 'yes'));
  await face.tab.close();
});
