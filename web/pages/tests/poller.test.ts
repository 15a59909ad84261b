import { afterEach, beforeEach, describe, expect, it, vi } from 'vitest';
import { createPoller } from '../src/poller';

/** A poller with requests that the test answers. */
function build(interval = 5000) {
  const pending: ((answer: string) => void)[] = [];
  const taken: string[] = [];
  const world = { isHidden: false, interval };
  const ask = vi.fn(() => new Promise<string>((done) => pending.push(done)));
  const poller = createPoller<string>({
    ask,
    take: (answer) => taken.push(answer),
    interval: () => world.interval,
    isHidden: () => world.isHidden,
  });
  const answer = async (text: string): Promise<void> => {
    pending.shift()!(text);
    await vi.advanceTimersByTimeAsync(0);
  };
  return { poller, ask, answer, taken, world };
}

beforeEach(() => {
  vi.useFakeTimers();
});
afterEach(() => {
  vi.useRealTimers();
});

describe('poller', () => {
  it('makes a request at once, and the next an interval after the first one began', async () => {
    const { poller, ask, answer, taken } = build();
    poller.wake();
    expect(ask).toHaveBeenCalledTimes(1);
    await vi.advanceTimersByTimeAsync(2000);
    await answer('first');
    expect(taken).toEqual(['first']);
    await vi.advanceTimersByTimeAsync(2999);
    expect(ask).toHaveBeenCalledTimes(1);
    await vi.advanceTimersByTimeAsync(1);
    expect(ask).toHaveBeenCalledTimes(2);
  });

  it('never has two requests under way, however slow the answer', async () => {
    const { poller, ask, answer } = build(1000);
    poller.wake();
    await vi.advanceTimersByTimeAsync(10_000);
    poller.wake();
    expect(ask).toHaveBeenCalledTimes(1);
    await answer('late');
    expect(ask).toHaveBeenCalledTimes(2);
    await vi.advanceTimersByTimeAsync(10_000);
    expect(ask).toHaveBeenCalledTimes(2);
  });

  it('makes the next request at once after an answer that took longer than the interval', async () => {
    const { poller, ask, answer } = build(1000);
    poller.wake();
    await vi.advanceTimersByTimeAsync(10_000);
    await answer('late');
    expect(ask).toHaveBeenCalledTimes(2);
  });

  it('makes the next request at once if it was woken meanwhile', async () => {
    const { poller, ask, answer } = build();
    poller.wake();
    poller.wake();
    await answer('before');
    expect(ask).toHaveBeenCalledTimes(2);
    await answer('wanted');
    expect(ask).toHaveBeenCalledTimes(2);
    await vi.advanceTimersByTimeAsync(5000);
    expect(ask).toHaveBeenCalledTimes(3);
  });

  it('waits for its interval if it was not woken', async () => {
    const { poller, ask, answer } = build();
    poller.wake();
    await answer('first');
    await vi.advanceTimersByTimeAsync(4999);
    expect(ask).toHaveBeenCalledTimes(1);
  });

  it('can be woken before its interval is over, and then waits for a whole one', async () => {
    const { poller, ask, answer } = build();
    poller.wake();
    await answer('first');
    await vi.advanceTimersByTimeAsync(3000);
    poller.wake();
    expect(ask).toHaveBeenCalledTimes(2);
    await answer('second');
    await vi.advanceTimersByTimeAsync(4999);
    expect(ask).toHaveBeenCalledTimes(2);
    await vi.advanceTimersByTimeAsync(1);
    expect(ask).toHaveBeenCalledTimes(3);
  });

  it('uses the interval that holds after the answer', async () => {
    const { poller, ask, answer, world } = build(5000);
    poller.wake();
    world.interval = 1000;
    await answer('a run has begun');
    await vi.advanceTimersByTimeAsync(1000);
    expect(ask).toHaveBeenCalledTimes(2);
  });

  it('begins at once even while hidden, but then cannot be woken', async () => {
    const { poller, ask, answer, world } = build();
    world.isHidden = true;
    poller.wake();
    expect(ask).not.toHaveBeenCalled();
    poller.begin();
    expect(ask).toHaveBeenCalledTimes(1);
    await answer('first');
    poller.wake();
    expect(ask).toHaveBeenCalledTimes(1);
    await vi.advanceTimersByTimeAsync(5000);
    expect(ask).toHaveBeenCalledTimes(2);
    world.isHidden = false;
    poller.wake();
    await answer('second');
    expect(ask).toHaveBeenCalledTimes(3);
  });

  it('can be told to check the clock where timers are late', async () => {
    const { poller, ask, answer } = build();
    poller.check();
    expect(ask).not.toHaveBeenCalled();
    poller.begin();
    poller.check();
    await answer('first');
    expect(ask).toHaveBeenCalledTimes(1);
    vi.setSystemTime(Date.now() + 4999);
    poller.check();
    expect(ask).toHaveBeenCalledTimes(1);
    vi.setSystemTime(Date.now() + 1);
    poller.check();
    expect(ask).toHaveBeenCalledTimes(2);
    // A request is under way: no other is made.
    poller.check();
    await answer('second');
    expect(ask).toHaveBeenCalledTimes(2);
  });
});
