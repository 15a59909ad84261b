// A command with an unknown outcome is shown until a user acknowledges it.
import assert from 'node:assert/strict';
import { browserTests, button } from './support/browser.js';

const browserTest = browserTests();

// The gateway ends before the instrument answers; the answer is lost with it.
const expected = [/status of 50\d/, /ERR_EMPTY_RESPONSE/];

browserTest('an interrupted command', { path: '#/run', expected }, async (page, gc) => {
  await gc.fault({ kind: 'delay', call: 'Command', seconds: 1 });
  await button(page, 'Start single run…').click();
  await button(page.getByRole('dialog'), 'Start').click();
  let commands = [];
  while (commands.length === 0) {
    commands = (await gc.changes()).filter(({ call }) => call === 'Command');
  }
  await gc.tell('kill-gateway');
  const shown = page.getByTestId('interruptions');
  await shown
    .getByText(/^Single run on stream 1, given by operator on .*, was interrupted/)
    .waitFor();
  // Every other page for the instrument shows it, too.
  const other = await page.context().newPage();
  await other.goto('/#/status');
  await other.getByTestId('interruptions').getByText('was interrupted').waitFor();
  await button(other, 'I have seen it').click();
  await shown.getByText('was interrupted').waitFor({ state: 'detached' });
  await other.getByText('was interrupted').waitFor({ state: 'detached' });
  assert.equal(await shown.textContent(), '');
});
