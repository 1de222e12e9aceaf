// What the page shows of entries and lookups.
import assert from 'node:assert/strict';
import test from 'node:test';

import {
  clickButton,
  entry,
  names,
  onPage,
  replaceText,
  textOf,
  textsOf,
  waitForText,
} from './support/browser.js';

onPage('shows tree, link string and picture of the selected entry', async (page) => {
  await waitForText(page.tab, '.detail', 'ADDRESS_LIST 2');
  assert.equal(await textOf(page.tab, '.detail .link-string'), '10.0.1.11:2881/sales');
  const summaries = await textsOf(page.tab, '.tree summary');
  assert.deepEqual(summaries.slice(0, 3), [
    'DESCRIPTION',
    'ADDRESS_LIST 1RANDOM',
    '10.0.1.11:288140 %',
  ]);
  const isShown = (selector) => page.tab.$eval(selector, (node) => node.checkVisibility());
  assert.equal(await isShown('.tree .by-default'), false);
  await page.tab.click('#with-defaults');
  assert.equal(await isShown('.tree .by-default'), true);
  await page.tab.click('#show-picture');
  const drawn = await textsOf(page.tab, '.detail .picture text');
  assert.ok(drawn.includes('KZLB_CONNECT_TIMEOUT = 3000'));
  assert.equal(drawn.filter((text) => /^10\.0\./.test(text)).length, 5);
  assert.equal((await page.tab.$$('.detail .picture path')).length, 9);
  await clickButton(page.tab, 'Enlarge', '.detail');
  assert.ok(await page.tab.$('dialog[open] .picture svg'));
  await page.tab.keyboard.press('Escape');
  await page.tab.waitForFunction(() => document.querySelector('dialog') === null);
});

onPage('says of a refused entry why it is', async (page) => {
  const seconds = await textsOf(page.tab, '.entry .second span:first-child');
  assert.equal(seconds[0], '10.0.1.11:2881/sales');
  assert.equal(seconds[1], 'unknown key SERVER');
  await page.tab.click('#entry-1');
  await waitForText(page.tab, '.detail h2', 'orders');
  assert.match(await textOf(page.tab, '.detail .reason'), /unknown key SERVER/);
  assert.equal(await page.tab.$eval('.detail .choice', (node) => node.hidden), true);
});

onPage('the reason why an entry is refused is an error, not a warning before it', async (page) => {
  await replaceText(page, entry('sales') + entry('Sales', '(SERVER = X)'));
  await waitForText(page.tab, '#entry-1 .second', 'unknown key SERVER');
  await page.tab.click('#entry-1');
  await waitForText(page.tab, '.detail h2', 'Sales');
  const reasons = await textsOf(page.tab, '.detail .reason');
  assert.match(reasons[0], /unknown key SERVER/);
  assert.match(reasons[1], /differs only in case/);
});

onPage('says of an unreachable entry what ends the lookups, and goes there', async (page) => {
  await replaceText(page, `${entry('a')}ä = \n${entry('b')}${entry('c')}`);
  await page.tab.click('#entry-3');
  await waitForText(page.tab, '.detail h2', 'c');
  assert.equal(
    await textOf(page.tab, '.detail .reason'),
    'lookups end at 3:1: expected "(" after "=", found "b"; write NAME = (DESCRIPTION = ...) [no-block]',
  );
  await clickButton(page.tab, '3:1', '.detail');
  assert.equal(await textOf(page.tab, '.cm-activeLine'), entry('b').trim());
  // A block that is not closed takes the entries after it with it.
  await replaceText(page, entry('a').replace('))\n', ')\n') + entry('b'));
  await page.tab.click('#entry-1');
  await waitForText(page.tab, '.detail .reason', 'lookups end at 1:5: DESCRIPTION is not closed');
  await page.tab.click('#entry-0');
  await waitForText(page.tab, '.detail h2', 'a');
  assert.doesNotMatch(await textOf(page.tab, '.detail'), /lookups end at/);
});

onPage('tells of the first findings of an entry, and how many there are', async (page) => {
  await replaceText(page, entry('a', '(W = 1)(X = 2)(Y = 3)(Z = 4)') + entry('b', '(W = 1)'));
  await page.tab.click('#entry-0');
  await waitForText(page.tab, '.detail .more', 'and 1 more finding');
  assert.equal((await page.tab.$$('.detail .reason')).length, 3);
  await page.tab.click('#entry-1');
  await waitForText(page.tab, '.detail h2', 'b');
  assert.equal(await page.tab.$('.detail .more'), null);
});

