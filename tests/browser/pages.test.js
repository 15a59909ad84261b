// Every page: that it comes, how much comes with it, that it fits a telephone, and pictures of them.
import assert from 'node:assert/strict';
import { browserTests, screenshots } from './support/browser.js';
import { pages } from './support/pages.js';

const browserTest = browserTests();

for (const { name, path, heading, content } of pages) {
  browserTest(`${name}: comes, from this server alone, and fits`, { path }, async (page) => {
    await page.getByRole('heading', { name: heading, level: 1, exact: true }).waitFor();
    await page.getByRole('main').waitFor();
    await content(page);
    await page.getByText('Simulated: this is not a real instrument').waitFor();
    assert.match(await page.title(), / – Natural gas C6\+ \(simulated\)$/);
    await page.screenshot({ path: `${screenshots}/${name}.png` });

    // On a telephone nothing reaches over the edge.
    await page.setViewportSize({ width: 360, height: 740 });
    assert.equal(await page.evaluate(() => document.documentElement.scrollWidth), 360);
    if (name === 'status') {
      await page.screenshot({ path: `${screenshots}/status-360.png` });
    }
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
  'the first page is less than 100 kB on its way',
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

browserTest('an address that no page has', { path: '#/nowhere' }, async (page) => {
  await page.getByRole('heading', { name: 'Unknown page', level: 1 }).waitFor();
  await page.getByText('There is no such page.').waitFor();
});

const display = { viewport: { width: 1920, height: 1080 }, colorScheme: 'dark' };
browserTest('wall: a run on a display', { path: '#/wall', context: display }, async (page, gc) => {
  await gc.command(0);
  await gc.control('step', 74);
  const progress = page.getByRole('progressbar', { name: 'Run' });
  await progress.and(page.locator('[aria-valuetext="1 min 14 s of 3 min 00 s"]')).waitFor();
  await page.screenshot({ path: `${screenshots}/wall.png` });
  // All of it can be seen, and nothing acted upon.
  const { scrollHeight, scrollWidth } = await page.evaluate(() => {
    const { scrollHeight, scrollWidth } = document.documentElement;
    return { scrollHeight, scrollWidth };
  });
  assert.deepEqual([scrollWidth, scrollHeight], [1920, 1080]);
  for (const role of ['button', 'textbox', 'checkbox', 'combobox', 'spinbutton', 'navigation']) {
    assert.equal(await page.getByRole(role).count(), 0, role);
  }
});

browserTest('status: a run, with all channels', { scenario: 'four-channel' }, async (page, gc) => {
  for (const number of [1, 2, 3, 4]) {
    await page.getByRole('region', { name: `Channel ${number}` }).waitFor();
  }
  await gc.command(0);
  await gc.control('step', 97);
  await page.getByText('1 min 37 s of 4 min 00 s').waitFor();
  await page.screenshot({ path: `${screenshots}/status-running.png` });
});

const warming = { scenario: 'warming-up', isClockOurs: true };
browserTest('curves while the columns warm up', warming, async (page, gc) => {
  await page.getByRole('region', { name: 'Last hour' }).waitFor();
  for (let minute = 0; minute < 5; minute += 0.25) {
    await gc.control('step', 15);
    await gc.forgetStatus();
    const answer = page.waitForResponse('**/api/status');
    await page.clock.fastForward(15_000);
    await answer;
  }
  const numbers = page.getByRole('table', { name: 'Column temperature, all channels in numbers' });
  const row = numbers.getByRole('row', { name: 'Channel 1' });
  const [now, lowest, highest] = (await row.getByRole('cell').allTextContents()).map(Number);
  assert.ok(lowest < now - 10 && Math.abs(highest - now) < 0.1, `${lowest} ${now} ${highest}`);
  const curves = page.getByRole('img', { name: 'Curve: Column temperature, all channels' });
  await curves.locator('canvas').waitFor();
  await page.setViewportSize({ width: 1280, height: 1150 });
  await page.screenshot({ path: `${screenshots}/status-curves.png` });

  await page.getByLabel('Quantity').selectOption('Column pressure, channel 1');
  await page.getByRole('row', { name: /^Setpoint \d/ }).waitFor();
  await page.getByRole('img', { name: 'Curve: Column pressure, channel 1' }).waitFor();
});
