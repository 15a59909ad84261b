import { afterEach, beforeEach, describe, expect, it, vi } from 'vitest';
import { followAutomation, type Follow } from '../src/follow';
import { load, statusWith } from './documents';
import { Gateway } from './gateway';

type Store = typeof import('../src/store');

const unknownState = 'The state of the instrument is not known: there is no recent answer.';
const running = statusWith({ GC_state: 'Running 1s', Auto_state: 'Running - Single Run' });

/** The parts of a window that the store needs. */
class Page extends EventTarget {
  hidden = false;
  readonly kept = new Map<string, string>();
}

let page: Page;
let gateway: Gateway;
let store: Store;

/** What is said of the latest command, without the time. */
function said(): { kind: string; text: string } | undefined {
  const latest = store.notice.value;
  return latest && { kind: latest.kind, text: latest.text };
}

/** Lets milliseconds pass, with everything that happens in them. */
const pass = (milliseconds: number): Promise<unknown> => vi.advanceTimersByTimeAsync(milliseconds);
const asked = (path = '/api/status'): number => gateway.of(path).length;

async function open(): Promise<void> {
  vi.resetModules();
  store = await import('../src/store');
}

beforeEach(async () => {
  vi.useFakeTimers({ now: 1_700_000_000_000 });
  page = new Page();
  gateway = new Gateway();
  vi.stubGlobal('document', page);
  vi.stubGlobal('window', page);
  vi.stubGlobal('sessionStorage', {
    getItem: (key: string) => page.kept.get(key) ?? null,
    setItem: (key: string, text: string) => page.kept.set(key, text),
    removeItem: (key: string) => page.kept.delete(key),
  });
  await open();
});

afterEach(async () => {
  // The last requests are answered, and no others are made.
  page.hidden = true;
  await pass(0);
  vi.unstubAllGlobals();
  vi.useRealTimers();
});

describe('requests for the status', () => {
  it('begin at once, and show the status and the configuration', async () => {
    store.start();
    await pass(0);
    expect(store.status.value).toEqual(statusWith());
    expect(store.statusTime.value).toBe(1_700_000_000_000);
    expect(store.configuration.value).toEqual(load('docs/schemas/examples/configuration.json'));
    expect(asked('/api/config')).toBe(1);
  });

  it('are made every 5 s, or every second in a run', async () => {
    store.start();
    await pass(0);
    await pass(4999);
    expect(asked()).toBe(1);
    gateway.answer('/api/status', running);
    await pass(1);
    expect(asked()).toBe(2);
    await pass(3000);
    expect(asked()).toBe(5);
  });

  it('takes the age of a shared answer into account', async () => {
    gateway.answer('/api/status', statusWith(), 200, { Age: '2' });
    store.start();
    await pass(0);
    expect(store.statusTime.value).toBe(1_699_999_998_000);
    expect(store.ageSeconds.value).toBe(2);
  });

  it('are made every 10 s while the page is hidden, and at once when it is shown again', async () => {
    store.start();
    await pass(0);
    page.hidden = true;
    page.dispatchEvent(new Event('visibilitychange'));
    await pass(0);
    expect(asked()).toBe(1);
    await pass(5000);
    expect(asked()).toBe(2);
    await pass(35_500);
    expect(asked()).toBe(5);
    expect(store.now.value).toBe(1_700_000_035_000);
    page.hidden = false;
    page.dispatchEvent(new Event('visibilitychange'));
    expect(store.now.value).toBe(1_700_000_040_500);
    expect(asked()).toBe(6);
  });

  it('begin in a page that is opened hidden', async () => {
    page.hidden = true;
    store.start();
    await pass(0);
    expect(store.status.value).toEqual(statusWith());
    await pass(10_000);
    expect(asked()).toBe(2);
  });

  it('allow the time that the gateway may take', async () => {
    const timeout = vi.spyOn(AbortSignal, 'timeout');
    store.start();
    await pass(0);
    expect(timeout.mock.calls.map(([limit]) => limit)).toContain(48_000);
    timeout.mockRestore();
  });

  it('keep the last values when there is no answer, and say why', async () => {
    store.start();
    await pass(0);
    gateway.answer('/api/status', { ErrorCode: 10053, Msg: 'Unable to connect to GC!' }, 503);
    await pass(5000);
    expect(store.statusFault.value?.text).toBe('The instrument is not reachable.');
    expect(store.status.value).toEqual(statusWith());
    expect(store.statusTime.value).toBe(1_700_000_000_000);
    gateway.answer('/api/status', running);
    await pass(5000);
    expect(store.statusFault.value).toBeUndefined();
    expect(store.status.value).toEqual(running);
  });
});

