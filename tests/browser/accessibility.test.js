// What axe finds wrong, on every page and in every dialog, in light and in dark colours: nothing.
import assert from 'node:assert/strict';
import { createRequire } from 'node:module';
import { readFileSync } from 'node:fs';
import { browserTests, button, says } from './support/browser.js';
import { pages } from './support/pages.js';

const axe = readFileSync(createRequire(import.meta.url).resolve('axe-core/axe.min.js'), 'utf8');
const browserTest = browserTests();

/** Fails with what axe complains about, and where. */
async function isAccessible(page) {
  if (!(await page.evaluate(() => 'axe' in window))) {
    await page.evaluate(axe);
  }
  for (const colorScheme of ['light', 'dark']) {
    await page.emulateMedia({ colorScheme });
    const { violations, passes } = await page.evaluate(() =>
      /** @type {any} */ (window).axe.run(document),
    );
    const found = violations.flatMap(({ id, help, nodes }) =>
      nodes.map(({ target, failureSummary }) => `${id}: ${help}: ${target}: ${failureSummary}`),
    );
    assert.deepEqual(found, [], colorScheme);
    assert.ok(passes.length > 10);
  }
}

for (const { name, path, content } of pages) {
  browserTest(name, { path }, async (page) => {
    await content(page);
    await isAccessible(page);
  });
}

browserTest('a run', { path: '#/run' }, async (page, gc) => {
  await button(page, 'Start automation…').click();
  const dialog = page.getByRole('dialog');
  await dialog.waitFor();
  await isAccessible(page);
  await button(dialog, 'Start').click();
  await says(page, 'notice', 'the automation has begun');
  await gc.control('step', 95);
  await page.getByRole('progressbar').waitFor();
  await isAccessible(page);
  await button(page, 'Abort now…').click();
  await page.getByRole('dialog').waitFor();
  await isAccessible(page);
});

browserTest('a table that is edited', { path: '#/sequence' }, async (page) => {
  await page.getByLabel('Runs, line 1').fill('x');
  await isAccessible(page);
  await page.getByLabel('Runs, line 1').fill('4');
  await button(page, 'Delete line 3').click();
  await button(page, 'Compare and send…').click();
  await page.getByRole('dialog').waitFor();
  await isAccessible(page);
});

const error = { scenario: 'error', expected: [/503/] };
browserTest('an error, alarms, and no answer', error, async (page, gc) => {
  await page.getByText(/^Alarm$/).waitFor();
  await isAccessible(page);
  await page.getByRole('link', { name: 'Alarms' }).click();
  await button(page, 'Reset all alarms…', { disabled: false }).click();
  await page.getByRole('dialog').waitFor();
  await isAccessible(page);
  await page.keyboard.press('Escape');
  await gc.fault({ kind: 'refuse', times: 0 });
  await page.getByText('The instrument is not reachable.').first().waitFor();
  await isAccessible(page);
  await page.getByRole('link', { name: 'Wall' }).click();
  await page.getByText(/^Error \d+:/).waitFor();
  await isAccessible(page);
});
