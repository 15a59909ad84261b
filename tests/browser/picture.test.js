// Status and wall view at a glance: gas flow, ends, alarms by name, no answer; nothing jumps.
import assert from 'node:assert/strict';
import { browserTests, says } from './support/browser.js';
import { watchShifts } from './support/shifts.js';

const browserTest = browserTests();

/** Advances the instrument, and the page's clock until it makes a request; waits for the answer. */
async function goOn(page, gc, seconds, ofPage = seconds) {
  await gc.control('step', seconds);
  await gc.forgetStatus();
  const answer = page.waitForResponse('**/api/status');
  await page.clock.fastForward(ofPage * 1000);
  await answer;
}

const sizes = [
  { path: '#/status', viewport: { width: 1280, height: 800 } },
  { path: '#/status', viewport: { width: 360, height: 740 } },
  { path: '#/wall', viewport: { width: 1280, height: 720 } },
];
for (const { path, viewport } of sizes) {
  const options = {
    path,
    isClockOurs: true,
    scenario: 'warming-up',
    context: { viewport },
  };
  browserTest(`nothing moves: ${path}, ${viewport.width}`, options, async (page, gc) => {
    await page.getByText('Initializing').first().waitFor();
    await goOn(page, gc, 40);
    await page.getByText('Stabilizing').first().waitFor();
    await goOn(page, gc, 5);
    // While the columns warm up.
    let moved = await watchShifts(page);
    const before = await page.locator('main').innerText();
    for (let count = 0; count < 10; count++) {
      await goOn(page, gc, 10);
      assert.deepEqual(await moved(), [], `warming up, ${count}`);
    }
    assert.notEqual(await page.locator('main').innerText(), before);
    for (let count = 0; count < 7; count++) {
      await goOn(page, gc, 60);
    }
    await page.getByText('Ready').first().waitFor();
    // During a run, when its seconds get more digits.
    await gc.command(0);
    await goOn(page, gc, 5);
    await page
      .getByText(/^Running \ds$/)
      .first()
      .waitFor();
    moved = await watchShifts(page);
    for (let count = 0; count < 12; count++) {
      // If the page waited longer, it would report that there is no answer.
      await goOn(page, gc, 9, 1);
      assert.deepEqual(await moved(), [], `run, ${count}`);
    }
    await page
      .getByText(/^Running 1\d\ds$/)
      .first()
      .waitFor();
  });
}

browserTest('the gas flow is a list', {}, async (page) => {
  const way = page.getByRole('region', { name: 'Gas flow' });
  const inlet = way.getByRole('list', { name: 'All channels' });
  await inlet.getByRole('listitem').filter({ hasText: 'Stream 1 of 4' }).waitFor();
  const channels = way.getByRole('list', { name: 'Channels', exact: true });
  const parts = channels.getByRole('listitem').first().getByRole('listitem');
  assert.deepEqual(await parts.locator('.name').allInnerTexts(), [
    'Injector',
    'Column',
    'Detector',
  ]);
  // In the order of the gas flow, on the screen as well.
  const lefts = await parts.evaluateAll((all) =>
    all.map((one) => one.getBoundingClientRect().left),
  );
  assert.deepEqual(
    lefts,
    [...lefts].sort((a, b) => a - b),
  );
});

for (const forcedColors of /** @type {const} */ (['none', 'active'])) {
  const options = { scenario: 'bare', context: { forcedColors } };
  browserTest(
    `a detector that is not calibrated, colours ${forcedColors}`,
    options,
    async (page) => {
      const part = page.locator('.part').filter({ hasText: 'not calibrated' });
      await part.waitFor();
      const look = (locator) =>
        locator.evaluate((one) => [
          getComputedStyle(one).borderTopWidth,
          getComputedStyle(one).borderTopColor,
        ]);
      const [width, colour] = await look(part);
      const [usualWidth, usualColour] = await look(page.locator('.part').first());
      assert.notEqual(width, usualWidth);
      // Colour is never the only sign; here there is none.
      assert.equal(colour === usualColour, forcedColors === 'active');
      await page.getByText('no stream selector').waitFor();
      await page.getByText('Channels 2, 3, 4: not installed.').waitFor();
    },
  );
}

