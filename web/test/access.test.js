// For everybody: the keyboard alone, a screen reader's tree, small screens, light and dark.
import assert from 'node:assert/strict';
import { createRequire } from 'node:module';
import { readFileSync } from 'node:fs';

import { onPage, replaceText, textOf } from './support/browser.js';

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
    onPage(
      `axe-core finds nothing: ${name}, ${scheme}, ${width} pixels`,
      { scheme, width },
      async (page) => {
        await show(page);
        await new Promise((resolve) => setTimeout(resolve, 250));
        assert.deepEqual(await findingsOf(page), []);
      },
    );

for (const width of [360, 768, 1280])
  onPage(`nothing is wider than a screen of ${width} pixels`, { width }, async (page) => {
    for (const show of [views.entries, views.findings, views.why]) {
      await show(page);
      assert.equal(await page.tab.evaluate(() => document.documentElement.scrollWidth), width);
    }
  });

const focused = (tab) =>
  tab.evaluate(() => {
    const { id, className, textContent } = document.activeElement;
    return id || className || textContent;
  });

onPage('the keyboard reaches everything, and leaves the text again', async (page) => {
  const { tab } = page;
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
});

onPage('arrows go through tabs and entries', async (page) => {
  const { tab } = page;
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
});

onPage('a screen reader is told what was found', async (page) => {
  await replaceText(page, 'a = (DESCRIPTION = (X = 1))\n');
  for (const wanted of [
    '[name="Names file"][role="textbox"]',
    '[name="Entries"][role="listbox"]',
    '[name="Entries 1"][role="tab"]',
  ])
    assert.ok(await page.tab.$(`::-p-aria(${wanted})`), wanted);
  assert.equal(await page.tab.$eval('#status', (node) => node.getAttribute('aria-live')), 'polite');
});
