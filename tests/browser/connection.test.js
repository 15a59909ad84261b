// The pages without the instrument, without the web server, hidden, and with a wrong password.
import assert from 'node:assert/strict';
import { browserTests, button, describedBy, picture, says } from './support/browser.js';

const browserTest = browserTests();
const unreachable = [/503/];
const offline = [/ERR_INTERNET_DISCONNECTED/];
const actions = ['Start single run…', 'Start calibration…', 'Start automation…', 'Switch', 'Load…'];

/**
 * Whether the parts that show values are grey, including the alarm sign. All are checked at the same
 * moment, as the page may replace them in the next.
 */
async function isGrey(page) {
  const { signs, filters } = await page.evaluate(() => ({
    signs: document.querySelectorAll('.live [data-testid="alarm-sign"]').length,
    filters: [...document.querySelectorAll('.live')].map((part) => getComputedStyle(part).filter),
  }));
  assert.equal(signs, 1);
  assert.ok(filters.length > 0);
  return filters.every((filter) => filter === 'grayscale(1)');
}

/** Goes to another page by its link, and waits for that page. */
async function follow(page, name) {
  await page.getByRole('link', { name, exact: true }).click();
  await page.locator('nav a[aria-current="page"]').getByText(name, { exact: true }).waitFor();
}

/** All actions that start or set something are disabled; those that stop the instrument are not. */
async function allOff(page) {
  for (const name of actions) {
    const off = button(page, name, { disabled: true });
    assert.match(await describedBy(off), /^The state of the instrument is not known/, name);
  }
  for (const name of ['Stop after this run', 'Abort now…']) {
    await button(page, name, { disabled: false }).waitFor();
  }
}

const lost = { path: '#/run', isClockOurs: true };

browserTest(
  'a controller that is lost and comes back',
  { ...lost, expected: unreachable },
  async (page, gc) => {
    await button(page, 'Switch', { disabled: false }).waitFor();
    await gc.tell('stop');
    try {
      await page.clock.fastForward(5_000);
      const alert = page.getByRole('alert').filter({ hasText: 'The instrument is not reachable.' });
      await alert.getByText('The last values are shown.').waitFor();
      // One failed request is not enough.
      assert.equal(await isGrey(page), false);
      await page.clock.fastForward(11_000);
      await page
        .locator('.stale-mark')
        .getByText(/^data 1\d s old$/)
        .waitFor();
      assert.equal(await isGrey(page), true);
      await says(page, 'lost', /^No answer since \d\d:\d\d:\d\d$/);
      await allOff(page);
      await picture(page, 'lost');
      await button(page, 'Switch').click({ force: true });
      await follow(page, 'Status');
      await page.getByRole('region', { name: 'Channel 1' }).waitFor();
      assert.equal(await isGrey(page), true);
      await follow(page, 'Alarms');
      assert.equal(await isGrey(page), true);
      await page.getByRole('link', { name: 'Wall' }).click();
      await page.locator('.stale-mark').waitFor();
      assert.equal(await isGrey(page), true);
      await page.goBack();
      await page.goBack();
      await page.goBack();
    } finally {
      await gc.tell('start');
    }
    await page.clock.fastForward(5_000);
    await button(page, 'Switch', { disabled: false }).waitFor();
    await page.getByText('The instrument is not reachable.').waitFor({ state: 'detached' });
    assert.equal(await isGrey(page), false);
    assert.equal(await page.locator('.stale-mark').count(), 0);
    assert.deepEqual(await gc.changes(), []);
  },
);

browserTest(
  'the focus stays in its cell when the instrument comes back',
  { ...lost, path: '#/calibration', expected: [/503|504/] },
  async (page, gc) => {
    const cell = page.getByLabel('Amount, level 1, peak 2', { exact: true });
    const isFocused = () => cell.evaluate((element) => element === document.activeElement);
    await cell.focus();
    await gc.tell('stop');
    try {
      await page.clock.fastForward(5_000);
      await page.getByRole('alert').getByText('The instrument is not reachable.').waitFor();
    } finally {
      await gc.tell('start');
    }
    const isRead = page.waitForResponse((answer) => answer.url().endsWith('/api/calibration'));
    await page.clock.fastForward(5_000);
    await isRead;
    await page.locator('fieldset:not([disabled])').waitFor();
    assert.equal(await isFocused(), true);
    await page.locator('.pointer').waitFor();
  },
);

browserTest(
  'a command, followed by no answers',
  { ...lost, expected: unreachable },
  async (page, gc) => {
    await gc.fault({ kind: 'ignore', call: 'Command' });
    await button(page, 'Start single run…').click();
    await button(page.getByRole('dialog'), 'Start').click();
    await says(page, 'notice', 'accepted. Waiting for the run to begin (state: Ready;');
    await gc.fault({ kind: 'refuse', times: 0 });
    await page.clock.fastForward(2_000);
    await says(page, 'notice', 'Waiting for the run to begin, but there is no answer at present.');
    await page.clock.fastForward(30_000);
    await says(
      page,
      'notice',
      'what became of it is not known: no answer has shown it within 30 s.',
    );
    // The first answer after that shows the end.
    await gc.command(0);
    await gc.control('fault', '--clear');
    await page.clock.fastForward(5_000);
    await says(page, 'notice', 'Single run on stream 1: the run has begun');
  },
);

