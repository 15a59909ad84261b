// Runs, automation, stream and solution: started, followed to their effect, stopped, and refused.
import assert from 'node:assert/strict';
import { browserTests, button, describedBy, picture, says } from './support/browser.js';

const browserTest = browserTests();
const path = '#/run';

const progress = (page, text) =>
  page
    .getByRole('progressbar', { name: 'Run' })
    .and(page.locator(`[aria-valuetext="${text}"]`))
    .waitFor();

async function confirm(page, action, question, answer) {
  await button(page, action).click();
  const dialog = page.getByRole('dialog', { name: question, exact: true });
  await dialog.waitFor();
  await button(dialog, answer).click();
  await dialog.waitFor({ state: 'detached' });
}

browserTest('a single run, and its end', { path }, async (page, gc) => {
  await page.getByLabel('On stream', { exact: true }).selectOption('2');
  await button(page, 'Start single run…').click();
  const dialog = page.getByRole('dialog', { name: 'Start a single run?' });
  await dialog.getByText('One analysis on stream 2, 3 min 00 s.').waitFor();
  await button(dialog, 'Cancel').click();
  assert.deepEqual(await gc.changes(), []);
  await confirm(page, 'Start single run…', 'Start a single run?', 'Start');
  await says(page, 'notice', 'Single run on stream 2: the run has begun.');
  await says(page, 'state', 'Running');
  await says(page, 'stream', /^2$/);
  await progress(page, '0 s of 3 min 00 s');
  await gc.control('step', 37);
  await progress(page, '37 s of 3 min 00 s');
  await gc.control('step', 143);
  await says(page, 'state', 'Ready');
  await page.getByText('no run', { exact: true }).waitFor();
  await says(page, 'notice', /Run 1285 ended at \d\d:\d\d after 3 min 00 s, stream 2\./);
  assert.equal(await page.getByText('the run has begun').count(), 0);
});

browserTest('signing in beforehand', {}, async (page, gc) => {
  await button(page, 'Sign in').click();
  await says(page, 'notice', 'Signed in until the browser is closed.');
  assert.equal(await button(page, 'Sign in').count(), 0);
  assert.deepEqual(await gc.changes(), []);
});

browserTest('a run that is aborted', { path }, async (page, gc) => {
  await confirm(page, 'Start calibration…', 'Start a calibration?', 'Start');
  await says(page, 'notice', 'Calibration on stream 1: the calibration has begun');
  await gc.control('step', 10);
  await confirm(page, 'Abort now…', 'Abort now?', 'Cancel');
  await progress(page, '10 s of 3 min 00 s');
  await confirm(page, 'Abort now…', 'Abort now?', 'Abort now');
  await says(page, 'notice', 'Abort now: the run was aborted at 10 s.');
  await says(page, 'state', /Ready|Stabilizing/);
  assert.equal(await page.getByText('the calibration has begun').count(), 0);
  const commands = (await gc.changes()).map(({ command }) => command);
  assert.deepEqual(commands.slice(-2), [1, 17]);
});

browserTest('the automation, until its run has ended', { path }, async (page, gc) => {
  await button(page, 'Start automation…').click();
  const dialog = page.getByRole('dialog', { name: 'Start the automation?' });
  await dialog.getByText('The table is run 2 times.').waitFor();
  await dialog.getByRole('row', { name: '1 Calibration 2 4 1 1.50' }).waitFor();
  assert.equal(await dialog.getByRole('row').count(), 4);
  await picture(page, 'run-question', 1024);
  await button(dialog, 'Start').click();
  await says(page, 'notice', 'Automation: the automation has begun.');
  await gc.control('step', 95);
  await progress(page, '5 s of 3 min 00 s');
  await button(page, 'Stop after this run').click();
  await says(page, 'notice', 'Stop after this run: accepted. Waiting for the present run to end');
  await gc.control('step', 70);
  await progress(page, '1 min 15 s of 3 min 00 s');
  await picture(page, 'run');
  await gc.control('step', 105);
  await says(page, 'notice', 'Stop after this run: ended after run 1285.');
  await says(page, 'automation', 'Idle');
});

browserTest('switching the stream', { path }, async (page, gc) => {
  await page.getByLabel('Stream', { exact: true }).selectOption('3');
  await button(page, 'Switch').click();
  await says(page, 'notice', 'Stream 3: the current stream is 3');
  await says(page, 'stream', /^3$/);
  assert.equal((await gc.parameters()).mCurrentStream, 3);
});

browserTest('loading a solution', { path }, async (page, gc) => {
  await page.getByLabel('Slot', { exact: true }).selectOption('4');
  await confirm(page, 'Load…', 'Load solution 4?', 'Load');
  await says(page, 'notice', 'Solution 4: accepted. No report tells whether it is in use already.');
  await says(page, 'state', 'Not Ready');
  await gc.control('step', 61);
  await says(page, 'state', /^Ready/);
});