describe('the age of the status', () => {
  it('grows each second, and is infinite before the first answer', async () => {
    expect(store.ageSeconds.value).toBe(Infinity);
    expect(store.isStale.value).toBe(true);
    gateway.lose('/api/status');
    store.start();
    await pass(0);
    expect(store.ageSeconds.value).toBe(Infinity);
    gateway.answer('/api/status', statusWith());
    await pass(5000);
    expect(store.ageSeconds.value).toBe(0);
    gateway.lose('/api/status');
    await pass(3000);
    expect(store.ageSeconds.value).toBe(3);
  });

  it('is never negative when the clock is set back', async () => {
    store.start();
    await pass(0);
    store.now.value = store.statusTime.value - 5000;
    expect(store.ageSeconds.value).toBe(0);
  });

  it('makes the values stale after three intervals', async () => {
    store.start();
    await pass(0);
    expect(store.isStale.value).toBe(false);
    gateway.lose('/api/status');
    await pass(14_999);
    expect(store.isStale.value).toBe(false);
    await pass(1);
    expect(store.isStale.value).toBe(true);
    expect(store.reasonNotTo('stream')).toBe(unknownState);
  });

  it('makes the values stale after three failed requests, and says since when', async () => {
    // A slow answer leaves time for slow ones, but not for three failures.
    const answer = gateway.hold('/api/status');
    store.start();
    await pass(20_000);
    answer(running);
    gateway.answer('/api/status', {}, 503);
    await pass(0);
    const last = Date.now();
    await pass(1000);
    expect(store.isStale.value).toBe(false);
    expect(store.lostSince.value).toBeUndefined();
    await pass(2000);
    expect(store.isStale.value).toBe(true);
    expect(store.lostSince.value).toBe(last);
    gateway.answer('/api/status', running);
    await pass(1000);
    expect(store.isStale.value).toBe(false);
    expect(store.lostSince.value).toBeUndefined();
  });

  it('gives no time of loss before the first answer', async () => {
    gateway.answer('/api/status', {}, 503);
    store.start();
    await pass(30_000);
    expect(store.isStale.value).toBe(true);
    expect(store.lostSince.value).toBeUndefined();
  });

  it('makes the values stale after three seconds in a run', async () => {
    gateway.answer('/api/status', running);
    store.start();
    await pass(0);
    gateway.lose('/api/status');
    await pass(2999);
    expect(store.isStale.value).toBe(false);
    await pass(1);
    expect(store.isStale.value).toBe(true);
  });

  it('makes the values stale when there is no answer for another three seconds', async () => {
    gateway.answer('/api/status', running);
    store.start();
    await pass(0);
    gateway.hold('/api/status');
    await pass(3000);
    expect(store.isStale.value).toBe(false);
    await pass(1000);
    expect(store.isStale.value).toBe(true);
  });

  it('leaves time for the slowest of the last four answers', async () => {
    gateway.answer('/api/status', running);
    const answer = gateway.hold('/api/status');
    store.start();
    await pass(4000);
    answer(running);
    gateway.answer('/api/status', running);
    await pass(0);
    // The slow answer, and three quick ones.
    await pass(2000);
    expect(asked()).toBe(4);
    const late = gateway.hold('/api/status');
    await pass(7000);
    expect(store.isStale.value).toBe(false);
    await pass(1000);
    expect(store.isStale.value).toBe(true);
    late(running);
    gateway.answer('/api/status', running);
    await pass(0);
    expect(store.isStale.value).toBe(false);
  });

  it('forgets a slow answer after four others', async () => {
    const answer = gateway.hold('/api/status');
    store.start();
    await pass(10_000);
    answer(running);
    gateway.answer('/api/status', running);
    await pass(3000);
    expect(asked()).toBe(5);
    gateway.lose('/api/status');
    await pass(4000);
    expect(store.isStale.value).toBe(true);
  });
});

