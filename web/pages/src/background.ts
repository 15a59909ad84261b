// A clock for hidden pages: browsers delay a hidden window's own timers by up to a minute, but not
// those of a worker.

/** Calls `tick` every few seconds, hidden or not. */
export function everyFewSeconds(tick: () => void): void {
  if (typeof Worker === 'undefined') {
    return;
  }
  const clock = new Worker(new URL('./clock.worker.ts', import.meta.url), { type: 'module' });
  clock.onmessage = tick;
}
