// What one does in the text, step by step as a person would.
import assert from 'node:assert/strict';

import {
  clickButton,
  endWorker,
  entry,
  names,
  onPage,
  openFile,
  pressTogether,
  replaceText,
  shownText,
  statusOf,
  textOf,
  textsOf,
  untilChecked,
  verdicts,
  waitForText,
} from './support/browser.js';

onPage('shows an example: entries, verdicts, findings', async (page) => {
  assert.equal(await textOf(page.tab, '#status'), '2 errors1 warning4 entries, 1 ok');
  assert.deepEqual(await names(page.tab), ['sales', 'orders', 'reports', 'sales']);
  assert.deepEqual(await verdicts(page.tab), ['ok', 'refused', 'refused', 'shadowed']);
  await page.tab.click('#tab-findings');
  assert.deepEqual(await textsOf(page.tab, '.finding .place .mono'), [
    'unknown-key',
    'unknown-key',
    'duplicate',
  ]);
  assert.deepEqual(page.errors, []);
});

onPage('says what is wrong as one types, and forgets it when it is mended', async (page) => {
  await replaceText(page, entry('sales'));
  assert.equal(await textOf(page.tab, '#status'), 'nothing wrong1 entry, 1 ok');
  await replaceText(page, entry('sales', '(SERVER = X)'));
  await statusOf(page, '1 error');
  await page.tab.waitForSelector('.cm-lintRange-error');
  assert.equal(await textOf(page.tab, '.cm-lintRange-error'), 'SERVER');
  await replaceText(page, entry('sales'));
  await statusOf(page, 'nothing wrong');
  assert.equal(await page.tab.$('.cm-lintRange-error'), null);
});

onPage('applies a quick fix from the text, with the keyboard alone', async (page) => {
  await replaceText(page, entry('orders', '(SERVER = X)'));
  await statusOf(page, '1 error');
  await page.tab.keyboard.press('F8');
  await page.tab.waitForSelector('.cm-tooltip .cm-diagnosticAction');
  await untilChecked(page, async () => {
    await page.tab.keyboard.press('Tab');
    await page.tab.keyboard.press('Enter');
  });
  assert.equal(await shownText(page.tab), entry('orders'));
});

onPage('applies a quick fix from the list of findings', async (page) => {
  await replaceText(page, entry('orders', '(SERVER = X)'));
  await statusOf(page, '1 error');
  await page.tab.click('#tab-findings');
  await untilChecked(page, () => clickButton(page.tab, 'Fix', '.finding'));
  assert.equal(await shownText(page.tab), entry('orders'));
  assert.equal(await textOf(page.tab, '#panel-findings'), 'Nothing is wrong with this file.');
});

onPage('goes from a finding to its place', async (page) => {
  await page.tab.click('#tab-findings');
  await clickButton(page.tab, '32:33', '.finding');
  assert.equal(
    await textOf(page.tab, '.cm-activeLine'),
    '    (ADDRESS = (PROTOCOL = TCP)(HSOT = reports.example.com)(PORT = 2881))',
  );
  assert.equal(await page.tab.evaluate(() => document.activeElement.className), 'cm-content');
});

