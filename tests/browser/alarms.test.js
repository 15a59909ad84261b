// Alarms: shown everywhere, reset after a question, and reported when they come back.
import assert from 'node:assert/strict';
import { browserTests, button, describedBy, picture, says } from './support/browser.js';

const browserTest = browserTests();
const path = '#/alarms';

// Above 55 degrees, the alarm for the ambient temperature is active.
async function heat(page, gc) {
  await gc.set('mAmbientTemp', 60);
  await gc.control('step', 1);
  await says(page, 'alarm-sign', /^Alarm$/);
}

async function reset(page) {
  await button(page, 'Reset all alarms…').click();
  const dialog = page.getByRole('dialog', { name: 'Reset all alarms?' });
  await dialog.getByRole('listitem').waitFor();
  assert.equal(await dialog.getByRole('listitem').count(), 1);
  return dialog;
}

browserTest('an alarm that is reset', { path }, async (page, gc) => {
  const off = button(page, 'Reset all alarms…', { disabled: true });
  await page.getByRole('region', { name: 'Not active (5)' }).waitFor();
  assert.equal(await describedBy(off), 'No alarm is active.');
  await heat(page, gc);
  const active = page.getByRole('region', { name: 'Active (1)', exact: true });
  await active
    .getByRole('row', {
      name: 'active 8. GC Status 2. Cabinet Temperature All',
    })
    .waitFor();

  await button(await reset(page), 'Cancel').click();
  assert.deepEqual(await gc.changes(), []);
  await button(await reset(page), 'Reset').click();
  await says(page, 'notice', 'Still active, because the cause persists: GC Status: Cabinet Temp');
  await picture(page, 'alarms', 1024);

  await gc.set('mAmbientTemp', 23);
  await button(await reset(page), 'Reset').click();
  await says(page, 'notice', 'Reset of all alarms: no alarm is active.');
  await says(page, 'alarm-sign', 'No alarm');
  await page.getByRole('region', { name: 'Active (0)', exact: true }).waitFor();
  const commands = (await gc.changes()).map(({ command }) => command);
  assert.deepEqual(commands, [35, 35]);
  // A notice is removed as soon as it is no longer true.
  await heat(page, gc);
  await page.getByText('no alarm is active').waitFor({ state: 'detached' });
});

browserTest('an alarm is visible on every page', { path: '#/configuration' }, async (page, gc) => {
  await heat(page, gc);
  await page.getByTestId('alarm-sign').click();
  await page.getByRole('heading', { name: 'Alarms', level: 1 }).waitFor();
  await page.getByRole('link', { name: 'Wall' }).click();
  await says(page, 'alarm-sign', /^Alarm$/);
});

browserTest('no alarms at all', { path, scenario: 'bare' }, async (page) => {
  await page.getByText('No alarm is defined, or alarms are switched off.').waitFor();
});
