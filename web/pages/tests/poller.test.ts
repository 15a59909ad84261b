import { afterEach, beforeEach, describe, expect, it, vi } from 'vitest';
import { createPoller } from '../src/poller';

/** A poller whose requests are answered by hand. */
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
  it('asks at once, and again an interval after the request began', async () => {
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

  it('asks again at once after an answer that took longer than the interval', async () => {
    const { poller, ask, answer } = build(1000);
    poller.wake();
    await vi.advanceTimersByTimeAsync(10_000);
    await answer('late');
    expect(ask).toHaveBeenCalledTimes(2);
  });

  it('asks again at once when somebody wanted it meanwhile', async () => {
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

  it('waits its interval when nobody wanted it', async () => {
    const { poller, ask, answer } = build();
    poller.wake();
    await answer('first');
    await vi.advanceTimersByTimeAsync(4999);
    expect(ask).toHaveBeenCalledTimes(1);
  });

  it('is woken before its interval is over, and then waits a whole one', async () => {
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

  it('goes by the interval that holds after the answer', async () => {
    const { poller, ask, answer, world } = build(5000);
    poller.wake();
    world.interval = 1000;
    await answer('a run has begun');
    await vi.advanceTimersByTimeAsync(1000);
    expect(ask).toHaveBeenCalledTimes(2);
  });

  it('begins at once even while hidden, and then is not woken by anybody', async () => {
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

  it('is asked to look at the clock where its timers are late', async () => {
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
    // That one is under way: nobody wants another.
    poller.check();
    await answer('second');
    expect(ask).toHaveBeenCalledTimes(2);
  });
});
