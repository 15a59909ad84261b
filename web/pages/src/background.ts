// A clock for a page that nobody sees: browsers let a hidden window's own timers wait for a minute,
// but not those of a worker.

/** Calls `tick` every few seconds, hidden or not. */
export function everyFewSeconds(tick: () => void): void {
  if (typeof Worker === 'undefined') {
    return;
  }
  const clock = new Worker(new URL('./clock.worker.ts', import.meta.url), { type: 'module' });
  clock.onmessage = tick;
}
