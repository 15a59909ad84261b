// No work is lost: undo, unsent edits, tables that were refused halfway, earlier tables.
import assert from 'node:assert/strict';
import { browserTests, button, picture, says } from './support/browser.js';
import { choose, send } from './support/tables.js';

const browserTest = browserTests();
const path = '#/sequence';

const cell = (page, column, line) => page.getByLabel(`${column}, line ${line}`, { exact: true });
const isFocused = (locator) => locator.and(locator.page().locator(':focus')).waitFor();
const runs = async (page) =>
  page
    .getByLabel(/^Runs, line \d+$/)
    .evaluateAll((cells) => cells.map((one) => /** @type {HTMLInputElement} */ (one).value));
const isMarked = (page, name) =>
  page.getByRole('link', { name: `${name} (changes not sent)` }).waitFor();

browserTest('undo goes back through all steps, in order', { path }, async (page) => {
  await cell(page, 'Runs', 1).click();
  await page.keyboard.type('42');
  await page.keyboard.press('Enter');
  await page.keyboard.type('7');
  await button(page, 'Delete line 1').click();
  await button(page, 'Move line 1 down').click();
  await button(page, 'Duplicate line 2').click();
  assert.deepEqual(await runs(page), ['3', '7', '7']);

  const undo = async (said, expected) => {
    await page.keyboard.press('Control+z');
    await says(page, 'table-state', `Undone: ${said}.`);
    assert.deepEqual(await runs(page), expected, said);
  };
  await undo('duplicate of line 2', ['3', '7']);
  await undo('move of line 1 down', ['7', '3']);
  await undo('deletion of line 1', ['42', '7', '3']);
  await isFocused(cell(page, 'Type', 1));
  await undo('Runs, line 2', ['42', '5', '3']);
  await isFocused(cell(page, 'Runs', 2));
  await undo('Runs, line 1', ['2', '5', '3']);
  await isFocused(cell(page, 'Runs', 1));
  await page.getByText('As on the instrument when it was read.').waitFor();
  await page.keyboard.press('Control+z');
  assert.deepEqual(await runs(page), ['2', '5', '3']);

  for (const keys of ['Control+y', 'Control+Shift+z', 'Control+y']) {
    await page.keyboard.press(keys);
  }
  await says(page, 'table-state', 'Redone: deletion of line 1.');
  assert.deepEqual(await runs(page), ['7', '3']);
  await button(page, 'Undo').click();
  await says(page, 'table-state', 'Undone: deletion of line 1.');
  await button(page, 'Redo').click();
  await says(page, 'table-state', 'Redone: deletion of line 1.');
  assert.deepEqual(await runs(page), ['7', '3']);
});

browserTest('an import over edits asks first, and can be undone', { path }, async (page) => {
  const line = {
    Type: 'Blank',
    Repeat: 9,
    Stream: 1,
    Slot: 0,
    Flush_time: 0,
  };
  const file = JSON.stringify({ Table_repeat: 1, total: 1, rows: [line] });
  await cell(page, 'Runs', 1).fill('4');
  await choose(page, 'mine.json', file);
  const dialog = page.getByRole('dialog', {
    name: 'Replace the changes made here?',
  });
  await dialog.getByRole('row', { name: '~ changed 1 Calibration 2 → 4' }).waitFor();
  await button(dialog, 'Cancel').click();
  assert.deepEqual(await runs(page), ['4', '5', '3']);
  await choose(page, 'mine.json', file);
  await button(dialog, 'Replace').click();
  await says(page, 'table-message', 'mine.json was read. Nothing has been sent yet.');
  assert.deepEqual(await runs(page), ['9']);
  await page.keyboard.press('Control+z');
  await says(page, 'table-state', 'Undone: import of mine.json.');
  assert.deepEqual(await runs(page), ['4', '5', '3']);
  await page.getByText('mine.json was read.').waitFor({ state: 'detached' });
});

browserTest('edits survive a reload of the page', { path, leaves: true }, async (page, gc) => {
  await page.getByText('Read at').waitFor();
  assert.equal(await page.getByRole('link', { name: 'changes not sent' }).count(), 0);
  await cell(page, 'Runs', 2).fill('8');
  await isMarked(page, 'Sequence');
  await page.reload();
  await says(page, 'table-message', 'are still here. They have not been sent.');
  assert.deepEqual(await runs(page), ['2', '8', '3']);
  // They are also found after another page was shown first.
  await page.goto('/#/run');
  await page.reload();
  await isMarked(page, 'Sequence');
  await button(page, 'Start automation…').click();
  const start = page.getByRole('dialog', { name: 'Start the automation?' });
  await start.getByText('The sequence has changes here that have not been sent.').waitFor();
  await start.getByRole('row', { name: '2 Analysis 5 1' }).waitFor();
  await button(start, 'Cancel').click();
  // Changes made on the instrument meanwhile are still noticed.
  await gc.set('mRepeat[3]', 6);
  await page.goto('/#/sequence');
  assert.deepEqual(await runs(page), ['2', '8', '3']);
  await button(page, 'Compare and send…').click();
  const conflict = page.getByRole('dialog', {
    name: 'The instrument’s table has changed',
  });
  await conflict.getByRole('row', { name: '~ changed 3 Analysis 3 → 6' }).waitFor();
  await button(conflict, 'Keep my table and compare again').click();
  await button(page.getByRole('dialog', { name: 'Send the sequence?' }), 'Send').click();
  await says(page, 'table-message', 'Sent, read back, and identical.');
  assert.equal(await page.getByRole('link', { name: 'changes not sent' }).count(), 0);
  await page.reload();
  await page.getByText('As on the instrument when it was read.').waitFor();
  assert.deepEqual(await runs(page), ['2', '8', '3']);
});

