// A page that is left open: neither its requests nor its memory must grow.
import { afterEach, beforeEach, expect, it, vi } from 'vitest';
import { load } from './documents';
import type { Status } from '../src/documents';

/** A week takes many minutes: `GC_HOURS=168`. */
const hours = Number(process.env['GC_HOURS'] ?? 2);
const configuration = load<object>('docs/schemas/examples/configuration.json');
const everyday = load<Status>('tests/system/documents/everyday.json');

/** In a run half of the time; every hundredth request fails. */
class Instrument {
  asked = 0;
  readonly paths = new Map<string, number>();

  fetch = async (path: string): Promise<Response> => {
    this.paths.set(path, (this.paths.get(path) ?? 0) + 1);
    if (path === '/api/config') {
      return new Response(JSON.stringify(configuration));
    }
    if (path !== '/api/status') {
      return new Response('{}', { status: 503 });
    }
    if (++this.asked % 100 === 0) {
      return new Response('{}', { status: 503 });
    }
    const second = Math.floor(Date.now() / 1000);
    const isRun = Math.floor(second / 180) % 2 === 0;
    const change: Partial<Status> = isRun
      ? { GC_state: `Running ${second % 180}s`, Auto_state: 'Running - Single Run' }
      : {};
    return new Response(JSON.stringify({ ...everyday, ...change }));
  };
}

beforeEach(() => {
  vi.useFakeTimers({ now: 1_700_000_000_000 });
});
afterEach(() => {
  vi.unstubAllGlobals();
  vi.useRealTimers();
});

it('makes requests at an even rate, and keeps an hour', async () => {
  const instrument = new Instrument();
  const page = Object.assign(new EventTarget(), { hidden: false });
  vi.stubGlobal('fetch', instrument.fetch);
  vi.stubGlobal('document', page);
  vi.stubGlobal('window', page);
  const store = await import('../src/store');
  const { notices } = await import('../src/notices');
  store.start();
  const perHour: number[] = [];
  const octets: number[] = [];
  for (let hour = 0; hour < hours; hour++) {
    const before = instrument.asked;
    await vi.advanceTimersByTimeAsync(3_600_000);
    perHour.push(instrument.asked - before);
    octets.push(store.history.save().length);
  }
  const samples = store.history.points('Ambient_temp').times.length;
  // Every second in a run and every 5 s otherwise; no hour has more requests than another.
  expect(Math.max(...perHour)).toBeLessThan(3600 * 0.62);
  expect(Math.max(...perHour) - Math.min(...perHour)).toBeLessThan(40);
  // Requested again only after failures.
  expect(instrument.paths.get('/api/config')).toBeLessThan(hours * 24);
  expect(samples).toBeLessThanOrEqual(3601);
  expect(Math.max(...octets)).toBeLessThan(octets[0]! * 1.05);
  expect(notices.value).toEqual([]);
  // The only timers are for the next request, its time limit and the clock.
  expect(vi.getTimerCount()).toBeLessThanOrEqual(4);
});
