// The calibration: amounts are sent, and every peak is still there afterwards.
import assert from 'node:assert/strict';
import { browserTests, button, picture, says } from './support/browser.js';
import { choose, exported, refuses, send } from './support/tables.js';

const browserTest = browserTests();
const path = '#/calibration';
const isSame = 'Sent, read back, and identical.';
// Peaks of channel 1, then those of channel 2.
const amounts = [4, 84.95, 1.5, 6, 2.5, 0.4, 0.4, 0.05, 0.1, 0.1, 0.05];

const amount = (page, peak) => page.getByLabel(`Amount, level 1, peak ${peak}`, { exact: true });

async function stored(gc) {
  const { total, rows } = JSON.parse(await gc.report('calibration'));
  assert.deepEqual([total, rows.length], [11, 11]);
  return rows.map(({ Level_amt }) => Level_amt);
}

browserTest('amounts are sent, and every peak is still there', { path }, async (page, gc) => {
  const before = JSON.parse(await gc.report('calibration')).rows;
  await amount(page, 2).fill('85.125');
  await amount(page, 10).fill('0');
  await send(page, 'calibration', async (dialog) => {
    await dialog.getByText('The instrument clears all amounts first.').waitFor();
    await dialog.getByRole('row', { name: '~ changed 2 1 2 Methane 84.95 → 85.125' }).waitFor();
    await dialog.getByRole('row', { name: '~ changed 10 2 6 n-Pentane 0.1 → 0' }).waitFor();
    assert.equal(await dialog.getByRole('row').count(), 3);
  });
  await says(page, 'table-message', isSame);
  await picture(page, 'calibration', 1024);
  const expected = before.map((row) => ({ ...row }));
  expected[1].Level_amt = 85.125;
  expected[9].Level_amt = 0;
  assert.deepEqual(JSON.parse(await gc.report('calibration')).rows, expected);
  assert.equal((await gc.parameters())['mLevelAmt1[2]'], 85.125);
});

browserTest('a table that is sent unchanged', { path }, async (page, gc) => {
  await send(page, 'calibration', (dialog) =>
    dialog.getByText('The instrument already has this table.').waitFor(),
  );
  await says(page, 'table-message', isSame);
  assert.deepEqual(await stored(gc), amounts);
});

browserTest('invalid amounts are not sent', { path }, async (page, gc) => {
  for (const text of ['-', 'x', '', '1e', '-0.5', '1,234.5']) {
    await amount(page, 3).fill(text);
    await button(page, 'Compare and send…', { disabled: true }).waitFor();
    await page.getByText('1 cell is not valid.').waitFor();
  }
  assert.deepEqual(await gc.changes(), []);
});

browserTest('a comma is read as a point', { path }, async (page, gc) => {
  await amount(page, 3).fill('1,25');
  await send(page, 'calibration', (dialog) =>
    dialog.getByRole('row', { name: '~ changed 3 1 3 Carbon dioxide 1.5 → 1.25' }).waitFor(),
  );
  await says(page, 'table-message', isSame);
  assert.equal((await stored(gc))[2], 1.25);
});

browserTest('peaks cannot be added, moved or deleted', { path }, async (page) => {
  await amount(page, 1).waitFor();
  for (const name of [/^Add/, /^Delete/, /^Move/, /^Duplicate/]) {
    assert.equal(await page.getByRole('button', { name }).count(), 0);
  }
  assert.equal(await page.getByRole('textbox').count(), 11);
});

browserTest('amounts that have changed on the instrument', { path }, async (page, gc) => {
  await amount(page, 1).fill('5');
  await gc.set('mLevelAmt2[1]', 2.75);
  await button(page, 'Compare and send…').click();
  const conflict = page.getByRole('dialog', {
    name: 'The instrument’s table has changed',
  });
  await conflict.getByRole('row', { name: '~ changed 5 2 1 Propane 2.5 → 2.75' }).waitFor();
  await page.keyboard.press('Escape');
  await conflict.waitFor({ state: 'detached' });
  assert.deepEqual(await gc.changes(), []);
  assert.equal(await amount(page, 1).inputValue(), '5');
});

browserTest('export gives the report, and import reads it', { path }, async (page, gc) => {
  const report = JSON.parse(await gc.report('calibration'));
  const { name, text } = await exported(page);
  assert.equal(name, 'calibration.json');
  assert.deepEqual(JSON.parse(text), report);
  // A file with one peak: the others keep their amounts.
  const rows = [{ Channel: 2, ID: 3, Level_amt: 0.45 }];
  await choose(page, 'one.json', JSON.stringify({ total: 1, rows }));
  await send(page, 'calibration', async (dialog) =>
    assert.equal(await dialog.getByRole('row').count(), 2),
  );
  await says(page, 'table-message', isSame);
  assert.deepEqual(await stored(gc), [...amounts.slice(0, 6), 0.45, ...amounts.slice(7)]);
});

browserTest('files that are not a calibration of this instrument', { path }, async (page) => {
  const file = (row) => JSON.stringify({ total: 1, rows: [row] });
  await refuses(page, 'a.json', file({ Channel: 3, ID: 1, Level_amt: 1 }), 'no peak 3/1');
  await refuses(
    page,
    'b.json',
    file({ Channel: 1, ID: 1, Level_amt: 'x' }),
    'row 1, Level_amt: must be',
  );
});