browserTest('another instrument at the same address', { isPatient: true }, async (page, gc) => {
  await page.getByRole('region', { name: 'Channel 2 Dimethylpolysiloxane' }).waitFor();
  await gc.control('load', 'four-channel');
  await says(page, 'application', 'Refinery gas');
  await page.getByRole('region', { name: 'Channel 3 Alumina, 10 m' }).waitFor();
});

browserTest('slow answers', { isClockOurs: true }, async (page, gc) => {
  await gc.command(0);
  await page.clock.fastForward(5_000);
  await says(page, 'state', 'Running');
  const held = [];
  await page.route('**/api/status', (route) => held.push(route));
  const answerAfter = async (seconds) => {
    while (held.length === 0) {
      await page.clock.runFor(100);
    }
    await page.clock.fastForward(seconds * 1000);
    const answer = page.waitForResponse('**/api/status');
    await held.shift().continue();
    await answer;
  };
  // Twice the three seconds that are allowed between quick answers.
  await answerAfter(6);
  await page.locator('.stale-mark').waitFor({ state: 'detached' });
  await page.clock.fastForward(6_000);
  await page
    .getByTestId('age')
    .getByText(/^data [67] s old$/)
    .waitFor();
  assert.equal(await page.getByTestId('lost').count(), 0);
  await page.clock.fastForward(4_000);
  await says(page, 'lost', /^No answer since/);
  await button(page, 'Abort now…', { disabled: false }).waitFor();
  await page.unrouteAll({ behavior: 'ignoreErrors' });
});

browserTest('no web server', { ...lost, expected: offline }, async (page) => {
  await button(page, 'Switch', { disabled: false }).waitFor();
  await page.context().setOffline(true);
  await button(page, 'Switch').click();
  await says(page, 'notice', 'No answer came. The command may have been carried out');
  await page.clock.fastForward(16_000);
  await page.getByRole('alert').getByText('The web server does not answer.').waitFor();
  await allOff(page);
  await page.context().setOffline(false);
  await page.clock.fastForward(5_000);
  await button(page, 'Switch', { disabled: false }).waitFor();
});

browserTest(
  'no instrument from the beginning',
  { path: '#/run', expected: unreachable },
  async (page, gc) => {
    await gc.tell('stop');
    try {
      const alert = page.getByRole('alert').getByText('The instrument is not reachable.');
      await alert.waitFor();
      await page.reload();
      await alert.waitFor();
      await says(page, 'age', 'no data yet');
      await page.getByText('Waiting for the first answer of the instrument.').waitFor();
      await button(page, 'Abort now…', { disabled: false }).waitFor();
      await says(page, 'lost', 'No answer yet');
      await page.getByRole('link', { name: 'Sequence' }).click();
      await says(page, 'table-message', 'The instrument is not reachable.');
    } finally {
      await gc.tell('start');
    }
    await says(page, 'state', 'Ready');
    // Without any click.
    await page.getByLabel('Runs, line 3').waitFor();
    // Also needs the configuration, which could not be read either.
    await page.getByRole('link', { name: 'Run', exact: true }).click();
    await button(page, 'Switch', { disabled: false }).waitFor();
  },
);

browserTest(
  'a hidden page still watches',
  { isClockOurs: true, expected: unreachable },
  async (page, gc) => {
    let asked = 0;
    page.on('request', (request) => (asked += Number(request.url().endsWith('/api/status'))));
    const hide = (isHidden) =>
      page.evaluate((value) => {
        Object.defineProperty(document, 'hidden', {
          value,
          configurable: true,
        });
        document.dispatchEvent(new Event('visibilitychange'));
      }, isHidden);
    await page.getByRole('region', { name: 'Channel 1' }).waitFor();
    await page.clock.fastForward(5_000);
    await page.waitForResponse('**/api/status');
    await hide(true);
    asked = 0;
    for (let turn = 0; turn < 6; turn++) {
      const answer = page.waitForResponse('**/api/status');
      await page.clock.fastForward(10_000);
      await answer;
    }
    assert.equal(asked, 6);
    const answer = page.waitForResponse('**/api/status');
    await hide(false);
    await answer;
  },
);

for (const password of ['wrong', '']) {
  const context = { httpCredentials: { username: 'operator', password } };
  const options = { path: '#/run', context, expected: [/401/] };
  browserTest(`the password ${JSON.stringify(password)}`, options, async (page, gc) => {
    await button(page, 'Switch').click();
    await says(page, 'notice', 'Stream 1: You are not signed in. Nothing was done.');
    await says(page, 'state', 'Ready');
    assert.deepEqual(await gc.changes(), []);
  });
}
