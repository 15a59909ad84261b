// What the pages say when something goes wrong or is done from elsewhere.
import assert from 'node:assert/strict';
import { browserTests, button, describedBy, picture, says } from './support/browser.js';

const browserTest = browserTests();
const path = '#/run';
const unreachable = [/503/];

async function startRun(page) {
  await button(page, 'Start single run…').click();
  await button(page.getByRole('dialog'), 'Start').click();
}

async function abort(page, question) {
  await button(page, 'Abort now…').click();
  const dialog = page.getByRole('dialog', { name: 'Abort now?' });
  await dialog.getByText(question).waitFor();
  await button(dialog, 'Abort now').click();
}

browserTest(
  'start, loss of contact, abort, recovery',
  { path, isClockOurs: true, expected: [/50\d/] },
  async (page, gc) => {
    await startRun(page);
    await says(page, 'notice', 'Single run on stream 1: the run has begun.');
    await gc.control('step', 20);
    await page.clock.fastForward(1_000);
    await says(page, 'run', '20 s of 3 min 00 s');
    await picture(page, 'walk-1-running', 1024);
    await gc.fault({ kind: 'refuse', times: 0 });
    for (let turn = 0; turn < 4; turn++) {
      const answer = page.waitForResponse('**/api/status');
      await page.clock.fastForward(1_000);
      await answer;
    }
    await says(page, 'lost', /^No answer since \d\d:\d\d:\d\d$/);
    await says(page, 'notice', 'under way when the instrument answered last. What becomes of it');
    await page.waitForFunction(() => document.title.startsWith('NO ANSWER – Run'));
    await picture(page, 'walk-2-lost', 1024);
    await abort(page, /^The state of the instrument is not known: no answer since/);
    await says(page, 'notice', /Abort now: The instrument is not reachable/);
    await gc.control('fault', '--clear');
    await page.clock.fastForward(5_000);
    await page.getByTestId('lost').waitFor({ state: 'detached' });
    await abort(page, 'The run ends at once');
    await says(page, 'notice', 'Abort now: the run was aborted at 20 s.');
    await says(page, 'state', /Ready|Stabilizing/);
    assert.equal(await page.getByText('under way when').count(), 0);
    assert.doesNotMatch(await page.title(), /NO ANSWER/);
    await picture(page, 'walk-3-aborted', 1024);
  },
);

browserTest(
  'an abort while the first status after a start is late',
  { path, isClockOurs: true },
  async (page, gc) => {
    await button(page, 'Switch', { disabled: false }).waitFor();
    const held = [];
    await page.route('**/api/status', (route) => held.push(route));
    await startRun(page);
    await says(page, 'notice', 'Single run on stream 1: accepted.');
    await page.clock.fastForward(8_000);
    // The status shown is from before the start.
    await says(page, 'state', /^Ready$/);
    await button(page, 'Stop after this run', { disabled: false }).waitFor();
    await abort(page, /^Nothing seems to be running \(state at \d\d:\d\d:\d\d: Ready\)/);
    await says(page, 'notice', 'Abort now: accepted.');
    await held.shift().continue();
    await page.unroute('**/api/status');
    await page.clock.fastForward(2_000);
    await says(page, 'notice', 'Abort now: nothing is running.');
    const commands = (await gc.changes()).map(({ command }) => command);
    assert.deepEqual(commands.slice(-2), [1, 17]);
  },
);

browserTest('a run that is aborted from elsewhere', { path }, async (page, gc) => {
  await startRun(page);
  await says(page, 'notice', 'the run has begun.');
  await gc.control('step', 37);
  await says(page, 'run', '37 s of 3 min 00 s');
  const other = await page.context().newPage();
  await other.goto('/#/status');
  await says(other, 'run', '37 s of 3 min 00 s');
  await abort(other, 'The run ends at once');
  await says(other, 'notice', 'Abort now: the run was aborted at 37 s.');
  await says(page, 'notice', /The run on stream 1 was aborted at 37 s, \d\d:\d\d\./);
  assert.equal(await page.getByText('the run has begun').count(), 0);
});