browserTest(
  'edits are not shown for another instrument',
  { path, leaves: true },
  async (page, gc) => {
    await cell(page, 'Runs', 2).fill('8');
    await isMarked(page, 'Sequence');
    // The same scenario with another serial number: another instrument of the same name.
    await gc.set('mInstSerial', 7);
    await page.reload();
    await page.getByText('As on the instrument when it was read.').waitFor();
    assert.deepEqual(await runs(page), ['2', '5', '3']);
    await gc.set('mInstSerial', 120033);
    await page.reload();
    await page.getByText('Changed here, not sent.').waitFor();
    assert.deepEqual(await runs(page), ['2', '8', '3']);
  },
);

browserTest(
  'edit, refusal halfway, restore',
  { path, leaves: true, expected: [/409/] },
  async (page, gc) => {
    const before = await gc.report('sequence');
    await cell(page, 'Runs', 3).fill('4');
    await button(page, 'Duplicate line 3').click();
    await gc.fault({ kind: 'status', call: 'Write', nth: 3, status: 207 });
    await send(page, 'sequence', (dialog) =>
      dialog.getByText('If it refuses a line, the lines before it are stored').waitFor(),
    );
    await says(
      page,
      'table-message',
      /The instrument refused\..*does not have the table as it was/,
    );
    assert.notEqual(await gc.report('sequence'), before);
    await picture(page, 'refused-halfway', 1024);
    // A reload of the page loses nothing of it.
    await page.reload();
    await page.getByText('A table was not taken as a whole').waitFor();
    assert.deepEqual(await runs(page), ['2', '5', '4', '4']);
    await button(page, 'Restore the previous table…').click();
    const dialog = page.getByRole('dialog', { name: 'Restore the sequence?' });
    await dialog.getByRole('row', { name: '+ added 3 Analysis 3 2' }).waitFor();
    await dialog.getByText('The changes made here are kept, and not sent.').waitFor();
    await picture(page, 'restore', 1024);
    await button(dialog, 'Restore').click();
    await says(page, 'table-message', 'The previous table is on the instrument again');
    assert.equal(await gc.report('sequence'), before);
    await page.getByText('A table was not taken as a whole').waitFor({ state: 'detached' });
    // The edits are still there to be corrected and sent.
    await page.getByText('Changed here, not sent.').waitFor();
    assert.deepEqual(await runs(page), ['2', '5', '4', '4']);
    await send(page, 'sequence');
    await says(page, 'table-message', 'Sent, read back, and identical.');
    await picture(page, 'restored', 1024);
  },
);

browserTest(
  'a calibration that was refused halfway',
  { path: '#/calibration', expected: [/409/] },
  async (page, gc) => {
    const before = JSON.parse(await gc.report('calibration'));
    await page.getByLabel('Amount, level 1, peak 2', { exact: true }).fill('85');
    await gc.fault({ kind: 'status', call: 'Write', nth: 6, status: 207 });
    await send(page, 'calibration');
    await says(page, 'table-message', '(error 207) at channel 2, peak 2.');
    await button(page, 'Restore the previous table…').click();
    await button(page.getByRole('dialog', { name: 'Restore the calibration?' }), 'Restore').click();
    await says(page, 'table-message', 'The previous table is on the instrument again');
    assert.deepEqual(JSON.parse(await gc.report('calibration')), before);
  },
);

browserTest('earlier tables', { path, expected: [/404/] }, async (page, gc) => {
  const first = JSON.parse(await gc.report('sequence'));
  for (const count of ['11', '12']) {
    await cell(page, 'Runs', 1).fill(count);
    await send(page, 'sequence');
    await says(page, 'table-message', 'Sent, read back, and identical.');
  }
  await button(page, 'Earlier tables…').click();
  const dialog = page.getByRole('dialog', { name: 'Earlier tables: sequence' });
  const row = dialog.getByRole('row').filter({ hasText: 'by operator' });
  await row.nth(1).getByText('1 changed').click();
  await row.nth(1).getByRole('row', { name: '~ changed 1 Calibration 12 → 2' }).waitFor();
  await picture(page, 'earlier', 1024);
  await row.nth(1).getByRole('button', { name: 'Load into the editor' }).click();
  await says(page, 'table-message', 'is in the editor. Nothing has been sent yet.');
  assert.deepEqual(
    await runs(page),
    first.rows.map(({ Repeat }) => String(Repeat)),
  );
  await isMarked(page, 'Sequence');
  await page.keyboard.press('Control+z');
  assert.equal(await cell(page, 'Runs', 1).inputValue(), '12');
});

browserTest('the list of faults leads to the cells', { path }, async (page) => {
  await cell(page, 'Flush time', 2).fill('x');
  await page.getByLabel('Runs of the whole table').fill('-1');
  const summary = page.getByRole('region', { name: 'Not right (2)' });
  await summary.getByRole('button', { name: 'Flush time, line 2: not a number' }).click();
  await isFocused(cell(page, 'Flush time', 2));
  await button(page, 'Show errors').click();
  await isFocused(page.getByLabel('Runs of the whole table'));
  await cell(page, 'Flush time', 2).fill('1,25');
  await page.getByLabel('Runs of the whole table').fill('1');
  assert.equal(await cell(page, 'Flush time', 2).inputValue(), '1.25');
  await summary.waitFor({ state: 'detached' });
});