// A late effect is reported with the limit in seconds.
/** @type {[string, (page: import('playwright-core').Page) => Promise<void>, number, string][]} */
const late = [
  [
    'run',
    (page) => confirm(page, 'Start single run…', 'Start a single run?', 'Start'),
    30,
    'Single run on stream 1: accepted, but the run has not begun within 30 s',
  ],
  [
    'automation',
    (page) => confirm(page, 'Start automation…', 'Start the automation?', 'Start'),
    30,
    'Automation: accepted, but the automation has not begun within 30 s',
  ],
  [
    'stream',
    async (page) => {
      await page.getByLabel('Stream', { exact: true }).selectOption('4');
      await button(page, 'Switch').click();
    },
    60,
    'Stream 4: accepted, but the current stream is not 4 within 60 s',
  ],
];
for (const [name, act, seconds, said] of late) {
  browserTest(
    `${name}: an effect that does not come`,
    { path, isClockOurs: true },
    async (page, gc) => {
      await gc.fault({ kind: 'ignore', times: 0 });
      await act(page);
      await says(page, 'notice', /accepted\. Waiting for/);
      await page.clock.fastForward((seconds + 1) * 1000);
      await says(page, 'notice', said);
    },
  );
}

browserTest('a state that changes during the question', { path }, async (page, gc) => {
  await button(page, 'Start single run…').click();
  const dialog = page.getByRole('dialog');
  await button(dialog, 'Start', { disabled: false }).waitFor();
  await gc.command(0);
  const off = button(dialog, 'Start', { disabled: true });
  await off.waitFor();
  assert.match(
    await describedBy(off),
    /^A run starts only from Ready\. The automation is: Running/,
  );
  await off.click({ force: true });
  assert.deepEqual(await gc.changes(), []);
  await dialog.waitFor();
});

browserTest('an abort does not wait for another command', { path }, async (page, gc) => {
  const held = new Promise((resolve) => page.route('**/api/command/run', resolve));
  await confirm(page, 'Start single run…', 'Start a single run?', 'Start');
  const route = await held;
  await says(page, 'notice', 'Single run on stream 1: being sent.');
  await gc.command(0);
  await says(page, 'state', 'Running');
  await button(page, 'Stop after this run', { disabled: false }).waitFor();
  await confirm(page, 'Abort now…', 'Abort now?', 'Abort now');
  await says(page, 'notice', 'Abort now: the run was aborted at 0 s.');
  await button(page, 'Switch', { disabled: true }).waitFor();
  await route.fulfill({ status: 204 });
  await button(page, 'Switch', { disabled: false }).waitFor();
  await says(page, 'notice', 'Abort now: the run was aborted at 0 s.');
});

browserTest('a password dialog', { path, isClockOurs: true }, async (page) => {
  await page.route('**/api/command/stream', () => {});
  await button(page, 'Switch').click();
  await says(page, 'notice', 'Stream 1: being sent.');
  await page.clock.fastForward(3_000);
  await says(page, 'notice', 'no answer yet. If the browser asks who you are, sign in there.');
  await page.unrouteAll({ behavior: 'ignoreErrors' });
});

const expected = [/409/];
browserTest('a refusal', { path, expected }, async (page, gc) => {
  await gc.fault({ kind: 'status', call: 'Command', status: 207 });
  await confirm(page, 'Start single run…', 'Start a single run?', 'Start');
  await says(
    page,
    'notice',
    'The instrument refused. The instrument does not accept this in its present state (error 207).',
  );
  await button(page, 'Dismiss').click();
  await page.getByText('error 207').waitFor({ state: 'detached' });
});

browserTest('a stream switch that is refused', { path, expected }, async (page, gc) => {
  await gc.fault({ kind: 'status', call: 'Write', status: 207 });
  await button(page, 'Switch').click();
  await says(
    page,
    'notice',
    /Stream 1: The instrument refused\. The instrument does not accept this .*\(error 207\)/,
  );
});

browserTest('what a run forbids', { path }, async (page, gc) => {
  await gc.command(0);
  await says(page, 'state', 'Running');
  const forbidden = [
    'Start single run…',
    'Start calibration…',
    'Start automation…',
    'Switch',
    'Load…',
  ];
  for (const name of forbidden) {
    const off = button(page, name, { disabled: true });
    assert.match(
      await describedBy(off),
      /only .*\. The automation is: Running - Single Run\.$/,
      name,
    );
    await off.click({ force: true });
  }
  assert.equal(await page.getByRole('dialog').count(), 0);
  await button(page, 'Stop after this run', { disabled: false }).waitFor();
  await button(page, 'Abort now…', { disabled: false }).waitFor();
  assert.deepEqual(await gc.changes(), []);
});

browserTest('an instrument in error', { path, scenario: 'error' }, async (page) => {
  await page.locator('[data-testid=state].error').waitFor();
  await button(page, 'Start single run…', { disabled: true }).waitFor();
  await button(page, 'Abort now…', { disabled: false }).waitFor();
  await page.getByRole('link', { name: 'Status' }).click();
  await page
    .getByRole('region', { name: 'Instrument' })
    .getByText(/^\d+: ./)
    .waitFor();
});
