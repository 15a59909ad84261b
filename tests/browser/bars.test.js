// The picture of the sequence: how long it takes, and the automation's position.
import assert from 'node:assert/strict';
import { browserTests, button, picture } from './support/browser.js';
import { watchShifts } from './support/shifts.js';
import { enter } from './support/tables.js';

const browserTest = browserTests();
const path = '#/sequence';

const cell = (page, column, line) => page.getByLabel(`${column}, line ${line}`, { exact: true });
const bar = (page, name = 'One pass through the table') =>
  page.getByRole('list', { name, exact: true });
const fact = async (page, name, text) =>
  page
    .locator('.lengths div')
    .filter({ has: page.locator('dt').getByText(name, { exact: true }) })
    .getByText(text, { exact: true })
    .waitFor();

browserTest('the length follows typing', { path }, async (page) => {
  await fact(page, 'One run', '3 min 00 s');
  await fact(page, 'Whole table', '2 passes, 20 runs, 1 h 00 min plus flushing');
  await cell(page, 'Runs', 2).fill('6');
  await button(page, 'Discard and reload…').waitFor();
  await fact(page, 'One pass', '11 runs, 33 min 00 s plus flushing');
  const shifts = await watchShifts(page);
  for (const text of ['60', '600', '0']) {
    await cell(page, 'Runs', 2).fill(text);
    await fact(page, 'One pass', new RegExp(`^${5 + Number(text)} runs`));
  }
  await page.getByText('Skipped, with 0 runs: line 2.').waitFor();
  assert.deepEqual(await shifts(), []);
  await page.getByLabel('Starts again after the last line').check();
  await fact(page, 'Whole table', 'no end: after the last line it starts again');
});

browserTest('lines of the bar and of the table lead to each other', { path }, async (page) => {
  const marked = bar(page).locator('.stretch.focused');
  const third = page.getByLabel(/^Line 3: Analysis, stream 2, 3 runs/);
  await enter(cell(page, 'Flush time', 3), marked.and(third));
  await bar(page)
    .getByLabel(/^Line 1: Calibration/)
    .click();
  await cell(page, 'Type', 1).and(page.locator(':focus')).waitFor();
  await page.keyboard.press('Shift+Tab');
  await page.keyboard.press('ArrowRight');
  await page.keyboard.press('Enter');
  await cell(page, 'Type', 2).and(page.locator(':focus')).waitFor();
});

browserTest('the position of the automation', { path }, async (page, gc) => {
  await fact(page, 'Automation now', 'not under way');
  await gc.command(16);
  // Flushing takes 90 s; then follow two runs of 180 s with a delay of 30 s between them.
  await gc.control('step', 100);
  await fact(page, 'Automation now', 'line 1, run 1 of 2, pass 1 of 2');
  const now = page.getByTestId('position').locator('line');
  const place = async () => (await now.boundingBox()).x;
  const first = await place();
  await gc.control('step', 300);
  await fact(page, 'Automation now', 'line 1, run 2 of 2, pass 1 of 2');
  assert.ok((await place()) > first + 20);
  const line = await bar(page)
    .getByLabel(/^Line 1:/)
    .locator('.reach')
    .boundingBox();
  assert.ok((await place()) < line.x + line.width);

  // Edits meanwhile: the instrument runs its own table.
  await cell(page, 'Runs', 1).fill('9');
  const edited = bar(page, 'One pass as edited here; the instrument runs another table');
  await edited.getByLabel(/^Line 1: Calibration, stream 4, 9 runs/).waitFor();
  assert.equal(await edited.getByTestId('position').count(), 0);
  const its = bar(page, 'One pass as the instrument runs it');
  await its.getByLabel(/^Line 1: Calibration, stream 4, 2 runs/).waitFor();
  await its.getByTestId('position').waitFor();
  await picture(page, 'sequence-bars');
  await gc.command(1);
  await fact(page, 'Automation now', 'not under way');
  await bar(page).waitFor();
  assert.equal(await page.getByTestId('position').count(), 0);
});

const lost = { path, expected: [/503/] };
browserTest('a position that is no longer known is not shown', lost, async (page, gc) => {
  await gc.command(16);
  await gc.control('step', 100);
  await page.getByTestId('position').waitFor();
  await gc.fault({ kind: 'refuse', times: 0 });
  await fact(page, 'Automation now', 'not known: there is no recent answer');
  assert.equal(await page.getByTestId('position').count(), 0);
  await gc.control('fault', '--clear');
  await page.getByTestId('position').waitFor();
});

const full = {
  path,
  scenario: 'four-channel',
  context: { viewport: { width: 360, height: 740 } },
};
browserTest('twenty lines on a phone', full, async (page) => {
  await enter(cell(page, 'Runs', 20), bar(page).locator('.stretch.focused'));
  assert.equal(await bar(page).getByRole('button').count(), 20);
  const names = await bar(page)
    .locator('.line-name')
    .evaluateAll((all) =>
      all
        .map((one) => ({
          text: one.textContent,
          box: one.getBoundingClientRect(),
        }))
        .filter(({ text }) => text !== '')
        .map(({ text, box: { left, right } }) => ({ text, left, right })),
    );
  assert.ok(names.length > 5);
  for (const [n, { left, right, text }] of names.entries()) {
    assert.ok(left >= 0 && right <= 360, text);
    assert.ok(n === 0 || left >= names[n - 1].right, text);
  }
  const wide = await page.evaluate(() => document.documentElement.scrollWidth - innerWidth);
  assert.ok(wide <= 0, `${wide} too wide`);
});

const forced = { path, context: { forcedColors: 'active' } };
browserTest('forced colours show flushing, runs and focused line', forced, async (page) => {
  await enter(cell(page, 'Runs', 2), bar(page).locator('.stretch.focused'));
  const styles = await bar(page).evaluate((list) =>
    ['.run', '.flush', '.frame'].map((name) => {
      const { stroke, strokeWidth, strokeDasharray } = getComputedStyle(list.querySelector(name));
      return [stroke === 'none', strokeWidth, strokeDasharray];
    }),
  );
  assert.deepEqual(styles, [
    [false, '1px', 'none'],
    [false, '1px', '3px, 2px'],
    [false, '3px', 'none'],
  ]);
});