describe('the configuration', () => {
  it('is requested again after the instrument was away', async () => {
    store.start();
    await pass(0);
    gateway.lose('/api/status');
    await pass(5000);
    gateway.answer('/api/status', statusWith());
    expect(asked('/api/config')).toBe(1);
    await pass(5000);
    expect(asked('/api/config')).toBe(2);
    await pass(20_000);
    expect(asked('/api/config')).toBe(2);
  });

  it('is requested with each status until it has been read', async () => {
    gateway.answer('/api/config', {}, 503);
    store.start();
    await pass(0);
    const first = asked('/api/config');
    await pass(5000);
    expect(asked('/api/config')).toBe(first + 1);
    expect(store.configuration.value).toBeUndefined();
  });

  it('of the previous instrument is dropped', async () => {
    store.start();
    await pass(0);
    gateway.lose('/api/config');
    gateway.answer('/api/status', statusWith({ Application: 'Air' }));
    await pass(5000);
    expect(store.configuration.value).toBeUndefined();
    expect(asked('/api/config')).toBe(2);
  });

  it('is requested once for all callers meanwhile, and reports faults', async () => {
    const answer = gateway.hold('/api/config');
    const both = [store.loadConfiguration(), store.loadConfiguration()];
    answer({ ErrorCode: 10053, Msg: 'Unable to connect to GC!' }, 503);
    const faults = await Promise.all(both);
    expect(faults.map((fault) => fault?.status)).toEqual([503, 503]);
    expect(asked('/api/config')).toBe(1);
    gateway.answer('/api/config', load('docs/schemas/examples/configuration.json'));
    expect(await store.loadConfiguration()).toBeUndefined();
    expect(asked('/api/config')).toBe(2);
    expect(store.configuration.value?.Inst_serial).toBe(120033);
  });

  it('is not read from any other document', async () => {
    gateway.answer('/api/config', statusWith());
    expect((await store.loadConfiguration())?.text).toBe('The answer is not what was requested.');
  });
});

describe('a fault', () => {
  it.each([
    ['', 'Refused.'],
    ['Too late', 'Refused. Too late.'],
    ['Too late.', 'Refused. Too late.'],
    ['1.5 is too much', 'Refused. 1.5 is too much.'],
  ])('with the details %j', (detail, text) => {
    expect(store.describeFault({ status: 409, text: 'Refused.', detail })).toBe(text);
  });

  it('names the peak, if there is one', () => {
    store.status.value = statusWith();
    const detail = 'Refused: Unable to set new level for chan[2] peak[13] (error 207)';
    expect(store.describeFault({ status: 409, text: 'Refused.', detail, code: 207 })).toBe(
      'Refused. The instrument does not accept this in its present state (error 207) at channel 2, peak 13.',
    );
    expect(store.describeFault({ status: 409, text: 'Refused.', detail, code: 99 })).toBe(
      `Refused. ${detail}.`,
    );
  });
});

