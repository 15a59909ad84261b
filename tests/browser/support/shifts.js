// Layout shifts: what moves on a page by itself.

/** Starts to watch; returns a function that reports what has moved since. */
export async function watchShifts(page) {
  await page.evaluate(() => {
    const shifts = [];
    new PerformanceObserver((list) => {
      for (const { value, sources } of /** @type {any[]} */ (list.getEntries())) {
        if (value < 0.0005) {
          // Less than a letter.
          continue;
        }
        const moved = sources.map(({ node }) => node?.outerHTML?.slice(0, 80) ?? String(node));
        shifts.push(`${value.toFixed(4)}: ${moved.join(' | ')}`);
      }
    }).observe({ type: 'layout-shift' });
    /** @type {any} */ (window).shifts = shifts;
  });
  return async () => {
    // Shifts are reported after the next frame is drawn.
    await page.evaluate(
      () =>
        new Promise((done) => requestAnimationFrame(() => requestAnimationFrame(() => done(null)))),
    );
    return page.evaluate(() => /** @type {any} */ (window).shifts);
  };
}
