// The documents' pictures of the page show it as it is. With KZTNS_PICTURES, a folder, they are
// taken anew; otherwise they are compared with those in docs/.
import assert from 'node:assert/strict';
import { readFileSync, statSync } from 'node:fs';
import path from 'node:path';

import { onPage, scratchFolder } from './support/browser.js';
import { project } from './support/places.js';

const target = process.env.KZTNS_PICTURES || null;

// Letters may be drawn a little otherwise by another version of the browser.
const sameButForLetters = 0.04;
const largest = 200_000;

const pictures = {
  'web.png': [{ scheme: 'light' }, async () => {}],
  'web-dark.png': [
    { scheme: 'dark' },
    async ({ tab }) => {
      await tab.click('#fix-all');
      await tab.waitForSelector('dialog .cm-merge-b');
      await tab.focus('dialog .primary');
    },
  ],
  'web-narrow.png': [
    { scheme: 'light', width: 360, height: 740 },
    async ({ tab }) => {
      await tab.click('#show-picture');
      await tab.$eval('.side', (side) => side.scrollIntoView());
    },
  ],
};

// Which part of two pictures differs: 0 for none, 1 for all.
async function difference({ tab }, ...files) {
  const sources = files.map((file) => readFileSync(file).toString('base64'));
  return tab.evaluate(async (encoded) => {
    const [left, right] = await Promise.all(
      encoded.map(async (text) => {
        const bytes = Uint8Array.from(atob(text), (one) => one.charCodeAt(0));
        const image = await createImageBitmap(new Blob([bytes], { type: 'image/png' }));
        const canvas = new OffscreenCanvas(image.width, image.height);
        const context = canvas.getContext('2d');
        context.drawImage(image, 0, 0);
        return context.getImageData(0, 0, image.width, image.height);
      }),
    );
    if (left.width !== right.width || left.height !== right.height) return 1;
    let differing = 0;
    for (let at = 0; at < left.data.length; at += 4)
      if ([0, 1, 2].some((part) => Math.abs(left.data[at + part] - right.data[at + part]) > 40))
        differing += 1;
    return (differing * 4) / left.data.length;
  }, sources);
}

for (const [name, [options, prepare]] of Object.entries(pictures))
  onPage(`docs/${name}`, options, async (page) => {
    await prepare(page);
    await new Promise((resolve) => setTimeout(resolve, 600));
    // A caret that blinks is no difference.
    await page.tab.addStyleTag({ content: '.cm-cursorLayer { visibility: hidden }' });
    const taken = path.join(target ?? scratchFolder, name);
    await page.tab.screenshot({ path: taken });
    const kept = path.join(project, 'docs', name);
    assert.ok(statSync(taken).size < largest);
    const part = await difference(page, taken, kept);
    assert.ok(part < sameButForLetters, `${part} of it differs: run scripts/web --pictures`);
  });