describe('actions', () => {
  const busy = 'Another command is being sent.';

  it('wait for the first answer, unless they stop or reset', async () => {
    expect(store.reasonNotTo('stream')).toBe(unknownState);
    expect(store.reasonNotTo('alarm-reset')).toBe('');
    expect(store.reasonNotTo('abort-now')).toBe('');
    expect(store.reasonNotTo('abort-after-run')).toBe('');
    store.start();
    await pass(0);
    expect(store.reasonNotTo('stream')).toBe('');
    expect(store.reasonNotTo('abort-now')).toBe('');
    expect(store.reasonNotTo('abort-after-run')).toBe('The automation is not under way.');
  });

  it('that stop are never disabled for lack of a recent answer', async () => {
    store.start();
    await pass(0);
    gateway.lose('/api/status');
    await pass(20_000);
    expect(store.reasonNotTo('stream')).toBe(unknownState);
    expect(store.reasonNotTo('abort-now')).toBe('');
    expect(store.reasonNotTo('abort-after-run')).toBe('');
    expect(store.reasonNotTo('alarm-reset')).toBe('');
  });

  it('wait for a command that is being sent, unless they stop', async () => {
    gateway.answer('/api/status', running);
    store.start();
    await pass(0);
    const reset = gateway.hold('/api/command/alarm-reset');
    void store.command('Reset', { method: 'POST', path: 'alarm-reset', body: {} });
    expect(store.reasonNotTo('alarm-reset')).toBe(busy);
    expect(store.reasonNotTo('abort-after-run')).toBe('');
    expect(store.reasonNotTo('abort-now')).toBe('');
    expect(store.isAborting.value).toBe(false);
    const abort = gateway.hold('/api/command/abort');
    void store.command('Abort now', { method: 'POST', path: 'abort', body: { when: 'now' } });
    expect(store.reasonNotTo('abort-now')).toBe('');
    expect(store.reasonNotTo('abort-after-run')).toBe('');
    expect(store.isAborting.value).toBe(true);
    abort({ ErrorCode: 0, Msg: 'Accepted' });
    await pass(0);
    expect(store.isAborting.value).toBe(false);
    expect(store.reasonNotTo('alarm-reset')).toBe(busy);
    reset({ ErrorCode: 0, Msg: 'Accepted' });
    await pass(0);
    expect(store.reasonNotTo('alarm-reset')).toBe('');
  });

  it('that stop are possible from the moment a start is sent, whatever the status says', async () => {
    store.start();
    await pass(0);
    expect(store.reasonNotTo('abort-after-run')).not.toBe('');
    const answer = gateway.hold('/api/command/run');
    const send = { method: 'POST', path: 'run', body: { type: 'automation' } } as const;
    void store.command('Automation', send, (before) => followAutomation(before!));
    expect(store.reasonNotTo('abort-after-run')).toBe('');
    answer({ ErrorCode: 0, Msg: 'Accepted' });
    await pass(8000);
    expect(store.status.value).toEqual(statusWith());
    expect(store.reasonNotTo('abort-after-run')).toBe('');
  });
});

const reset = { method: 'POST', path: 'alarm-reset', body: { all: true } } as const;
const follow: Follow = {
  name: 'Run',
  awaited: 'the run to begin',
  done: () => 'the run has begun',
  notDone: 'the run has not begun',
  isMet: (status) => status.GC_state.startsWith('Running'),
  endsWithError: true,
  limitSeconds: 10,
  holds: () => true,
};

