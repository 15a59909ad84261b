// The sequence: edited by keyboard, checked, compared, sent, read back; conflicts and files.
import assert from 'node:assert/strict';
import { browserTests, button, describedBy, picture, says } from './support/browser.js';
import { choose, exported, refuses, send } from './support/tables.js';

const browserTest = browserTests();
const path = '#/sequence';
const isSame = 'Sent, read back, and identical.';

const cell = (page, column, line) => page.getByLabel(`${column}, line ${line}`, { exact: true });
const isFocused = (locator) => locator.and(locator.page().locator(':focus')).waitFor();

browserTest('edited by keyboard alone, sent and read back', { path }, async (page, gc) => {
  await cell(page, 'Type', 1).focus();
  const press = async (...keys) => {
    for (const key of keys) {
      await page.keyboard.press(key);
    }
  };
  await press('ArrowRight', '7', 'Enter', '8', 'ArrowDown', '9', 'Shift+Enter');
  await isFocused(cell(page, 'Runs', 2));
  // Line 2 becomes line 3; then its flush time.
  await press('Alt+ArrowDown');
  await isFocused(cell(page, 'Runs', 3));
  await press('ArrowRight', 'ArrowRight', 'ArrowRight');
  await isFocused(cell(page, 'Flush time', 3));
  await press('2', '.', '5', 'ArrowUp');
  await isFocused(cell(page, 'Flush time', 2));
  await button(page, 'Compare and send…').focus();
  await press('Enter');
  const dialog = page.getByRole('dialog', { name: 'Send the sequence?' });
  await dialog.getByRole('row', { name: '~ changed 1 Calibration 2 → 7 4 1 1.5' }).waitFor();
  await isFocused(button(dialog, 'Cancel'));
  await press('Tab', 'Enter');
  await says(page, 'table-message', isSame);
  const parameters = await gc.parameters();
  const stored = ['mRepeat', 'mStream', 'mFlushTime'].map((name) =>
    [1, 2, 3, 4].map((line) => parameters[`${name}[${line}]`]),
  );
  assert.deepEqual(stored, [
    [7, 9, 8, undefined],
    [4, 2, 1, undefined],
    [1.5, 0.5, 2.5, undefined],
  ]);
});

browserTest('an invalid value is not sent', { path }, async (page, gc) => {
  const runs = cell(page, 'Runs', 2);
  for (const [text, problem] of [
    ['many', 'not a whole number'],
    ['1.5', 'not a whole number'],
    ['-1', 'must be at least 0'],
    ['', 'empty'],
  ]) {
    await runs.fill(text);
    assert.equal(await describedBy(runs), problem, text);
    assert.equal(await runs.getAttribute('aria-invalid'), 'true');
    const off = button(page, 'Compare and send…', { disabled: true });
    assert.equal(await describedBy(off), '1 cell is not valid.');
    await off.click({ force: true });
  }
  await cell(page, 'Stream', 1).fill('5');
  await page.getByText('must be at most 4', { exact: true }).waitFor();
  await cell(page, 'Solution', 1).fill('11');
  await page.getByText('must be at most 10', { exact: true }).waitFor();
  await page.getByText('3 cells are not valid.').waitFor();
  await picture(page, 'sequence-problems', 1024);
  assert.equal(await page.getByRole('dialog').count(), 0);
  assert.deepEqual(await gc.changes(), []);
});

browserTest('lines are added, copied, moved and deleted', { path }, async (page, gc) => {
  await button(page, 'Delete line 1').click();
  await button(page, 'Duplicate line 1').click();
  await button(page, 'Add line').click();
  await isFocused(cell(page, 'Type', 4));
  await button(page, 'Move line 4 up').click();
  await page.getByLabel('Runs of the whole table').fill('6');
  await page.getByLabel('Starts again after the last line').check();
  await send(page, 'sequence', async (dialog) => {
    await dialog.getByText('Runs of the whole table: 2 → 6').waitFor();
    await dialog.getByText('Starts again after the last line: no → yes').waitFor();
    await picture(page, 'sequence', 1024);
  });
  await says(page, 'table-message', isSame);
  const { rows, ...header } = JSON.parse(await gc.report('sequence'));
  assert.deepEqual(header, { Table_repeat: 6, Continuous: true, total: 4 });
  assert.deepEqual(
    rows.map(({ Repeat, Stream, Flush_time }) => [Repeat, Stream, Flush_time]),
    [
      [5, 1, 1],
      [5, 1, 1],
      [1, 1, 0],
      [3, 2, 0.5],
    ],
  );
});

browserTest('no more than twenty lines, and no fewer than one', { path }, async (page) => {
  for (let line = 4; line <= 20; line++) {
    await button(page, 'Add line').click();
  }
  await cell(page, 'Runs', 20).waitFor();
  await button(page, 'Add line', { disabled: true }).waitFor();
  await button(page, 'Duplicate line 1', { disabled: true }).waitFor();
  for (let line = 20; line > 1; line--) {
    await button(page, 'Delete line 1').click();
  }
  await button(page, 'Delete line 1', { disabled: true }).waitFor();
});