onPage('completes keys and words, and says what they mean', async (page) => {
  await replaceText(page, 'a = (DESCRIPTION = ');
  await page.tab.keyboard.type('(KZLB_REA');
  await waitForText(
    page.tab,
    '.cm-tooltip-autocomplete li[aria-selected=true]',
    'KZLB_READ_TIMEOUT',
  );
  await waitForText(page.tab, '.cm-completionInfo', 'Value: integer');
  // A list that has just come takes no key yet: it may have been meant for the text.
  await new Promise((resolve) => setTimeout(resolve, 200));
  await page.tab.keyboard.press('Enter');
  assert.match(await shownText(page.tab), /^a = \(DESCRIPTION = \(KZLB_READ_TIMEOUT = \)?$/);
  await replaceText(page, 'a = (DESCRIPTION = (KZLB =');
  await page.tab.keyboard.type(' ');
  await pressTogether(page.tab, 'Control', 'Space');
  await page.tab.waitForSelector('.cm-tooltip-autocomplete li');
  assert.deepEqual(await textsOf(page.tab, '.cm-tooltip-autocomplete .cm-completionLabel'), [
    'OFF',
    'ON',
  ]);
});

onPage('tells what an entry means that one points at', async (page) => {
  const place = await page.tab.$eval('#editor .cm-line:nth-of-type(4) span', (node) => {
    const { x, y, width, height } = node.getBoundingClientRect();
    return { x: x + width / 2, y: y + height / 2 };
  });
  await page.tab.mouse.move(place.x, place.y);
  await page.tab.waitForSelector('.hover');
  assert.match(
    await textOf(page.tab, '.hover'),
    /sales: ok: lookups find it.*Link string: 10\.0\.1\.11:2881\/sales/,
  );
});

onPage('lays the text out, once and no more', async (page) => {
  await replaceText(
    page,
    'sales=(description=(address=(host=h)(port=1))(connect_data=(sid=s))) # note\n',
  );
  await untilChecked(page, () => page.tab.click('#format'));
  const text = await shownText(page.tab);
  assert.match(text, /^sales =\n {2}\(description =\n/);
  assert.match(text, /# note/);
  await page.tab.click('#format');
  await waitForText(page.tab, '#notice', 'laid out already');
  assert.equal(await shownText(page.tab), text);
});

onPage('fixes all after it has shown what would change', async (page) => {
  const text = entry('a', '(SERVER = X)') + entry('b') + entry('c', '(SERVER = Y)');
  await replaceText(page, text);
  await statusOf(page, '2 errors');
  await page.tab.click('#fix-all');
  await page.tab.waitForSelector('dialog .cm-merge-b');
  assert.match(await textOf(page.tab, 'dialog .cm-merge-a'), /SERVER = X.*SERVER = Y/);
  assert.doesNotMatch(await textOf(page.tab, 'dialog .cm-merge-b'), /SERVER/);
  await clickButton(page.tab, 'Cancel', 'dialog');
  assert.equal(await shownText(page.tab), text);
  await page.tab.click('#fix-all');
  await page.tab.waitForSelector('dialog .cm-merge-b');
  await clickButton(page.tab, 'Apply', 'dialog');
  await statusOf(page, 'nothing wrong');
  assert.equal(await shownText(page.tab), entry('a') + entry('b') + entry('c'));
});

// Its first fault needs a guess: the second one is not mended either.
const needsGuess = entry('a', '(SERVER = X)').replace('(HOST', '(PROT = TCP)(HOST');

onPage('tells how many findings all fixes mend, and how many errors they leave', async (page) => {
  await replaceText(page, needsGuess + entry('b', '(SERVER = X)'));
  await page.tab.click('#fix-all');
  await waitForText(page.tab, 'dialog header', '1 finding is mended;');
  assert.match(await textOf(page.tab, 'dialog header'), / 2 errors are left\.$/);
  await untilChecked(page, () => clickButton(page.tab, 'Apply', 'dialog'));
  assert.match(await textOf(page.tab, '#status'), /^2 errors/);
  assert.equal(await shownText(page.tab), needsGuess + entry('b'));
  // Two quotes are one finding.
  await replaceText(page, entry('a').replace('(', '"(').replace('\n', '"\n'));
  await page.tab.click('#fix-all');
  await waitForText(page.tab, 'dialog header', '1 finding is mended;');
  assert.match(await textOf(page.tab, 'dialog header'), / stays\.$/);
});

onPage('offers to fix all where that changes something', async (page) => {
  const isDisabled = () => page.tab.$eval('#fix-all', (button) => button.disabled);
  await replaceText(page, needsGuess);
  assert.equal(await isDisabled(), true);
  await replaceText(page, entry('b', '(SERVER = X)') + needsGuess);
  assert.equal(await isDisabled(), false);
  await replaceText(page, entry('b'));
  assert.equal(await isDisabled(), true);
});

onPage('says which entries keep their layout, and why', async (page) => {
  await replaceText(page, entry('a', '(SERVER = X)'));
  await page.tab.click('#format');
  await waitForText(
    page.tab,
    '#notice',
    'Nothing to lay out. 1 entry keeps its layout: the library refuses it (line 1).',
  );
});

onPage('names the lines at which the entries that keep their layout stand now', async (page) => {
  const crowded = 'a=(description=(address=(host=h)(port=1))(connect_data=(sid=s)))\n';
  await replaceText(
    page,
    crowded + entry('b', '(SERVER = X)') + crowded + entry('c', '(SERVER = X)'),
  );
  await untilChecked(page, () => page.tab.click('#format'));
  const lines = (await shownText(page.tab)).split('\n');
  const [b, c] = ['b', 'c'].map((name) => 1 + lines.indexOf(entry(name, '(SERVER = X)').trim()));
  assert.ok(2 < b && b < c);
  assert.match(await textOf(page.tab, '#notice'), new RegExp(`\\(line ${b}, ${c}\\)`));
});

onPage('lays out and downloads by keys, wherever the focus is', async (page) => {
  await replaceText(page, '# note\n');
  await page.tab.focus('#tab-entries');
  await pressTogether(page.tab, 'Shift', 'Alt', 'KeyF');
  await waitForText(page.tab, '#notice', 'laid out already');
});

onPage('starts its checker again when that has stopped', async (page) => {
  await replaceText(page, entry('sales', '(SERVER = X)'));
  await endWorker(page);
  await untilChecked(page, () => clickButton(page.tab, 'Start it again', '#notice'));
  assert.deepEqual(await verdicts(page.tab), ['refused']);
  assert.equal(await shownText(page.tab), entry('sales', '(SERVER = X)'));
});

onPage('a file that is opened after the checker has stopped starts it again', async (page) => {
  await endWorker(page);
  await openFile(page, 'other.ora', entry('other'));
  assert.deepEqual(await names(page.tab), ['other']);
});

onPage('says that the checker has stopped to whoever asks it', async (page) => {
  await endWorker(page);
  await clickButton(page.tab, 'Dismiss', '#notice');
  await page.tab.click('#format');
  await waitForText(page.tab, '#notice', 'The checker has stopped (no memory left).');
  await untilChecked(page, () => clickButton(page.tab, 'Start it again', '#notice'));
});

onPage('the focus stays among the findings when one of them is mended', async (page) => {
  await replaceText(page, entry('a', '(SERVER = X)') + entry('b', '(SERVER = Y)'));
  await statusOf(page, '2 errors');
  await page.tab.click('#tab-findings');
  await page.tab.focus('.finding .fix');
  await untilChecked(page, () => page.tab.keyboard.press('Enter'));
  const isAmongThem = () =>
    page.tab.evaluate(() => document.activeElement.closest('.findings') !== null);
  assert.equal(await isAmongThem(), true);
  assert.equal(await page.tab.evaluate(() => document.activeElement.className), 'fix');
});

onPage('a block that is open stays open when another entry changes', async (page) => {
  await replaceText(page, entry('a'));
  await waitForText(page.tab, '.detail h2', 'a');
  await page.tab.click('.tree details details summary');
  await page.tab.$eval('.tree details:not([open])', (one) => (one.open = true)).catch(() => {});
  const openBlocks = () => page.tab.$$eval('.tree details[open]', (all) => all.length);
  const opened = await openBlocks();
  await page.tab.$$eval('.tree details', (all) => all.forEach((one) => (one.dataset.seen = 'yes')));
  await untilChecked(page, async () => {
    await page.tab.focus('.cm-content');
    await pressTogether(page.tab, 'Control', 'End');
    await page.tab.keyboard.sendCharacter(entry('b'));
  });
  await new Promise((resolve) => setTimeout(resolve, 200));
  assert.equal(await openBlocks(), opened);
  const kept = await page.tab.$$eval('.tree details', (all) => all.map((one) => one.dataset.seen));
  assert.ok(kept.every((seen) => seen === 'yes'));
});