describe('a command', () => {
  beforeEach(async () => {
    store.start();
    await pass(0);
  });

  it('is sent, and its answer is reported', async () => {
    const answer = gateway.hold('/api/command/alarm-reset');
    const sent = store.command('Reset', reset);
    expect(said()).toEqual({ kind: 'waiting', text: 'Reset: being sent.' });
    expect(asked()).toBe(2);
    answer({ ErrorCode: 0, Msg: 'Accepted' });
    expect((await sent).ok).toBe(true);
    expect(said()).toEqual({ kind: 'good', text: 'Reset: accepted.' });
    expect(gateway.of('/api/command/alarm-reset')).toEqual([
      { method: 'POST', path: '/api/command/alarm-reset', body: { all: true } },
    ]);
    await pass(0);
    expect(asked()).toBe(3);
  });

  it('sends a text as its body unchanged', async () => {
    await store.command('Sequence', { method: 'PUT', path: 'sequence', body: '{"total": 0}' });
    expect(gateway.of('/api/command/sequence')).toEqual([
      { method: 'PUT', path: '/api/command/sequence', body: { total: 0 } },
    ]);
  });

  it('that was refused is reported with the reason', async () => {
    gateway.answer('/api/command/alarm-reset', { ErrorCode: 207, Msg: 'Refused' }, 409);
    const answer = await store.command('Reset', reset, () => follow);
    expect(answer.ok).toBe(false);
    expect(said()).toEqual({
      kind: 'bad',
      text: 'Reset: The instrument refused. The instrument does not accept this in its present state (error 207).',
    });
  });

  it('without an answer for 3 s may be waiting for a password', async () => {
    const answer = gateway.hold('/api/command/alarm-reset');
    void store.command('Reset', reset);
    await pass(2999);
    expect(store.notice.value?.text).toBe('Reset: being sent.');
    await pass(1);
    expect(said()).toEqual({
      kind: 'waiting',
      text: 'Reset: no answer yet. If the browser asks who you are, sign in there.',
    });
    answer({ ErrorCode: 0, Msg: 'Accepted' });
    await pass(0);
    expect(store.notice.value?.text).toBe('Reset: accepted.');
    await pass(5000);
    expect(store.notice.value?.text).toBe('Reset: accepted.');
  });

  it('requests the status every second until it is answered', async () => {
    gateway.hold('/api/command/alarm-reset');
    void store.command('Reset', reset);
    await pass(0);
    const before = asked();
    await pass(3000);
    expect(asked()).toBe(before + 3);
  });

  it('is followed to its effect', async () => {
    const answer = gateway.hold('/api/status');
    await store.command('Run', reset, () => follow);
    expect(said()).toEqual({ kind: 'waiting', text: 'Run: accepted.' });
    gateway.answer('/api/status', statusWith());
    answer(statusWith());
    await pass(0);
    expect(said()).toEqual({
      kind: 'waiting',
      text: 'Run: accepted. Waiting for the run to begin (state: Ready; automation: Idle).',
    });
    gateway.answer('/api/status', running);
    await pass(1000);
    expect(said()).toEqual({
      kind: 'good',
      text: 'Run: the run has begun.',
    });
    gateway.answer('/api/status', statusWith());
    await pass(5000);
    expect(store.notice.value?.kind).toBe('good');
  });

  it('is followed from the status before it', async () => {
    const seen: unknown[] = [];
    await store.command('Run', reset, (before) => {
      seen.push(before);
      return follow;
    });
    expect(seen).toEqual([statusWith()]);
  });

  it('without an effect in time is reported as such', async () => {
    await store.command('Run', reset, () => follow);
    await pass(10_000);
    expect(store.notice.value?.kind).toBe('waiting');
    await pass(1000);
    expect(said()).toEqual({
      kind: 'bad',
      text: 'Run: accepted, but the run has not begun within 10 s (state: Ready; automation: Idle).',
    });
    await pass(0);
  });

  it('has its limit to the hundredth of a second, answered or not', async () => {
    await store.command('Run', reset, () => ({ ...follow, limitSeconds: 9.995 }));
    await pass(9000);
    expect(store.notice.value?.kind).toBe('waiting');
    await pass(1000);
    expect(store.notice.value?.kind).toBe('bad');
    await store.command('Run', reset, () => follow);
    gateway.lose('/api/status');
    await pass(10_000);
    expect(store.notice.value?.kind).toBe('waiting');
  });

  it('that ends in an error is reported as failed', async () => {
    await store.command('Run', reset, () => follow);
    const broken = { GC_state: 'Error', Error_code: 502, Error_str: 'Bridge out of balance' };
    gateway.answer('/api/status', statusWith(broken));
    await pass(1000);
    expect(said()).toEqual({
      kind: 'bad',
      text: 'Run: the run has not begun: Bridge out of balance (error 502).',
    });
  });

  it('is still followed after missing answers', async () => {
    await store.command('Run', reset, () => follow);
    gateway.lose('/api/status');
    await pass(2000);
    expect(said()).toEqual({
      kind: 'waiting',
      text: 'Run: accepted. Waiting for the run to begin, but there is no answer at present.',
    });
    await pass(9000);
    expect(said()).toEqual({
      kind: 'bad',
      text: 'Run: accepted, but what became of it is not known: no answer has shown it within 10 s.',
    });
    gateway.answer('/api/status', running);
    await pass(5000);
    expect(store.notice.value?.kind).toBe('good');
  });

  it('reports nothing more once another one was given', async () => {
    const first = gateway.hold('/api/command/alarm-reset');
    void store.command('Reset', reset, () => follow);
    gateway.hold('/api/command/abort');
    void store.command('Abort', { method: 'POST', path: 'abort', body: {} });
    await pass(3000);
    expect(store.notice.value?.text).toBe(
      'Abort: no answer yet. If the browser asks who you are, sign in there.',
    );
    first({ ErrorCode: 207, Msg: 'Refused' }, 409);
    await pass(1000);
    expect(store.notice.value?.text).toMatch(/^Abort:/);
  });

  it('asks for no password when another one has been answered meanwhile', async () => {
    gateway.hold('/api/command/alarm-reset');
    void store.command('Reset', reset);
    await pass(1000);
    await store.command('Abort', { method: 'POST', path: 'abort', body: {} });
    await pass(2000);
    expect(store.notice.value?.text).toBe('Abort: accepted.');
  });

  it('ends the following of the previous one', async () => {
    await store.command('Run', reset, () => follow);
    gateway.hold('/api/command/abort');
    void store.command('Abort', { method: 'POST', path: 'abort', body: {} });
    gateway.answer('/api/status', running);
    await pass(1000);
    expect(store.notice.value?.text).toBe('Abort: being sent.');
  });
});

