// Operation without a mouse: what Tab reaches, a visible focus, and dialogs that keep it.
import assert from 'node:assert/strict';
import { browserTests, button, says } from './support/browser.js';
import { pages } from './support/pages.js';

const browserTest = browserTests();

/** Runs in the page: all elements that can be operated and are not disabled. */
const operable =
  'a[href], button:not([disabled]), input:not([disabled]), select:not([disabled]), [tabindex="0"]';

/** Runs in the page: the focused element, with its faults. */
function focused() {
  const element = /** @type {HTMLElement} */ (document.activeElement);
  if (element === document.body) {
    return null;
  }
  element.dataset.reached = 'yes';
  const { top, bottom, left, right, width, height } = element.getBoundingClientRect();
  const above = document.elementFromPoint((left + right) / 2, (top + bottom) / 2);
  return {
    name: element.getAttribute('aria-label') ?? element.textContent ?? '',
    isSeen: width > 1 && height > 1 && element.contains(above),
    isMarked: getComputedStyle(element).outlineStyle === 'solid',
  };
}

for (const { name, path, content } of pages) {
  const context = { viewport: { width: 800, height: 480 } };
  browserTest(`${name}: Tab reaches everything`, { path, context }, async (page) => {
    await content(page);
    // The header changes with another answer.
    await page.getByTestId('alarm-sign').waitFor();
    const all = await page.locator(operable).count();
    for (let count = 0; count < all + 2; count++) {
      await page.keyboard.press('Tab');
      const here = await page.evaluate(focused);
      if (here) {
        assert.ok(here.isSeen, `${here.name} is hidden`);
        assert.ok(here.isMarked, `${here.name} is not marked`);
      }
    }
    const missed = await page
      .locator(`:is(${operable}):not([data-reached], [type=file])`)
      .evaluateAll((elements) => elements.map(({ outerHTML }) => outerHTML));
    assert.deepEqual(missed, []);
  });
}

const dialogs = [
  ['#/run', 'Start single run…'],
  ['#/run', 'Start calibration…'],
  ['#/run', 'Start automation…'],
  ['#/run', 'Load…'],
  ['#/run', 'Abort now…'],
  ['#/sequence', 'Compare and send…'],
  ['#/calibration', 'Compare and send…'],
  ['#/alarms', 'Reset all alarms…'],
];
for (const [path, action] of dialogs) {
  browserTest(`dialog of ${action} on ${path}`, { path }, async (page, gc) => {
    if (action.startsWith('Abort')) {
      await gc.command(0);
    }
    if (action.startsWith('Reset')) {
      await gc.set('mAmbientTemp', 60);
    }
    const opener = button(page, action, { disabled: false });
    const isAtOpener = () => opener.and(page.locator(':focus')).waitFor();
    const dialog = page.getByRole('dialog');
    const inside = () =>
      page.evaluate(() => {
        const { activeElement } = document;
        return activeElement === document.body || activeElement.closest('dialog') !== null;
      });

    await opener.focus();
    await page.keyboard.press('Enter');
    await dialog.waitFor();
    await button(dialog, 'Cancel').and(page.locator(':focus')).waitFor();
    for (const key of ['Tab', 'Tab', 'Tab', 'Shift+Tab', 'Shift+Tab', 'Shift+Tab', 'Shift+Tab']) {
      await page.keyboard.press(key);
      assert.ok(await inside(), key);
    }
    await page.keyboard.press('Escape');
    await dialog.waitFor({ state: 'detached' });
    await isAtOpener();
    // The same again with its button.
    await page.keyboard.press('Space');
    await button(dialog, 'Cancel').and(page.locator(':focus')).waitFor();
    await page.keyboard.press('Enter');
    await dialog.waitFor({ state: 'detached' });
    await isAtOpener();
    assert.deepEqual(await gc.changes(), []);
  });
}

browserTest('a run, from the first Tab to the abort', {}, async (page) => {
  const tabTo = async (target) => {
    for (let count = 0; count < 60; count++) {
      if ((await target.and(page.locator(':focus')).count()) === 1) {
        return;
      }
      await page.keyboard.press('Tab');
    }
    assert.fail(`Tab does not reach ${target}`);
  };
  await says(page, 'state', 'Ready');
  await tabTo(page.getByRole('link', { name: 'Run', exact: true }));
  await page.keyboard.press('Enter');
  const heading = page.getByRole('heading', { name: 'Run', level: 1 });
  await heading.and(page.locator(':focus')).waitFor();
  await tabTo(page.getByLabel('On stream'));
  await page.keyboard.press('3');
  await tabTo(button(page, 'Start single run…'));
  await page.keyboard.press('Enter');
  await tabTo(button(page.getByRole('dialog'), 'Start'));
  await page.keyboard.press('Enter');
  await says(page, 'notice', 'Single run on stream 3: the run has begun');
  await button(page, 'Start single run…').and(page.locator(':focus')).waitFor();
  await tabTo(button(page, 'Abort now…'));
  await page.keyboard.press('Enter');
  await tabTo(button(page.getByRole('dialog'), 'Abort now'));
  await page.keyboard.press('Enter');
  await says(page, 'notice', /Abort now: (the run was aborted at \d+ s|nothing is running)\./);
});

browserTest('past the navigation', { path: '#/run' }, async (page) => {
  await says(page, 'state', 'Ready');
  await page.keyboard.press('Tab');
  await page.getByRole('link', { name: 'Skip to the page' }).and(page.locator(':focus')).waitFor();
  await page.keyboard.press('Enter');
  await page.keyboard.press('Tab');
  await page.getByLabel('On stream').and(page.locator(':focus')).waitFor();
});