browserTest(
  'marker and band can be distinguished in forced colours',
  {
    context: { forcedColors: 'active' },
  },
  async (page) => {
    await page.locator('.bar-gauge').first().waitFor();
    const fills = await page.evaluate(() =>
      ['.gauge-near', '.gauge-band', '.gauge-ground'].map(
        (part) => getComputedStyle(document.querySelector(part)).fill,
      ),
    );
    assert.equal(new Set(fills).size, 3, fills.join());
  },
);

browserTest('the end of an automation', { isClockOurs: true }, async (page, gc) => {
  await page.route('**/api/config', async (route) => {
    const answer = await route.fetch();
    const units = { flush_time: 'min', temperature: '°C' };
    await route.fulfill({
      response: answer,
      json: { ...(await answer.json()), units },
    });
  });
  await page.reload();
  await page.getByRole('rowheader', { name: 'Column temp., °C' }).first().waitFor();
  await says(page, 'automation-end', '–');
  await gc.command(16);
  await goOn(page, gc, 5);
  await says(page, 'automation-end', /^not before \d\d:\d\d/);
  await says(page, 'automation-end', '(delays between runs are not known');
  await goOn(page, gc, 150);
  await says(page, 'run-end', /^\d\d:\d\d/);
  // 20 runs of 3 min, one of them under way; 5 flushings, 6 min in all, are still to come.
  const end = await page.getByTestId('automation-end').locator('.number').innerText();
  const shown = /(\d\d):(\d\d)/.exec(end);
  const left = await page.evaluate(
    ([hours, minutes]) => {
      const date = new Date();
      const seconds = (hours * 60 + minutes - date.getHours() * 60 - date.getMinutes()) * 60;
      return ((seconds + 86_400) % 86_400) / 60;
    },
    [Number(shown[1]), Number(shown[2])],
  );
  assert.ok(Math.abs(left - (20 * 3 - 1 + 4.5)) <= 2, `${left} min`);
  await page.goto('/#/wall');
  await says(page, 'automation-end', /^not before \d\d:\d\d/);
});

browserTest(
  'alarms by name, beside the alarm sign',
  { scenario: 'error', expected: [/503/] },
  async (page) => {
    const names = page.getByRole('list', { name: 'Active alarms' });
    await names.getByText('GC Status: Instrument Error').waitFor();
    assert.equal(await page.getByTestId('alarm-sign').first().innerText(), 'ALARM');
    await page.goto('/#/wall');
    await names.getByText('GC Status: Instrument Error').waitFor();
    // Alarms that cannot be read are not reported as none.
    await page.route('**/api/alarms', (route) => route.fulfill({ status: 503, json: {} }));
    await page.reload();
    await page.getByText(/^Which alarms are active is not known: The instrument/).waitFor();
  },
);

const displays = [
  { width: 1280, height: 720 },
  { width: 1920, height: 1080 },
];
const four = {
  path: '#/wall',
  scenario: 'four-channel',
  isClockOurs: true,
  expected: [/503/],
};
browserTest('the wall view fits: automation, alarms, no answer', four, async (page, gc) => {
  const fits = async (what) => {
    for (const viewport of displays) {
      await page.setViewportSize(viewport);
      const size = await page.evaluate(() => {
        const { scrollWidth, scrollHeight } = document.documentElement;
        return { width: scrollWidth, height: scrollHeight };
      });
      assert.deepEqual(size, viewport, what);
    }
  };
  await page.getByText('Ready', { exact: true }).waitFor();
  await gc.command(16);
  await gc.set('mAmbientTemp', 61);
  await goOn(page, gc, 200);
  await page.getByText(/^Running \d+s$/).waitFor();
  await gc.set('mColumnTemp1', 181.5);
  await goOn(page, gc, 5, 1);
  await page.getByText('101.50 above').waitFor();
  await page.getByRole('list', { name: 'Active alarms' }).waitFor();
  await fits('a run');
  await gc.tell('stop');
  try {
    for (let count = 0; count < 4; count++) {
      await gc.forgetStatus();
      const answer = page.waitForResponse('**/api/status');
      await page.clock.fastForward(5_000);
      await answer;
    }
    await page.getByText(/^No answer since \d\d:\d\d:\d\d$/).waitFor();
    await page.getByText(/^Last known: Running \d+s$/).waitFor();
    await fits('no answer');
    await page.goto('/#/status');
    await page
      .getByRole('main')
      .getByText(/^No answer since \d\d:\d\d:\d\d/)
      .waitFor();
  } finally {
    await gc.tell('start');
  }
});