describe('a command before the first status', () => {
  it('is followed if it does not need one', async () => {
    await store.command('Run', reset, () => follow);
    expect(said()).toEqual({ kind: 'waiting', text: 'Run: accepted.' });
  });

  it('is not followed if it needs one', async () => {
    await store.command('Reset', reset, (before) => before && follow);
    expect(said()).toEqual({ kind: 'good', text: 'Reset: accepted.' });
  });
});

describe('a command with an unknown outcome', () => {
  const unknown = {
    outcome: 'unknown',
    title: 'Gateway Timeout',
    detail: 'The tool took too long.',
  };
  const doubt = 'The outcome of the command is not known. The tool took too long.';

  beforeEach(async () => {
    store.start();
    await pass(0);
    gateway.answer('/api/command/alarm-reset', unknown, 504);
  });

  it('is looked for in the status nevertheless', async () => {
    await store.command('Run', reset, () => follow);
    expect(said()).toEqual({ kind: 'waiting', text: `Run: ${doubt}` });
    await pass(0);
    expect(said()).toEqual({
      kind: 'waiting',
      text: `Run: ${doubt} Waiting for the run to begin (state: Ready; automation: Idle).`,
    });
    gateway.answer('/api/status', running);
    await pass(1000);
    expect(said()).toEqual({ kind: 'good', text: 'Run: the run has begun.' });
  });

  it('is reported as such when the status does not show its effect in time', async () => {
    await store.command('Run', reset, () => follow);
    await pass(11_000);
    expect(said()).toEqual({
      kind: 'bad',
      text: `Run: ${doubt} By the status the run has not begun within 10 s (state: Ready; automation: Idle).`,
    });
    // A later effect is seen nevertheless.
    gateway.answer('/api/status', running);
    await pass(5000);
    expect(said()?.kind).toBe('good');
  });

  it('may also be one without any answer', async () => {
    gateway.lose('/api/command/alarm-reset');
    await store.command('Run', reset, () => follow);
    expect(said()).toEqual({
      kind: 'waiting',
      text: 'Run: No answer came. The command may have been carried out: check the state. The connection failed.',
    });
  });

  it('is bad news if the status cannot show its effect', async () => {
    await store.command('Reset', reset);
    expect(said()).toEqual({ kind: 'bad', text: `Reset: ${doubt}` });
  });
});

