// What the page shows of entries and lookups.
import assert from 'node:assert/strict';
import test from 'node:test';

import {
  clickButton,
  entry,
  names,
  openPage,
  replaceText,
  textOf,
  textsOf,
  waitForText,
} from './support/browser.js';

test('shows tree, link string and picture of the selected entry', async () => {
  const face = await openPage();
  await waitForText(face.tab, '.detail', 'ADDRESS_LIST 2');
  assert.equal(await textOf(face.tab, '.detail .link-string'), '10.0.1.11:2881/sales');
  const summaries = await textsOf(face.tab, '.tree summary');
  assert.deepEqual(summaries.slice(0, 3), [
    'DESCRIPTION',
    'ADDRESS_LIST 1RANDOM',
    '10.0.1.11:288140 %',
  ]);
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

test('the answer is to what was asked, also while one types something else', async () => {
  const face = await openPage();
  await replaceText(face, entry('sales') + entry('orders'));
  await face.tab.click('#tab-why');
  await face.tab.type('#identifier', 'orders');
  await face.tab.keyboard.press('Enter');
  await waitForText(face.tab, '.answer', 'found at 2:1');
  await face.tab.type('#identifier', 'x');
  await face.tab.$eval('.answer h2', (head) => (head.seen = 'yes'));
  await replaceText(face, `${entry('sales')}${entry('orders')}# more\n`);
  await new Promise((resolve) => setTimeout(resolve, 200));
  assert.equal(await face.tab.$eval('.answer h2', (head) => head.seen), 'yes');
  await replaceText(face, entry('orders'));
  await waitForText(face.tab, '.answer', 'found at 1:1');
  assert.match(await textOf(face.tab, '.answer h2'), /^orders/);
  await face.tab.close();
});

test('places of an answer count characters', async () => {
  const face = await openPage();
  await replaceText(face, `"ä" = () ${entry('sales', '(SERVER = X)')}`);
  await face.tab.click('#tab-why');
  await face.tab.type('#identifier', 'sales');
  await face.tab.keyboard.press('Enter');
  await waitForText(face.tab, '.answer', 'found at 1:10');
  await face.tab.close();
});

test('a number is shown with all its digits', async () => {
  const face = await openPage();
  for (const weight of [
    '9007199254740991',
    '9007199254740992',
    '9007199254740993',
    '9223372036854775807',
  ]) {
    const address = `(ADDRESS = (HOST = h)(PORT = 1)(WEIGHT = ${weight}))`;
    await replaceText(face, `a = (DESCRIPTION = ${address}(CONNECT_DATA = (SID = s)))\n`);
    await face.tab.waitForFunction(
      (digits) =>
        [...document.querySelectorAll('.tree dd')].some((value) => value.textContent === digits),
      { timeout: 5000 },
      weight,
    );
  }
  await face.tab.close();
});

test('names the licences of all that is in it', async () => {
  const face = await openPage();
  await face.tab.click('#licences');
  const text = await textOf(face.tab, 'dialog .licences');
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
  for (const name of ['Niels Lohmann', 'Bjoern Hoehrmann', 'Emscripten Authors', 'Rich Felker'])
    assert.ok(
      parts.some((part) => part.includes(name) && part.includes('Permission is hereby granted')),
      name,
    );
  assert.match(parts[0], /TERMS AND CONDITIONS FOR USE, REPRODUCTION, AND DISTRIBUTION/);
  await face.tab.close();
});
