// Pages in Chromium, and what must never happen in them.
import assert from 'node:assert/strict';
import { mkdirSync } from 'node:fs';
import { after, before, test } from 'node:test';
import { fileURLToPath } from 'node:url';
import { chromium } from 'playwright-core';
import { Instrument } from './instrument.js';

export const screenshots = fileURLToPath(
  new URL('../../../build/web/screenshots', import.meta.url),
);

/** Milliseconds for anything awaited; a busy machine needs most of them. */
const limit = 20_000;

export const flags = [
  '--no-sandbox',
  '--disable-gpu',
  '--disable-quic',
  '--no-first-run',
  '--disable-background-networking',
  '--disable-component-update',
  '--disable-sync',
  '--host-resolver-rules=MAP * ~NOTFOUND, EXCLUDE 127.*',
];

/**
 * Collects what no page may do. `expected`: console errors that the test causes. `leaves`: the test
 * leaves a page that asks whether edits may be lost.
 */
function watch(page, origin, expected, leaves) {
  const complaints = [];
  page.on('console', (message) => {
    const text = message.text();
    if (message.type() === 'error' && !expected.some((pattern) => pattern.test(text))) {
      complaints.push(text);
    }
  });
  page.on('pageerror', (error) => complaints.push(String(error)));
  page.on('dialog', async (dialog) => {
    if (leaves && dialog.type() === 'beforeunload') {
      await dialog.accept();
      return;
    }
    complaints.push(`dialog: ${dialog.message()}`);
    await dialog.dismiss();
  });
  page.on('request', (request) => {
    const url = new URL(request.url());
    if (url.origin !== origin) {
      complaints.push(`request to ${url}`);
    }
  });
  page.on('popup', () => complaints.push('another window'));
  return complaints;
}

/** Runs in the page, before its own code. */
function inPage(isImpatient) {
  document.addEventListener('securitypolicyviolation', (event) => {
    console.error(`violates ${event.violatedDirective}: ${event.blockedURI}`);
  });
  if (isImpatient) {
    // Pages request the status at once when they become visible, so tests need not wait 5 s for it.
    setInterval(() => document.dispatchEvent(new Event('visibilitychange')), 200);
  }
}

/**
 * The tests of one file share a browser and an instrument; its scenario is loaded again for each.
 *
 * Returns a function that defines a test: a name, options, and a body that gets the page and the
 * instrument. All options may be left out:
 * - `path`: the page's address when the body begins; `#/status`;
 * - `scenario`: a shipped one, or a file; `everyday`;
 * - `isPatient`: the page requests the status at its own intervals, not as often as it can;
 * - `isClockOurs`: the body can advance the page's clock; implies `isPatient`;
 * - `expected`: patterns of console errors that the test causes;
 * - `leaves`: the body reloads a page that asks whether edits may be lost; the answer is yes;
 * - `context`: options of the browser's context.
 */
export function browserTests(...serverOptions) {
  let browser;
  let instrument;
  before(async () => {
    // One after the other: an unknown browser would keep this process from ending.
    instrument = await Instrument.start(...serverOptions);
    browser = await chromium.launch({
      executablePath: '/usr/bin/chromium',
      args: flags,
    });
  });
  after(() => Promise.all([browser?.close(), instrument?.stop()]));

  return (name, options, body) =>
    test(name, async () => {
      const { path = '#/status', scenario = 'everyday', expected = [] } = options;
      await instrument.load(scenario);
      const context = await browser.newContext({
        baseURL: instrument.origin,
        httpCredentials: instrument.credentials,
        viewport: { width: 1280, height: 800 },
        reducedMotion: 'reduce',
        ...options.context,
      });
      try {
        context.setDefaultTimeout(limit);
        await context.addInitScript(inPage, !options.isPatient && !options.isClockOurs);
        const page = await context.newPage();
        if (options.isClockOurs) {
          await page.clock.install();
        }
        const complaints = watch(page, instrument.origin, expected, options.leaves);
        try {
          await page.goto(`/${path}`);
          await body(page, instrument);
        } catch (error) {
          mkdirSync(screenshots, { recursive: true });
          const file = `${screenshots}/failed-${name.replace(/\W+/g, '-')}.png`;
          await page.screenshot({ path: file }).catch(() => {});
          error.message += `\n${file}${complaints.map((text) => `\n${text}`).join('')}`;
          throw error;
        }
        assert.deepEqual(complaints, []);
      } finally {
        await context.close();
      }
    });
}

/** Takes a picture of the page, without the empty space beside and below it, for inspection. */
export async function picture(page, name, width = page.viewportSize().width) {
  const before = page.viewportSize();
  await page.setViewportSize({ ...before, width });
  const height = await page.evaluate(() =>
    Math.max(
      ...[...document.querySelectorAll('main, dialog')].map(
        (part) => part.getBoundingClientRect().bottom + scrollY,
      ),
    ),
  );
  const clip = { x: 0, y: 0, width, height: Math.ceil(height) };
  await page.screenshot({
    path: `${screenshots}/${name}.png`,
    fullPage: true,
    clip,
  });
  await page.setViewportSize(before);
}

export function button(where, name, options = {}) {
  return where.getByRole('button', { name, exact: true, ...options });
}

/** Waits until an element with this test id contains the text. */
export async function says(page, testId, text) {
  await page.getByTestId(testId).filter({ hasText: text }).waitFor();
}

/** The texts that describe an element; for a disabled action, the reason. */
export function describedBy(locator) {
  return locator.evaluate((element) =>
    (element.getAttribute('aria-describedby') ?? '')
      .split(' ')
      .map((id) => document.getElementById(id)?.textContent ?? '')
      .join(' '),
  );
}

/** Advances the instrument and the page's clock, with an answer every 15 seconds. */
export async function goOn(page, gc, minutes) {
  for (let minute = 0; minute < minutes; minute += 0.25) {
    await gc.control('step', 15);
    await gc.forgetStatus();
    const answer = page.waitForResponse('**/api/status');
    await page.clock.fastForward(15_000);
    await answer;
  }
}
