// Forced colours and print: nothing depends on a background that is not there.
import assert from 'node:assert/strict';
import { browserTests, button, says } from './support/browser.js';

const browserTest = browserTests();

const styleOf = (locator, name) =>
  locator.evaluate((element, name) => getComputedStyle(element)[name], name);

for (const colorScheme of ['light', 'dark']) {
  const context = { forcedColors: 'active', colorScheme };
  browserTest(`forced colours, ${colorScheme}`, { path: '#/run', context }, async (page, gc) => {
    await gc.command(0);
    await gc.control('step', 90);
    const bar = page.getByRole('progressbar', { name: 'Run' });
    await bar.and(page.locator('[aria-valuenow="90"]')).waitFor();
    assert.notEqual(
      await styleOf(bar.locator('div'), 'backgroundColor'),
      await styleOf(bar, 'backgroundColor'),
    );
    const underline = (name) =>
      styleOf(page.getByRole('navigation').getByRole('link', { name }), 'borderBottomColor');
    assert.notEqual(await underline('Run'), await underline('Status'));
    assert.notEqual(
      await styleOf(button(page, 'Switch', { disabled: true }), 'color'),
      await styleOf(button(page, 'Abort now…', { disabled: false }), 'color'),
    );
  });
}

const dark = { context: { colorScheme: 'dark' } };
browserTest('print has a white background and no controls', dark, async (page) => {
  await says(page, 'state', 'Ready');
  const ground = () => styleOf(page.locator('body'), 'backgroundColor');
  assert.equal(await ground(), 'rgb(16, 19, 23)');
  await page.emulateMedia({ media: 'print' });
  assert.equal(await ground(), 'rgb(244, 245, 246)');
  assert.equal(await page.getByRole('button').count(), 0);
  assert.equal(await page.getByRole('navigation').count(), 0);
  await page.getByRole('region', { name: 'Channel 2' }).waitFor();
  await page.getByRole('img', { name: /^Curve/ }).waitFor();
});

const narrow = {
  path: '#/sequence',
  context: { viewport: { width: 700, height: 900 } },
};
browserTest('a printed sequence is one table', narrow, async (page) => {
  await page.getByLabel('Runs, line 3').waitFor();
  const head = page.locator('thead').first();
  await head.waitFor({ state: 'hidden' });
  await page.emulateMedia({ media: 'print' });
  await head.waitFor({ state: 'visible' });
});
