// A server without passwords: all users can read everything, and nobody can act.
import assert from 'node:assert/strict';
import { browserTests, button, says } from './support/browser.js';
import { send } from './support/tables.js';

const browserTest = browserTests('--no-passwords');
const expected = [/403/];
const refusal =
  'You are not allowed to do this. Nothing was done. Forbidden: Commands are off until a password is set (gc-web-password).';

browserTest('signing in', { expected }, async (page) => {
  await button(page, 'Sign in').click();
  await says(page, 'notice', `Sign in: ${refusal}`);
  await button(page, 'Sign in').waitFor();
});

browserTest('an action', { path: '#/run', expected }, async (page, gc) => {
  await button(page, 'Start single run…').click();
  await button(page.getByRole('dialog'), 'Start').click();
  await says(page, 'notice', `Single run on stream 1: ${refusal}`);
  assert.deepEqual(await gc.changes(), []);
});

browserTest('a table', { path: '#/sequence', expected }, async (page, gc) => {
  await page.getByLabel('Runs, line 1').fill('4');
  await send(page, 'sequence');
  await says(page, 'table-message', refusal);
  assert.deepEqual(await gc.changes(), []);
  // The edits are not lost.
  assert.equal(await page.getByLabel('Runs, line 1').inputValue(), '4');
});
