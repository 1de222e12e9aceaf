// For everybody: the keyboard alone, a screen reader's tree, small screens, light and dark.
import assert from 'node:assert/strict';
import { createRequire } from 'node:module';
import { readFileSync } from 'node:fs';
import test from 'node:test';

import { openPage, replaceText, textOf } from './support/browser.js';

const axe = readFileSync(createRequire(import.meta.url).resolve('axe-core/axe.min.js'), 'utf8');

// What axe-core finds in the page as it is.
async function findingsOf({ tab }) {
  await tab.evaluate(axe);
  const { violations } = await tab.evaluate(() => globalThis.axe.run(document));
  return violations.map(
    ({ id, nodes }) => `${id}: ${nodes.map(({ html }) => html.slice(0, 120)).join(' | ')}`,
  );
}

const views = {
  entries: async () => {},
  picture: async ({ tab }) => tab.click('#show-picture'),
  findings: async ({ tab }) => tab.click('#tab-findings'),
  why: async ({ tab }) => {
    await tab.click('#tab-why');
    await tab.type('#identifier', 'orders');
    await tab.keyboard.press('Enter');
    await tab.waitForFunction(() => !document.querySelector('.answer').hidden);
  },
  difference: async ({ tab }) => {
    await tab.click('#fix-all');
    await tab.waitForSelector('dialog .cm-content');
  },
  licences: async ({ tab }) => tab.click('#licences'),
};

for (const [scheme, width] of [
  ['light', 1280],
  ['dark', 1280],
  ['light', 360],
])
  for (const [name, show] of Object.entries(views))
    test(`axe-core finds nothing: ${name}, ${scheme}, ${width} pixels`, async () => {
      const face = await openPage({ scheme, width });
      await show(face);
      await new Promise((resolve) => setTimeout(resolve, 250));
      assert.deepEqual(await findingsOf(face), []);
      await face.tab.close();
    });

for (const width of [360, 768, 1280])
  test(`nothing is wider than a screen of ${width} pixels`, async () => {
    const face = await openPage({ width });
    for (const show of [views.entries, views.findings, views.why]) {
      await show(face);
      assert.equal(await face.tab.evaluate(() => document.documentElement.scrollWidth), width);
    }
    await face.tab.close();
  });

const focused = (tab) =>
  tab.evaluate(() => {
    const { id, className, textContent } = document.activeElement;
    return id || className || textContent;
  });

test('the keyboard reaches everything, and leaves the text again', async () => {
  const face = await openPage();
  const { tab } = face;
  const reached = [];
  for (let step = 0; step < 30; step += 1) {
    await tab.keyboard.press('Tab');
    reached.push(await focused(tab));
  }
  for (const one of [
    'open',
    'example',
    'format',
    'fix-all',
    'download',
    'cm-content',
    'tab-entries',
    'entries',
    'show-picture',
    'with-defaults',
    'licences',
  ])
    assert.ok(reached.includes(one), `${one} in ${reached}`);
  await tab.close();
});

test('arrows go through tabs and entries', async () => {
  const face = await openPage();
  const { tab } = face;
  await tab.focus('#tab-entries');
  await tab.keyboard.press('ArrowRight');
  assert.equal(await focused(tab), 'tab-findings');
  assert.equal(await tab.$eval('#panel-findings', (panel) => panel.hidden), false);
  await tab.keyboard.press('End');
  assert.equal(await focused(tab), 'tab-why');
  await tab.keyboard.press('Home');
  await tab.focus('.entries');
  await tab.keyboard.press('ArrowDown');
  await tab.waitForFunction(() => document.querySelector('.detail h2').textContent === 'orders');
  assert.equal(
    await tab.$eval('.entries', (list) => list.getAttribute('aria-activedescendant')),
    'entry-1',
  );
  await tab.keyboard.press('Enter');
  assert.equal(await textOf(tab, '.cm-activeLine'), 'orders =');
  await tab.close();
});

test('a screen reader is told what was found', async () => {
  const face = await openPage();
  await replaceText(face, 'a = (DESCRIPTION = (X = 1))\n');
  for (const wanted of [
    '[name="Names file"][role="textbox"]',
    '[name="Entries"][role="listbox"]',
    '[name="Entries 1"][role="tab"]',
  ])
    assert.ok(await face.tab.$(`::-p-aria(${wanted})`), wanted);
  assert.equal(await face.tab.$eval('#status', (node) => node.getAttribute('aria-live')), 'polite');
  await face.tab.close();
});