describe('interrupted commands', () => {
  const begun = (id: string) => ({
    time: '2026-11-21T07:31:35Z',
    id,
    event: 'begun' as const,
    user: 'anna',
    address: '192.0.2.9',
    command: ['-P'],
  });
  const tell = (...ids: string[]): void => {
    const count: Record<string, string> =
      ids.length > 0 ? { 'X-GC-Interrupted': String(ids.length) } : {};
    gateway.answer('/api/status', statusWith(), 200, count);
    gateway.answer('/api/unfinished', { going_on: [], interrupted: ids.map(begun) });
  };
  const known = (): string[] => store.interruptions.value.map(({ id }) => id);

  it('are requested once when an answer mentions them', async () => {
    store.start();
    await pass(5000);
    expect(asked('/api/unfinished')).toBe(0);
    tell('one', 'two');
    await pass(5000);
    expect(known()).toEqual(['one', 'two']);
    await pass(5000);
    expect(asked('/api/unfinished')).toBe(1);
    tell();
    await pass(5000);
    expect(known()).toEqual([]);
  });

  it('are requested while the instrument is away, but not while there is no answer at all', async () => {
    tell('one');
    store.start();
    await pass(0);
    expect(known()).toEqual(['one']);
    gateway.lose('/api/status');
    await pass(5000);
    expect(known()).toEqual(['one']);
    expect(asked('/api/unfinished')).toBe(1);
    tell('one', 'two');
    gateway.answer('/api/status', {}, 503, { 'X-GC-Interrupted': '2' });
    await pass(5000);
    expect(known()).toEqual(['one', 'two']);
  });

  it('stay when they cannot be read', async () => {
    tell('one');
    store.start();
    await pass(0);
    tell('one', 'two');
    gateway.answer('/api/unfinished', {}, 500);
    await pass(5000);
    expect(known()).toEqual(['one']);
    gateway.answer('/api/unfinished', { going_on: [] });
    await pass(5000);
    expect(known()).toEqual(['one']);
  });

  it('are shown until they are acknowledged', async () => {
    tell('one');
    store.start();
    await pass(0);
    gateway.answer('/api/command/seen', null, 204);
    gateway.answer('/api/unfinished', { going_on: [], interrupted: [] });
    await store.takeNote(begun('one'));
    expect(gateway.of('/api/command/seen')).toEqual([
      { method: 'POST', path: '/api/command/seen', body: { id: 'one' } },
    ]);
    expect(known()).toEqual([]);
    expect(store.isSignedIn.value).toBe(true);
    expect(store.notice.value).toBeUndefined();
  });

  it('are no fault if somebody else has acknowledged them', async () => {
    gateway.answer('/api/command/seen', {}, 404);
    await store.takeNote(begun('one'));
    expect(store.notice.value).toBeUndefined();
    expect(asked('/api/unfinished')).toBe(1);
  });

  it('stay when acknowledging fails, with the reason', async () => {
    store.isSignedIn.value = true;
    gateway.answer('/api/command/seen', {}, 401);
    gateway.answer('/api/unfinished', { going_on: [], interrupted: [begun('one')] });
    await store.takeNote(begun('one'));
    expect(said()).toEqual({
      kind: 'bad',
      text: 'Interrupted command: You are not signed in. Nothing was done.',
    });
    expect(store.isSignedIn.value).toBe(false);
    expect(known()).toEqual(['one']);
  });
});

