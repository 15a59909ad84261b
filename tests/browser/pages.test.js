// Every page: it loads, is small, fits a phone; also takes pictures of them.
import assert from 'node:assert/strict';
import { browserTests, button, goOn, picture, says, screenshots } from './support/browser.js';
import { pages } from './support/pages.js';

const browserTest = browserTests();
const phone = { width: 360, height: 740 };

for (const { name, path, heading, content } of pages) {
  browserTest(`${name}: loads, from this server alone, and fits`, { path }, async (page) => {
    await page.getByRole('heading', { name: heading, level: 1, exact: true }).waitFor();
    await page.getByRole('main').waitFor();
    await content(page);
    await page.getByText('Simulated: this is not a real instrument').waitFor();
    assert.match(await page.title(), / – Natural gas C6\+ \(simulated\)$/);
    // On a phone, nothing extends past the edge.
    await page.setViewportSize(phone);
    assert.equal(await page.evaluate(() => document.documentElement.scrollWidth), 360);
  });
}

browserTest('navigation leads to every page', {}, async (page) => {
  for (const { link, heading, content } of pages) {
    await page.getByRole('link', { name: link, exact: true }).click();
    await page.getByRole('heading', { name: heading, level: 1, exact: true }).waitFor();
    await content(page);
  }
});

browserTest(
  'the first page transfers less than 100 kB',
  { path: '', isPatient: true },
  async (page) => {
    const requests = [];
    page.on('requestfinished', (request) => requests.push(request));
    await page.reload({ waitUntil: 'networkidle' });
    await page.getByRole('region', { name: 'Channel 1' }).waitFor();
    const sizes = await Promise.all(requests.map((request) => request.sizes()));
    const total = sizes.reduce(
      (sum, { responseBodySize, responseHeadersSize }) =>
        sum + responseBodySize + responseHeadersSize,
      0,
    );
    const kinds = new Set(requests.map((request) => request.resourceType()));
    assert.ok(
      kinds.has('script') && kinds.has('stylesheet') && kinds.has('fetch'),
      [...kinds].join(),
    );
    assert.ok(total > 30_000 && total < 100_000, `${total} octets`);
  },
);

browserTest('an address without a page', { path: '#/nowhere' }, async (page) => {
  await page.getByRole('heading', { name: 'Unknown page', level: 1 }).waitFor();
  await page.getByText('There is no such page.').waitFor();
});

const displays = [
  {
    scenario: 'everyday',
    context: { viewport: { width: 1280, height: 720 }, colorScheme: 'dark' },
  },
  {
    scenario: 'four-channel',
    context: { viewport: { width: 1920, height: 1080 } },
  },
];
for (const { scenario, context } of displays) {
  const wall = { path: '#/wall', scenario, context };
  browserTest(`wall: the automation of ${scenario} on a display`, wall, async (page, gc) => {
    await gc.command(16);
    await page.getByText('Flushing', { exact: true }).waitFor();
    await gc.control('step', 200);
    await page.getByRole('progressbar', { name: 'Run' }).waitFor();
    await page.getByRole('row', { name: /^Channel 1( \d+\.\d+ at setpoint){3}$/ }).waitFor();
    await page.getByRole('row', { name: /^Sample line \d+\.\d+ at setpoint$/ }).waitFor();
    if (scenario === 'everyday') {
      await picture(page, 'wall');
    }
    // Everything is visible, and there are no actions.
    const size = await page.evaluate(() => {
      const { scrollWidth, scrollHeight } = document.documentElement;
      return { width: scrollWidth, height: scrollHeight };
    });
    assert.deepEqual(size, context.viewport);
    for (const role of ['button', 'textbox', 'checkbox', 'combobox', 'spinbutton', 'navigation']) {
      assert.equal(await page.getByRole(role).count(), 0, role);
    }
  });
}

browserTest(
  'configuration: all channels, one of them disabled',
  { path: '#/configuration', scenario: 'four-channel' },
  async (page) => {
    const row = page.getByRole('row', {
      name: '4 yes, disabled Dimethylpolysiloxane, 8 m',
    });
    await row.waitFor();
    await picture(page, 'configuration', 1024);
  },
);

const four = { scenario: 'four-channel', isClockOurs: true };
browserTest('status: a run, with all channels', four, async (page, gc) => {
  for (const number of [1, 2, 3, 4]) {
    await page.getByRole('region', { name: `Channel ${number}` }).waitFor();
  }
  await gc.command(0);
  await goOn(page, gc, 2.25);
  await page.locator('main').getByText('2 min 15 s of 4 min 00 s').waitFor();
  await picture(page, 'status-four-channels');
});

const warming = { scenario: 'warming-up', isClockOurs: true };
browserTest('curves while the columns warm up', warming, async (page, gc) => {
  await page.getByRole('region', { name: 'Last hour' }).waitFor();
  await goOn(page, gc, 5);
  const numbers = page.getByRole('table', {
    name: 'Column temperature, all channels in numbers',
  });
  const row = numbers.getByRole('row', { name: 'Channel 1' });
  const [now, lowest, highest] = (await row.getByRole('cell').allTextContents()).map(Number);
  assert.ok(lowest < now - 10 && Math.abs(highest - now) < 0.1, `${lowest} ${now} ${highest}`);
  const curves = page.getByRole('img', {
    name: 'Curve: Column temperature, all channels',
  });
  await curves.locator('canvas').waitFor();

  await page.getByLabel('Quantity').selectOption('Column pressure, channel 1');
  await page.getByRole('row', { name: /^Setpoint \d/ }).waitFor();
  await page.getByRole('img', { name: 'Curve: Column pressure, channel 1' }).waitFor();

  // They continue while the instrument is running.
  await page.getByLabel('Quantity').selectOption('Column temperature, all channels');
  await goOn(page, gc, 4);
  await says(page, 'state', 'Ready');
  await gc.command(0);
  await goOn(page, gc, 2);
  await page.locator('main').getByText('2 min 00 s of 3 min 00 s').waitFor();
  await picture(page, 'status');

  // A reloaded page still has them.
  await page.reload();
  await numbers.getByRole('row', { name: /^Channel 1 \d+\.\d+ 2\d\./ }).waitFor();
});

browserTest('on a phone', { context: { viewport: phone } }, async (page, gc) => {
  await gc.command(0);
  await gc.control('step', 74);
  await page.locator('main').getByText('1 min 14 s of 3 min 00 s').waitFor();
  // The most important values are visible without scrolling.
  await button(page, 'Abort now…', { disabled: false }).waitFor();
  const { bottom } = await page
    .getByRole('region', { name: 'Instrument' })
    .evaluate((region) => region.getBoundingClientRect());
  assert.ok(bottom <= phone.height, `${bottom}`);
  await page.screenshot({ path: `${screenshots}/phone.png` });
});
