// @vitest-environment happy-dom
import { afterEach, beforeEach, describe, expect, it, vi } from 'vitest';
import { loadSequence, sequence, sequenceFault, watchSequence } from '../src/sequence';
import { load, statusWith } from './documents';
import { settle } from './dom';
import type { Gateway } from './gateway';
import { arrange, clear, setAge, setStatus } from './world';

const example = load<object>('docs/schemas/examples/sequence.json');
const underWay = statusWith({ Auto_state: 'Running Sequence' });

let gateway: Gateway;
let stop = (): void => undefined;
const asked = (): number => gateway.of('/api/sequence').length;

beforeEach(async () => {
  gateway = await arrange();
  sequence.value = undefined;
  sequenceFault.value = undefined;
});
afterEach(async () => {
  stop();
  vi.useRealTimers();
  await clear();
});

describe('the instrument’s sequence', () => {
  it('is requested once when an automation begins', async () => {
    stop = watchSequence();
    await settle();
    expect(asked()).toBe(0);
    await setStatus(underWay);
    await settle();
    expect(sequence.value).toEqual(example);
    await setStatus({ ...underWay, Auto_state: 'Run Delay 30s' });
    await settle();
    expect(asked()).toBe(1);
    await setStatus(statusWith());
    expect(sequence.value).toBeUndefined();
    await setStatus(underWay);
    await settle();
    expect(sequence.value).toEqual(example);
    expect(asked()).toBe(2);
    stop();
    await setStatus(statusWith());
    await setStatus(underWay);
    expect(asked()).toBe(2);
  });

  it('is requested again when the instrument comes back, and for another one', async () => {
    await setStatus(underWay);
    stop = watchSequence();
    await settle();
    await setAge(60);
    await settle();
    expect(asked()).toBe(1);
    await setAge(0);
    await settle();
    expect(asked()).toBe(2);
    gateway.answer('/api/sequence', {}, 503);
    await setStatus({ ...underWay, Application: 'Another one' });
    await settle();
    expect(asked()).toBe(3);
    expect(sequence.value).toBeUndefined();
  });

  it('is requested every minute while it cannot be read', async () => {
    vi.useFakeTimers();
    gateway.answer('/api/sequence', {}, 503);
    await setStatus(underWay);
    stop = watchSequence();
    await vi.advanceTimersByTimeAsync(59_000);
    expect(asked()).toBe(1);
    expect(sequenceFault.value).toMatchObject({ status: 503 });
    await vi.advanceTimersByTimeAsync(1_000);
    expect(asked()).toBe(2);
    gateway.answer('/api/sequence', example);
    await vi.advanceTimersByTimeAsync(60_000);
    expect(sequence.value).toEqual(example);
    await vi.advanceTimersByTimeAsync(60_000);
    expect(asked()).toBe(3);
  });

  it('is dropped when the automation has ended, whatever is still answered', async () => {
    const answer = gateway.hold('/api/sequence');
    await setStatus(underWay);
    stop = watchSequence();
    await setStatus(statusWith());
    answer(example);
    await settle();
    expect(sequence.value).toBeUndefined();
  });

  it('is not requested after the automation has ended', async () => {
    vi.useFakeTimers();
    gateway.answer('/api/sequence', {}, 503);
    await setStatus(underWay);
    stop = watchSequence();
    await vi.advanceTimersByTimeAsync(1_000);
    await setStatus(statusWith());
    await vi.advanceTimersByTimeAsync(60_000);
    expect(asked()).toBe(1);
  });

  it('is the one requested last, or none if that one could not be read', async () => {
    const answer = gateway.hold('/api/sequence');
    const first = loadSequence();
    gateway.answer('/api/sequence', { ...example, Table_repeat: 7 });
    await loadSequence();
    answer(example);
    await first;
    expect(sequence.value).toMatchObject({ Table_repeat: 7 });
    gateway.lose('/api/sequence');
    await loadSequence();
    expect(sequence.value).toBeUndefined();
  });
});