describe('signing in', () => {
  it('says what it waits for, and that it was successful', async () => {
    const answer = gateway.hold('/api/command/login');
    const signedIn = store.signIn();
    expect(said()).toEqual({
      kind: 'waiting',
      text: 'Signing in. The browser asks who you are.',
    });
    expect(store.isSignedIn.value).toBe(false);
    answer(null, 204);
    await signedIn;
    expect(said()).toEqual({
      kind: 'good',
      text: 'Signed in until the browser is closed.',
    });
    expect(store.isSignedIn.value).toBe(true);
    expect(gateway.requests).toEqual([{ method: 'POST', path: '/api/command/login', body: {} }]);
  });

  it('says why it failed', async () => {
    gateway.answer('/api/command/login', {}, 401);
    await store.signIn();
    expect(said()).toEqual({
      kind: 'bad',
      text: 'Sign in: You are not signed in. Nothing was done.',
    });
  });

  it.each([
    [204, true],
    [409, true],
    [503, true],
    [401, false],
    [403, false],
  ])('follows from any command: after HTTP %d it is %j', async (status, expected) => {
    store.isSignedIn.value = !expected;
    gateway.answer('/api/command/alarm-reset', status === 204 ? null : {}, status);
    await store.command('Reset', reset);
    expect(store.isSignedIn.value).toBe(expected);
  });

  it.each([true, false])(
    'does not change with a command without an answer: %j',
    async (isSignedIn) => {
      store.isSignedIn.value = isSignedIn;
      gateway.lose('/api/command/alarm-reset');
      await store.command('Reset', reset);
      expect(store.isSignedIn.value).toBe(isSignedIn);
    },
  );
});

describe('the last hour', () => {
  it('gets a sample with each answer', async () => {
    store.start();
    await pass(5000);
    expect(store.samples.value).toBe(2);
    expect(store.history.points('Ambient_temp')).toEqual({
      times: [1_700_000_000, 1_700_000_005],
      values: [23, 23],
    });
  });

  it('is kept for each instrument when the page is reloaded', async () => {
    store.start();
    await pass(0);
    page.dispatchEvent(new Event('pagehide'));
    await pass(1000);
    await open();
    store.start();
    await pass(0);
    await pass(5000);
    expect(store.history.points('Ambient_temp').times).toEqual([
      1_700_000_000, 1_700_000_001, 1_700_000_006,
    ]);
    await open();
    gateway.answer('/api/status', statusWith({ Application: 'Air' }));
    store.start();
    await pass(0);
    expect(store.history.points('Ambient_temp').times).toHaveLength(1);
  });

  it('continues without samples in the future after the clock was set back', async () => {
    store.start();
    await pass(0);
    page.dispatchEvent(new Event('pagehide'));
    vi.setSystemTime(1_700_000_000_000 - 60_000);
    await open();
    store.start();
    await pass(0);
    expect(store.history.points('').times).toEqual([1_699_999_940]);
  });

  it('has room for a sample every second, and for gaps', () => {
    for (let second = 0; second < 5000; second++) {
      store.history.add(second, new Map([['a', 1]]));
    }
    expect(store.history.points('a').times).toHaveLength(3601);
  });

  it('starts again in a browser that stores nothing', async () => {
    const refuse = (): never => {
      throw new Error('The quota has been exceeded.');
    };
    vi.stubGlobal('sessionStorage', { getItem: refuse, setItem: refuse });
    page.dispatchEvent(new Event('pagehide'));
    store.start();
    await pass(0);
    page.dispatchEvent(new Event('pagehide'));
    expect(store.status.value).toEqual(statusWith());
    expect(store.samples.value).toBe(1);
  });

  it('is not kept before there is an answer', () => {
    store.start();
    page.dispatchEvent(new Event('pagehide'));
    expect([...page.kept.keys()]).toEqual([]);
  });
});
