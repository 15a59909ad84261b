// Units of values: those named in the web server's settings, and no others.
import assert from 'node:assert/strict';
import { browserTests } from './support/browser.js';
import { pages } from './support/pages.js';

const withUnits = browserTests('--units', 'temperature=°C, pressure=kPa, ambient_pressure=kPa');
const withoutUnits = browserTests();

withUnits('named ones stand at values and over columns', {}, async (page) => {
  const fact = (name) => page.locator('dt').getByText(name, { exact: true }).locator('+ dd');
  await fact('Ambient temperature').getByText('23 °C').waitFor();
  await fact('Ambient pressure')
    .getByText(/^101\.\d+\skPa$/)
    .waitFor();
  await page.getByRole('rowheader', { name: 'Column temp., °C' }).first().waitFor();
  await page.getByRole('rowheader', { name: 'Pressure, kPa' }).first().waitFor();
  const way = page.getByRole('region', { name: 'Gas flow' });
  await way.getByText(/^180\.\d\skPa$/).waitFor();
  await page.goto('/#/wall');
  await page.getByRole('columnheader', { name: 'Column temp., °C' }).waitFor();
  await page.getByRole('columnheader', { name: 'Pressure, kPa' }).waitFor();
  await page.getByText(/^64\.\d+\s°C\s*$/).waitFor();
});

withoutUnits('nothing is assumed where none is named', {}, async (page) => {
  for (const { path, content } of pages) {
    await page.goto(`/${path}`);
    await content(page);
    await page.getByTestId('alarm-sign').waitFor();
    const text = await page.locator('body').innerText();
    assert.ok(text.includes('Natural gas C6+'));
    const found = text.match(/°|\b[km]?Pa\b|\bpsi\b|\bm?bar\b/g);
    assert.equal(found, null, `${path}: ${text}`);
  }
});
