// What the tests of both tables have in common.
import assert from 'node:assert/strict';
import { readFile } from 'node:fs/promises';
import { button, says } from './browser.js';

/**
 * Compares with the instrument, checks the dialog, and sends.
 * @param {import('playwright-core').Page} page
 * @param {string} kind
 * @param {(dialog: import('playwright-core').Locator) => Promise<unknown>} look
 */
export async function send(page, kind, look = async () => {}) {
  await button(page, 'Compare and send…').click();
  const dialog = page.getByRole('dialog', {
    name: `Send the ${kind}?`,
    exact: true,
  });
  await dialog.waitFor();
  await look(dialog);
  await button(dialog, 'Send').click();
}

/** The file that `Export` saves, and its name. */
export async function exported(page) {
  const [download] = await Promise.all([
    page.waitForEvent('download'),
    button(page, 'Export').click(),
  ]);
  return {
    name: download.suggestedFilename(),
    text: await readFile(await download.path(), 'utf8'),
  };
}

export async function choose(page, name, contents) {
  const [chooser] = await Promise.all([
    page.waitForEvent('filechooser'),
    button(page, 'Import…').click(),
  ]);
  await chooser.setFiles({
    name,
    mimeType: 'application/json',
    buffer: Buffer.from(contents),
  });
}

/** A file that is not a table of this instrument is refused with a reason and changes nothing. */
export async function refuses(page, name, contents, reason) {
  await choose(page, name, contents);
  await says(page, 'table-message', reason);
  await page.getByText('As on the instrument when it was read.').waitFor();
  assert.equal(await button(page, 'Reload').count(), 1);
}

/**
 * Puts the cursor into a cell, until `mark` shows it: the table is read again when the instrument becomes
 * known, a moment after the page was opened, and the cursor is lost then.
 */
export async function enter(cell, mark) {
  for (let attempt = 0; attempt < 10; attempt++) {
    await cell.focus();
    const isMarked = await mark.waitFor({ timeout: 2000 }).then(
      () => true,
      () => false,
    );
    if (isMarked) {
      return;
    }
  }
  assert.fail('the cursor does not stay in the cell');
}
