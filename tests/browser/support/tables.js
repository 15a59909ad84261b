// What the tests of both tables do alike.
import assert from 'node:assert/strict';
import { readFile } from 'node:fs/promises';
import { button, says } from './browser.js';

/**
 * Compares with the instrument, looks at the dialog, and sends.
 * @param {import('playwright-core').Page} page
 * @param {string} kind
 * @param {(dialog: import('playwright-core').Locator) => Promise<unknown>} look
 */
export async function send(page, kind, look = async () => {}) {
  await button(page, 'Compare and send…').click();
  const dialog = page.getByRole('dialog', { name: `Send the ${kind}?`, exact: true });
  await dialog.waitFor();
  await look(dialog);
  await button(dialog, 'Send').click();
}

/** What `Export` gives, under its name. */
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
  await chooser.setFiles({ name, mimeType: 'application/json', buffer: Buffer.from(contents) });
}

/** A file that is no table, or not this instrument's, says why and changes nothing. */
export async function refuses(page, name, contents, reason) {
  await choose(page, name, contents);
  await says(page, 'table-message', reason);
  await page.getByText('As on the instrument when it was read.').waitFor();
  assert.equal(await button(page, 'Reload').count(), 1);
}
