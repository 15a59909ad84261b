// axe finds no violation, on any page in any state and in any dialog, in light and in dark
// colours.
import assert from 'node:assert/strict';
import { createRequire } from 'node:module';
import { readFileSync } from 'node:fs';
import { browserTests, button, says } from './support/browser.js';
import { pages } from './support/pages.js';
import { send } from './support/tables.js';

const axe = readFileSync(createRequire(import.meta.url).resolve('axe-core/axe.min.js'), 'utf8');
const browserTest = browserTests();

/** Fails with the violations that axe reports, and their places. */
async function isAccessible(page, where = '') {
  if (!(await page.evaluate(() => 'axe' in window))) {
    await page.evaluate(axe);
  }
  for (const colorScheme of ['light', 'dark']) {
    await page.emulateMedia({ colorScheme });
    // Only contrast depends on the colours.
    const rules = colorScheme === 'dark' ? { runOnly: ['color-contrast'] } : {};
    const { violations, passes } = await page.evaluate(
      (rules) => /** @type {any} */ (window).axe.run(document, rules),
      rules,
    );
    const found = violations.flatMap(({ id, help, nodes }) =>
      nodes.map(({ target, failureSummary }) => `${id}: ${help}: ${target}: ${failureSummary}`),
    );
    assert.deepEqual(found, [], `${where} ${colorScheme}`);
    assert.ok(passes.length > (colorScheme === 'dark' ? 0 : 10));
  }
}

/** An element of each page that comes with the instrument's answer. */
const content = {
  status: '.bar-gauge',
  run: 'main option',
  sequence: '.stretch',
  calibration: '.stick',
  alarms: 'main section li, main section tr',
  configuration: 'main dd',
  wall: '.wall-values',
};
const sizes = [
  { names: Object.keys(content), width: 1280, height: 800 },
  { names: ['status', 'wall'], width: 360, height: 740 },
];

async function areAccessible(page) {
  for (const { names, width, height } of sizes) {
    await page.setViewportSize({ width, height });
    for (const { name, path } of pages.filter((one) => names.includes(one.name))) {
      await page.evaluate((hash) => (location.hash = hash), path);
      await page.locator(content[name]).first().waitFor({ state: 'attached' });
      await isAccessible(page, `${name}, ${width} wide`);
    }
  }
}

/** How to reach each state, and how to tell that it is reached. */
const states = [
  { name: 'ready', go: (page) => says(page, 'state', 'Ready') },
  {
    name: 'running',
    go: async (page, gc) => {
      await gc.command(16);
      await gc.control('step', 200);
      await says(page, 'state', 'Running');
    },
  },
  {
    name: 'error',
    scenario: 'error',
    go: (page) => says(page, 'state', 'Error'),
  },
  {
    name: 'alarm',
    go: async (page, gc) => {
      await gc.set('mAmbientTemp', 61);
      await gc.set('mColumnTemp1', 91.5);
      await page.locator('.sign.alarm').waitFor();
    },
  },
];
for (const { name, scenario, go } of states) {
  browserTest(`every page: ${name}`, { scenario }, async (page, gc) => {
    await go(page, gc);
    await areAccessible(page);
  });
}

browserTest('every page: lost', { expected: [/503/] }, async (page, gc) => {
  // The pages then show what was read before.
  for (const { name, path } of pages) {
    await page.evaluate((hash) => (location.hash = hash), path);
    await page.locator(content[name]).first().waitFor({ state: 'attached' });
  }
  await gc.fault({ kind: 'refuse', times: 0 });
  await page
    .getByText(/^No answer since/)
    .first()
    .waitFor();
  await areAccessible(page);
});

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

browserTest('a table being edited', { path: '#/sequence' }, async (page) => {
  await page.getByLabel('Runs, line 1').fill('x');
  await isAccessible(page);
  await page.getByLabel('Runs, line 1').fill('4');
  await button(page, 'Delete line 3').click();
  await button(page, 'Compare and send…').click();
  await page.getByRole('dialog').waitFor();
  await isAccessible(page);
});

browserTest('alarms by name, and the stop buttons', { path: '#/run' }, async (page, gc) => {
  await gc.set('mAmbientTemp', 61);
  await gc.command(16);
  // During flushing, a stop asks first.
  await gc.control('step', 5);
  await page.getByText('Which alarms', { exact: true }).click();
  await page.getByRole('list', { name: 'Active alarms' }).waitFor();
  await isAccessible(page, 'which alarms');
  await page.setViewportSize({ width: 360, height: 740 });
  await isAccessible(page, 'which alarms on a telephone');
  for (const action of ['Stop after this run', 'Abort now…']) {
    // The open list must not cover the button.
    await button(page, action, { disabled: false }).click();
    await page.getByRole('dialog').waitFor();
    await isAccessible(page, action);
    await page.keyboard.press('Escape');
  }
  await page.getByRole('link', { name: 'Alarms' }).click();
  await button(page, 'Reset all alarms…', { disabled: false }).click();
  await page.getByRole('dialog').waitFor();
  await isAccessible(page, 'reset');
});

const refused = { path: '#/sequence', expected: [/404/, /409/] };
browserTest('dialogs of a table', refused, async (page, gc) => {
  const dialog = page.getByRole('dialog');
  await page.getByLabel('Runs, line 1').fill('7');
  await button(page, 'Discard and reload…').click();
  await dialog.waitFor();
  await isAccessible(page, 'discard');
  await page.keyboard.press('Escape');
  await gc.fault({ kind: 'status', call: 'Write', nth: 2, status: 207 });
  await send(page, 'sequence');
  await page.getByText('A table was not taken as a whole').waitFor();
  await isAccessible(page, 'refused halfway');
  await button(page, 'Restore the previous table…').click();
  await dialog.getByRole('row').first().waitFor();
  await isAccessible(page, 'restore');
  await page.keyboard.press('Escape');
  await button(page, 'Earlier tables…').click();
  await dialog.locator('summary').first().click();
  await dialog.getByRole('rowheader', { name: '~ changed' }).first().waitFor();
  await isAccessible(page, 'earlier tables');
});
