// The picture of the calibration: sticks that follow the focus, sums, changes before they are sent.
import assert from 'node:assert/strict';
import { browserTests, button, picture } from './support/browser.js';
import { watchShifts } from './support/shifts.js';
import { enter } from './support/tables.js';

const browserTest = browserTests();
const path = '#/calibration';
const phone = { viewport: { width: 360, height: 740 } };

const amount = (page, peak) => page.getByLabel(`Amount, level 1, peak ${peak}`, { exact: true });
const peaks = (page, channel) =>
  page.getByRole('list', { name: `Peaks of channel ${channel}` }).getByRole('button');
const sum = (page, name) =>
  page
    .locator('.sums div')
    .filter({ has: page.locator('dt').getByText(name, { exact: true }) })
    .locator('dd');

/** Waits for a number or a text. */
const shows = (locator, text) =>
  locator.and(locator.page().getByText(text, { exact: true })).waitFor();

browserTest('the sum of amounts during typing', { path }, async (page, gc) => {
  await shows(sum(page, 'Sum of all'), '100.05');
  await shows(sum(page, 'Compared with 100'), '0.05 above');
  const methane = amount(page, 2);
  await methane.fill('84.951');
  await button(page, 'Discard and reload…').waitFor();
  await shows(sum(page, 'Compared with 100'), '0.051 above');
  const shifts = await watchShifts(page);
  for (const text of ['8', '84', '84.', '84.9']) {
    await methane.fill(text);
    await peaks(page, 1)
      .and(page.getByLabel(`amount ${Number(text)}`))
      .first()
      .waitFor();
  }
  await shows(sum(page, 'Sum of all'), '100.00');
  await shows(sum(page, 'Compared with 100'), 'exactly that');
  await shows(sum(page, 'Sum of channel 1'), '96.40');
  await methane.fill('0');
  await shows(sum(page, 'Compared with 100'), '84.90 below');
  assert.deepEqual(await shifts(), []);
  await methane.fill('x');
  await shows(sum(page, 'Sum of all'), 'not known yet');
  await shows(sum(page, 'Sum of channel 2'), '3.60');
  assert.deepEqual(await gc.changes(), []);
});

browserTest('sticks and cells lead to each other', { path }, async (page) => {
  const marked = page.locator('.stick.focused');
  const stick = page.getByLabel('neo-Pentane: retention time 50.4, amount 0.05');
  await enter(amount(page, 8), marked.and(stick));
  await page.keyboard.press('Enter');
  await marked.and(page.getByLabel(/^i-Pentane:/)).waitFor();
  await picture(page, 'calibration-sticks');
  // With the mouse: on the stick, and on its name.
  await page
    .getByLabel(/^Methane:/)
    .locator('circle')
    .click();
  await amount(page, 2).and(page.locator(':focus')).waitFor();
  await page.locator('.name').getByText('n-Hexane').click();
  await amount(page, 11).and(page.locator(':focus')).waitFor();
  // With the keyboard: one tab stop for each channel.
  await peaks(page, 1).first().focus();
  for (const key of ['Tab', 'ArrowRight', 'ArrowRight', 'ArrowLeft', 'Enter']) {
    await page.keyboard.press(key);
  }
  await amount(page, 6).and(page.locator(':focus')).waitFor();
});

/** Rectangles of those elements that are visible. */
const boxes = (locator) =>
  locator.evaluateAll((all) =>
    all.map((one) => {
      const { left, right, top, bottom } = one.getBoundingClientRect();
      return { left, right, top, bottom, text: one.textContent };
    }),
  );

for (const [name, context] of Object.entries({ desktop: {}, phone })) {
  const options = { path, scenario: 'four-channel', context };
  browserTest(`names do not overlap, ${name}`, options, async (page) => {
    await enter(amount(page, 399), page.locator('.stick.focused'));
    for (const channel of [1, 2, 3, 4]) {
      const list = page.getByRole('list', {
        name: `Peaks of channel ${channel}`,
      });
      assert.equal(await list.getByRole('button').count(), 100);
      const svg = (await boxes(list))[0];
      const names = await boxes(list.locator('.name'));
      assert.ok(names.length > 8, `${names.length}`);
      for (const [n, one] of names.entries()) {
        const inside = one.left >= svg.left && one.right <= svg.right && one.top >= svg.top;
        assert.ok(inside, one.text);
        for (const other of names.slice(0, n)) {
          const isApart = one.left >= other.right || other.left >= one.right;
          assert.ok(isApart, `${one.text} on ${other.text}`);
        }
      }
    }
    const wide = await page.evaluate(() => document.documentElement.scrollWidth - innerWidth);
    assert.ok(wide <= 0, `${wide} too wide`);
  });
}

browserTest('relative changes before amounts are sent', { path }, async (page, gc) => {
  await amount(page, 2).fill('85.125');
  await amount(page, 7).fill('0');
  await gc.set('mLevelAmt2[4]', 0);
  await button(page, 'Reload').or(button(page, 'Discard and reload…')).first().waitFor();
  await button(page, 'Compare and send…').click();
  const conflict = page.getByRole('dialog');
  await conflict.getByRole('columnheader', { name: 'Relative change' }).waitFor();
  await conflict.getByRole('row', { name: 'neo-Pentane 0.05 → 0 to 0' }).waitFor();
  await button(conflict, 'Keep my table and compare again').click();
  const dialog = page.getByRole('dialog', { name: 'Send the calibration?' });
  for (const row of [
    'Methane 84.95 → 85.125 +0.206 %',
    'n-Butane 0.4 → 0 to 0',
    'neo-Pentane 0 → 0.05 from 0',
  ]) {
    await dialog.getByRole('row', { name: row }).waitFor();
  }
});

const paper = {
  path,
  scenario: 'four-channel',
  context: { viewport: { width: 1400, height: 700 } },
};
browserTest('all channels are printed', paper, async (page) => {
  await peaks(page, 4).first().waitFor();
  await page.emulateMedia({ media: 'print' });
  for (const channel of [1, 2, 3, 4]) {
    const region = page.getByRole('region', {
      name: `Channel ${channel}`,
      exact: true,
    });
    const { clipped } = await region.evaluate((element) => {
      let clipped = 0;
      for (let up = element.parentElement; up; up = up.parentElement) {
        const isCut = getComputedStyle(up).overflowY !== 'visible';
        clipped += isCut && up.scrollHeight > up.clientHeight ? 1 : 0;
      }
      return { clipped };
    });
    assert.equal(clipped, 0);
  }
});

const forced = { path, context: { forcedColors: 'active' } };
browserTest('forced colours show the marked peak by its shape, too', forced, async (page) => {
  await enter(amount(page, 5), page.locator('.stick.focused'));
  const width = (name) =>
    page
      .getByLabel(name)
      .locator('line')
      .evaluate((line) => getComputedStyle(line).strokeWidth);
  await page.locator('.pointer').waitFor();
  assert.equal(await width(/^Propane:/), '5px');
  assert.equal(await width(/^n-Hexane:/), '2px');
});