onPage('finds entries by a part of name, verdict or address', async (page) => {
  await page.tab.type('.filter input', 'REFUSED');
  assert.deepEqual(await names(page.tab), ['orders', 'reports']);
  await page.tab.type('.filter input', '!');
  assert.match(await textOf(page.tab, '#panel-entries .empty'), /^None of 4 entries/);
});

onPage('tells why a lookup leads nowhere, and again when the text changes', async (page) => {
  await page.tab.click('#tab-why');
  await page.tab.type('#identifier', 'Orders');
  await page.tab.keyboard.press('Enter');
  await waitForText(page.tab, '.answer', 'not found');
  assert.match(await textOf(page.tab, '.answer'), /4 entries passed over.*differs only in case/);
  await page.tab.$eval('#identifier', (input) => (input.value = 'orders'));
  await page.tab.focus('#identifier');
  await page.tab.keyboard.press('Enter');
  await waitForText(page.tab, '.answer', 'malformed');
  assert.match(await textOf(page.tab, '.answer'), /unknown key SERVER/);
  await replaceText(page, entry('orders'));
  await waitForText(page.tab, '.answer', 'link string h:1/s');
});

onPage('the answer is to what was asked, also while one types something else', async (page) => {
  await replaceText(page, entry('sales') + entry('orders'));
  await page.tab.click('#tab-why');
  await page.tab.type('#identifier', 'orders');
  await page.tab.keyboard.press('Enter');
  await waitForText(page.tab, '.answer', 'found at 2:1');
  await page.tab.type('#identifier', 'x');
  await page.tab.$eval('.answer h2', (head) => (head.seen = 'yes'));
  await replaceText(page, `${entry('sales')}${entry('orders')}# more\n`);
  await new Promise((resolve) => setTimeout(resolve, 200));
  assert.equal(await page.tab.$eval('.answer h2', (head) => head.seen), 'yes');
  await replaceText(page, entry('orders'));
  await waitForText(page.tab, '.answer', 'found at 1:1');
  assert.match(await textOf(page.tab, '.answer h2'), /^orders/);
});

onPage('places of an answer count characters', async (page) => {
  await replaceText(page, `"ä" = () ${entry('sales', '(SERVER = X)')}`);
  await page.tab.click('#tab-why');
  await page.tab.type('#identifier', 'sales');
  await page.tab.keyboard.press('Enter');
  await waitForText(page.tab, '.answer', 'found at 1:10');
});

onPage('a number is shown with all its digits', async (page) => {
  for (const weight of [
    '9007199254740991',
    '9007199254740992',
    '9007199254740993',
    '9223372036854775807',
  ]) {
    const address = `(ADDRESS = (HOST = h)(PORT = 1)(WEIGHT = ${weight}))`;
    await replaceText(page, `a = (DESCRIPTION = ${address}(CONNECT_DATA = (SID = s)))\n`);
    await page.tab.waitForFunction(
      (digits) =>
        [...document.querySelectorAll('.tree dd')].some((value) => value.textContent === digits),
      { timeout: 5000 },
      weight,
    );
  }
});

onPage('names the licences of all that is in it', async (page) => {
  await page.tab.click('#licences');
  const text = await textOf(page.tab, 'dialog .licences');
  for (const name of [
    '@codemirror/view',
    '@lezer/common',
    'style-mod',
    'w3c-keyname',
    'nlohmann-json',
    'emscripten',
  ])
    assert.ok(text.includes(name), name);
  // The grant stands next to each name, and the texts of the licences are whole.
  const parts = text.split('-'.repeat(40));
  for (const name of [
    'Niels Lohmann',
    'Bjoern Hoehrmann',
    'Florian Loitsch',
    'Emscripten Authors',
    'Rich Felker',
  ])
    assert.ok(
      parts.some((part) => part.includes(name) && part.includes('Permission is hereby granted')),
      name,
    );
  assert.match(parts[0], /TERMS AND CONDITIONS FOR USE, REPRODUCTION, AND DISTRIBUTION/);
});
