// Texts from the instrument that look like markup or scripts are shown as text.
import assert from 'node:assert/strict';
import { mkdtempSync, readFileSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { after } from 'node:test';
import { browserTests, button } from './support/browser.js';

const script = "<script>alert('/')</script>";
const image = '<img src=x onerror=alert(1)>';
const link = '"><a href="javascript:alert(2)">log in</a>';
const svg = '<svg/onload=alert(3)>';
const frame = "<iframe src='//evil.example'>";
const peak = '<b onclick=alert(4)>'; // as long as a name can be

const everyday = JSON.parse(
  readFileSync(new URL('../../simulator/scenarios/everyday.json', import.meta.url), 'utf8'),
);
const folder = mkdtempSync(`${tmpdir()}/gc-hostile-`);
after(() => rmSync(folder, { recursive: true }));
const scenario = `${folder}/hostile.json`;
const texts = {
  siteInformation: link,
  instrumentName: script,
  application: `${script}${image}`,
  bootpName: svg,
  columns: [image, frame, '', ''],
};
const [first, ...others] = everyday.peaks;
writeFileSync(
  scenario,
  JSON.stringify({
    ...everyday,
    texts,
    peaks: [{ ...first, name: peak }, ...others],
  }),
);

const browserTest = browserTests();

// The path, and the texts shown there.
const shown = [
  ['#/status', [script, image, frame]],
  ['#/run', [script]],
  ['#/sequence', [script]],
  ['#/calibration', [script, peak]],
  ['#/alarms', [script]],
  ['#/configuration', [script, link, svg, image, frame]],
  ['#/wall', [script, image]],
];

/** Elements that no page uses, and handlers in attributes. */
const foreign =
  'img, iframe, object, embed, b, script:not([src]), svg[onload], [onerror], [onclick], a[href^="javascript"]';

for (const [path, expected] of shown) {
  browserTest(`shown as text on ${path}`, { path, scenario }, async (page) => {
    for (const text of expected) {
      // The title of a drawing is text, too, but it is not visible.
      await page.getByText(text).filter({ visible: true }).first().waitFor();
    }
    assert.equal(await page.locator(foreign).count(), 0);
    assert.match(await page.title(), /<script>alert\('\/'\)<\/script>/);
    assert.ok((await page.evaluate(() => document.documentElement.scrollWidth)) <= 1280);
  });
}

browserTest(
  'shown as text among the differences',
  { path: '#/calibration', scenario },
  async (page) => {
    await page.getByLabel('Amount, level 1, peak 1', { exact: true }).fill('5');
    await button(page, 'Compare and send…').click();
    const dialog = page.getByRole('dialog');
    await dialog.getByText(peak).waitFor();
    assert.equal(await page.locator(foreign).count(), 0);
  },
);