browserTest('a table that has changed on the instrument', { path }, async (page, gc) => {
  await cell(page, 'Runs', 1).fill('4');
  await gc.set('mRepeat[2]', 9);
  await button(page, 'Compare and send…').click();
  const conflict = page.getByRole('dialog', {
    name: 'The instrument’s table has changed',
  });
  await conflict.getByRole('row', { name: '~ changed 2 Analysis 5 → 9' }).waitFor();
  assert.deepEqual(await gc.changes(), []);
  // The edits are kept, but the table changes again during the review.
  await button(conflict, 'Keep my table and compare again').click();
  const dialog = page.getByRole('dialog', { name: 'Send the sequence?' });
  await dialog.getByRole('row', { name: '~ changed 2 Analysis 9 → 5' }).waitFor();
  await gc.set('mRepeat[3]', 8);
  await button(dialog, 'Send').click();
  await conflict.getByRole('row', { name: '~ changed 3 Analysis 3 → 8' }).waitFor();
  assert.deepEqual(await gc.changes(), []);
  await button(conflict, 'Load the instrument’s table').click();
  await page.getByText('As on the instrument when it was read.').waitFor();
  assert.equal(await cell(page, 'Runs', 1).inputValue(), '2');
  assert.equal(await cell(page, 'Runs', 2).inputValue(), '9');
});

browserTest(
  'a table of which the instrument stores half',
  { path, expected: [/409/] },
  async (page, gc) => {
    await cell(page, 'Runs', 3).fill('4');
    await gc.fault({ kind: 'status', call: 'Write', nth: 2, status: 207 });
    await send(page, 'sequence');
    await says(
      page,
      'table-message',
      /The instrument refused\..*207.*does not have the table as it was sent/,
    );
    await page
      .getByTestId('table-message')
      .getByRole('row', { name: /removed 3/ })
      .waitFor();
    assert.equal(await cell(page, 'Runs', 3).inputValue(), '4');
  },
);

browserTest(
  'a table that the instrument accepts but does not store',
  { path },
  async (page, gc) => {
    await cell(page, 'Runs', 1).fill('4');
    await gc.fault({ kind: 'ignore', times: 0 });
    await send(page, 'sequence');
    await says(
      page,
      'table-message',
      'The instrument accepted the table, but what it has now differs:',
    );
    await page
      .getByTestId('table-message')
      .getByRole('row', { name: '~ changed 1 Calibration 4 → 2' })
      .waitFor();
  },
);

browserTest('no table is sent during a run', { path }, async (page, gc) => {
  await cell(page, 'Runs', 1).waitFor();
  await gc.command(0);
  const off = button(page, 'Compare and send…', { disabled: true });
  // It is off before, too: there is nothing to send.
  await page
    .getByText(/^The instrument accepts tables only while nothing runs\./)
    .first()
    .waitFor({ state: 'attached' });
  assert.match(await describedBy(off), /^The instrument accepts tables only while nothing runs\./);
});

browserTest('edits stay while other pages are shown', { path }, async (page) => {
  await cell(page, 'Runs', 1).fill('4');
  await page.getByRole('link', { name: 'Alarms' }).click();
  await page.getByRole('heading', { name: 'Alarms', level: 1 }).waitFor();
  await page.getByRole('link', { name: 'Sequence' }).click();
  await page.getByText('Changed here, not sent.').waitFor();
  assert.equal(await cell(page, 'Runs', 1).inputValue(), '4');
  await button(page, 'Discard and reload…').click();
  await button(page.getByRole('dialog'), 'Discard and reload').click();
  await page.getByText('As on the instrument when it was read.').waitFor();
  assert.equal(await cell(page, 'Runs', 1).inputValue(), '2');
});

browserTest('export gives the report, and import reads it', { path }, async (page, gc) => {
  const report = JSON.parse(await gc.report('sequence'));
  const { name, text } = await exported(page);
  assert.equal(name, 'sequence.json');
  assert.deepEqual(JSON.parse(text), report);
  await button(page, 'Delete line 2').click();
  await choose(page, 'mine.json', text);
  await button(
    page.getByRole('dialog', { name: 'Replace the changes made here?' }),
    'Replace',
  ).click();
  await says(page, 'table-message', 'mine.json was read. Nothing has been sent yet.');
  await page.getByText('As on the instrument when it was read.').waitFor();
  const shorter = {
    ...report,
    Table_repeat: 9,
    rows: report.rows.slice(1),
    total: 2,
  };
  await choose(page, 'other.json', JSON.stringify(shorter));
  await send(page, 'sequence');
  await says(page, 'table-message', isSame);
  assert.deepEqual(JSON.parse(await gc.report('sequence')), shorter);
});

browserTest('files that are not a sequence', { path }, async (page) => {
  await refuses(
    page,
    'a.json',
    '{\n  "total": 1\n  "rows": []\n}',
    'a.json was not read. It is not JSON. Line 3, column 3: a comma or } is expected.',
  );
  await refuses(page, 'b.json', '{"total": 0}', 'Table_repeat: is missing');
  const line = {
    Type: 'Analysis',
    Repeat: 1,
    Stream: 1,
    Slot: 0,
    Flush_time: 0,
  };
  const long = { Table_repeat: 1, total: 21, rows: Array(21).fill(line) };
  await refuses(page, 'c.json', JSON.stringify(long), '21 lines');
  const wrong = {
    Table_repeat: 1,
    total: 3,
    rows: [line, line, { ...line, Stream: '2' }],
  };
  await refuses(page, 'e.json', JSON.stringify(wrong), 'row 3, Stream: must be a whole number.');
  const short = { Table_repeat: 1, total: 5, rows: [line, line, line] };
  await refuses(page, 'f.json', JSON.stringify(short), '"total" is 5, but there are 3 rows.');
  await refuses(page, 'd.json', ' '.repeat(65537), '65537 octets; the gateway accepts 65536');
});
