// The user and the versions; after signing out, the browser has forgotten the password.
import assert from 'node:assert/strict';
import { browserTests, button, says } from './support/browser.js';

const browserTest = browserTests();
const path = '#/run';

browserTest('the user and the versions', { path }, async (page, gc) => {
  await button(page, 'Switch').click();
  await says(page, 'session', 'Signed in as operator');
  await page.reload();
  await says(page, 'session', 'Signed in as operator');
  await says(page, 'versions', /^Pages \d+\.\d+\.\d+, web server \d+\.\d+\.\d+$/);
  assert.equal(await page.getByText('load it again').count(), 0);
  assert.ok(await gc.report('about'));
});

browserTest('signing out', { path, expected: [/401/] }, async (page, gc) => {
  await button(page, 'Sign in').click();
  await says(page, 'notice', 'Signed in until the browser is closed.');
  // From here on, the browser offers a wrong password: only a stored one can be accepted.
  await page.context().setHTTPCredentials({ ...gc.credentials, password: 'wrong' });
  const switched = () => page.waitForResponse('**/api/command/stream');
  const kept = switched();
  await button(page, 'Switch').click();
  assert.ok((await kept).ok());
  const { length: before } = await gc.changes();
  await button(page, 'Sign out').click();
  await says(page, 'notice', 'Signed out. The next command asks who you are.');
  await button(page, 'Sign in').waitFor();
  // Even in a reloaded page.
  for (const load of [() => {}, () => page.reload()]) {
    await load();
    await button(page, 'Switch', { disabled: false }).waitFor();
    const answer = switched();
    await button(page, 'Switch').click();
    const response = await answer;
    assert.equal(response.status(), 401);
    assert.match(
      await response.headerValue('WWW-Authenticate'),
      /^Digest realm="Gas chromatograph"/,
    );
    await says(page, 'notice', 'Stream 1: You are not signed in. Nothing was done.');
    assert.equal(await page.getByTestId('session').count(), 0);
  }
  assert.equal((await gc.changes()).length, before);
});