browserTest('a stop during flushing', { path }, async (page, gc) => {
  await button(page, 'Start automation…').click();
  await button(page.getByRole('dialog'), 'Start').click();
  await says(page, 'state', /^Flushing/);
  await button(page, 'Stop after this run').click();
  const dialog = page.getByRole('dialog', { name: 'Stop at once?' });
  await dialog
    .getByText(/^There is no run at present \(state: Flushing.*everything ends/)
    .waitFor();
  assert.equal(
    (await gc.changes()).some(({ command }) => command === 17),
    false,
  );
  await button(dialog, 'Stop').click();
  await says(page, 'notice', 'Stop after this run: the automation has ended, and no further run');
  await says(page, 'automation', 'Idle');
  await says(page, 'notice', /The automation ended at \d\d:\d\d: no run was counted\./);
});

browserTest('an automation, to its end', { path }, async (page, gc) => {
  await gc.set('mTableRepeat', 1);
  await button(page, 'Start automation…').click();
  await button(page.getByRole('dialog'), 'Start').click();
  await says(page, 'notice', 'Automation: the automation has begun.');
  await says(page, 'state', /^Flushing/);
  await gc.control('step', 12 * 3600);
  await says(page, 'automation', 'Idle');
  await says(page, 'notice', /The automation (ended|was over).*: runs 1285 to \d+\./);
});

browserTest(
  'a command without an answer',
  { path, expected: [/status of 50\d/, /ERR_EMPTY_RESPONSE/] },
  async (page, gc) => {
    await gc.fault({ kind: 'delay', call: 'Command', seconds: 1 });
    await startRun(page);
    let commands = [];
    while (commands.length === 0) {
      commands = (await gc.changes()).filter(({ call }) => call === 'Command');
    }
    // The tool still runs, so the instrument gets the command, and the status shows it.
    await gc.tell('kill-gateway');
    await says(page, 'notice', 'Single run on stream 1: the run has begun.');
    await page.getByTestId('interruptions').getByText('was interrupted').waitFor();
  },
);

browserTest('trouble in the title and the icon', {}, async (page, gc) => {
  const icon = (name) => page.locator(`link[rel="icon"][href="./${name}.svg"]`);
  await icon('icon').waitFor({ state: 'attached' });
  await gc.set('mAmbientTemp', 60);
  await gc.control('step', 1);
  await icon('icon-alarm').waitFor({ state: 'attached' });
  await page.waitForFunction(() => document.title.startsWith('ALARM – Status'));
  await page.getByText('Which alarms').click();
  await page.getByRole('banner').getByText('GC Status: Cabinet Temperature').waitFor();
  for (const name of ['icon', 'icon-alarm', 'icon-error', 'icon-lost']) {
    const response = await page.request.get(`/${name}.svg`);
    assert.match(response.headers()['content-type'], /svg/);
  }
});

browserTest('a hidden window with timers that stand still', { isPatient: true }, async (page) => {
  await page.getByRole('region', { name: 'Channel 1' }).waitFor();
  // As after some minutes in the background: only the worker still ticks.
  await page.evaluate(() => {
    Object.defineProperty(document, 'hidden', {
      value: true,
      configurable: true,
    });
    document.dispatchEvent(new Event('visibilitychange'));
    for (let id = Number(setTimeout(() => {}, 0)); id >= 0; id--) {
      clearTimeout(id);
      clearInterval(id);
    }
    window.setTimeout = /** @type {any} */ (() => 0);
  });
  // The first request may have been under way.
  await page.waitForResponse('**/api/status');
  await page.waitForResponse('**/api/status');
});

browserTest(
  'tables that are read again without a click',
  { path: '#/sequence', expected: unreachable },
  async (page, gc) => {
    const runs = page.getByLabel('Runs, line 1', { exact: true });
    await runs.waitFor();
    await gc.fault({ kind: 'refuse', times: 0 });
    const alert = page.getByRole('alert').filter({ hasText: 'The instrument is not reachable.' });
    await alert.waitFor();
    await gc.set('mRepeat[1]', 9);
    await gc.control('fault', '--clear');
    await alert.waitFor({ state: 'detached' });
    await page.waitForFunction(() => {
      const input = document.querySelector('[aria-label="Runs, line 1"]');
      return input instanceof HTMLInputElement && input.value === '9';
    });
    await runs.fill('5');
    await gc.fault({ kind: 'refuse', times: 0 });
    await alert.waitFor();
    await gc.control('fault', '--clear');
    await alert.waitFor({ state: 'detached' });
    await page.getByText('Changed here, not sent.').waitFor();
    assert.equal(await runs.inputValue(), '5');
  },
);

browserTest(
  'on the first screen of a phone',
  { context: { viewport: { width: 360, height: 740 } } },
  async (page, gc) => {
    await gc.command(0);
    await gc.control('step', 37);
    await says(page, 'run', '37 s of 3 min 00 s');
    for (const one of [
      page.getByTestId('state'),
      page.getByTestId('alarm-sign'),
      page.getByTestId('run'),
      button(page, 'Stop after this run'),
      button(page, 'Abort now…'),
    ]) {
      const box = await one.boundingBox();
      assert.ok(box.x >= 0 && box.x + box.width <= 360, 'beside the screen');
      assert.ok(box.y >= 0 && box.y + box.height <= 740, 'below the screen');
    }
    assert.equal(await describedBy(button(page, 'Abort now…')), '');
    await picture(page, 'phone-first');
  },
);
