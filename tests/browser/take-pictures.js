#!/usr/bin/env node
// Takes pictures of Status and Wall in every state, light, dark and on a phone, for inspection:
// take-pictures.js FOLDER [STATE...]. Needs what `run` needs, already built.
import { mkdirSync } from 'node:fs';
import { chromium } from 'playwright-core';
import { flags, goOn } from './support/browser.js';
import { Instrument } from './support/instrument.js';

/** How to reach each state; `after` restores what the other states need. */
const states = {
  ready: { go: (page, gc) => goOn(page, gc, 11) },
  running: {
    scenario: 'four-channel',
    go: async (page, gc) => {
      await goOn(page, gc, 1);
      await gc.command(16);
      await goOn(page, gc, 4);
    },
  },
  'warming-up': { scenario: 'warming-up', go: (page, gc) => goOn(page, gc, 5) },
  error: { scenario: 'error', go: (page, gc) => goOn(page, gc, 1) },
  alarm: {
    go: async (page, gc) => {
      await goOn(page, gc, 1);
      await gc.set('mAmbientTemp', 61);
      await gc.set('mPress1', 131.5);
      await goOn(page, gc, 3);
    },
  },
  bare: { scenario: 'bare', go: (page, gc) => goOn(page, gc, 1) },
  lost: {
    go: async (page, gc) => {
      await gc.command(0);
      await goOn(page, gc, 2);
      await gc.tell('stop');
      for (let second = 0; second < 40; second += 5) {
        await gc.forgetStatus();
        const answer = page.waitForResponse('**/api/status');
        await page.clock.fastForward(5_000);
        await answer;
      }
    },
    after: (gc) => gc.tell('start'),
  },
};

const views = [
  {
    name: 'status',
    path: '#/status',
    size: { width: 1280, height: 800 },
    isWhole: true,
  },
  {
    name: 'status-dark',
    path: '#/status',
    size: { width: 1280, height: 800 },
    isDark: true,
    isWhole: true,
  },
  {
    name: 'status-phone',
    path: '#/status',
    size: { width: 360, height: 740 },
    isWhole: true,
  },
  { name: 'wall', path: '#/wall', size: { width: 1280, height: 720 } },
  {
    name: 'wall-dark',
    path: '#/wall',
    size: { width: 1920, height: 1080 },
    isDark: true,
  },
  {
    name: 'wall-phone',
    path: '#/wall',
    size: { width: 360, height: 740 },
    isWhole: true,
  },
];

async function takeAll(browser, gc, folder, name) {
  const { scenario = 'everyday', go } = states[name];
  await gc.load(scenario);
  const context = await browser.newContext({
    baseURL: gc.origin,
    reducedMotion: 'reduce',
  });
  try {
    const page = await context.newPage();
    await page.clock.install();
    await page.goto('/#/status');
    await page.getByTestId('state').waitFor();
    await go(page, gc);
    for (const { name: view, path, size, isDark, isWhole } of views) {
      await page.setViewportSize(size);
      await page.emulateMedia({ colorScheme: isDark ? 'dark' : 'light' });
      await page.evaluate((hash) => (location.hash = hash), path);
      await page.locator(path === '#/wall' ? '.wall' : 'nav').waitFor();
      await page.evaluate(() => new Promise((done) => setTimeout(done)));
      await page.screenshot({
        path: `${folder}/${name}-${view}.png`,
        fullPage: isWhole ?? false,
      });
    }
  } finally {
    await context.close();
  }
}

const [folder, ...wanted] = process.argv.slice(2);
if (!folder) {
  throw new Error('take-pictures.js FOLDER [STATE...]');
}
mkdirSync(folder, { recursive: true });
const gc = await Instrument.start();
const browser = await chromium.launch({
  executablePath: '/usr/bin/chromium',
  args: flags,
});
try {
  for (const name of wanted.length > 0 ? wanted : Object.keys(states)) {
    try {
      await takeAll(browser, gc, folder, name);
    } finally {
      await states[name].after?.(gc);
    }
  }
} finally {
  await browser.close();
  await gc.stop();
}
