// @vitest-environment happy-dom
import { act } from 'preact/test-utils';
import { afterEach, beforeEach, describe, expect, it, vi } from 'vitest';
import type { Alarm, Alarms } from '../src/documents';
import { AlarmsPage } from '../src/pages/Alarms';
import { statusFault } from '../src/store';
import { load, statusWith } from './documents';
import { find, press, reasonOf, rowsOf, settle, show, textOf, textsOf } from './dom';
import type { Gateway } from './gateway';
import { arrange, clear, said, setHidden, setStatus } from './world';

let gateway: Gateway;
const example = load<Alarms>('docs/schemas/examples/alarms.json');
const asked = (): number => gateway.of('/api/alarms').length;
const withActive = (...places: number[]): Alarms => ({
  ...example,
  rows: example.rows!.map((row, n) => ({ ...row, Triggered: places.includes(n) })),
});

beforeEach(async () => {
  vi.useFakeTimers();
  gateway = await arrange();
});
afterEach(async () => {
  await clear();
  vi.useRealTimers();
});

async function open(alarms: unknown = example): Promise<void> {
  gateway.answer('/api/alarms', alarms);
  await show(<AlarmsPage />);
  await settle();
}

async function reset(after: Alarms): Promise<void> {
  await press('Reset all alarms…');
  gateway.answer('/api/alarms', after);
  await press('Reset');
  await settle();
}

describe('the alarms', () => {
  it('are shown, the active ones first', async () => {
    await open(withActive(1, 3));
    expect(textsOf('h2')).toEqual(['Active (2)', 'Not active (3)']);
    const head = ['State', 'Group', 'Alarm', 'Runs watched'];
    expect(rowsOf('[aria-labelledby=active] table')).toEqual([
      head,
      ['active', '8. GC Status', '2. Cabinet Temperature', 'All'],
      ['active', '2. NORM Amounts', '2. Methane', 'Analysis'],
    ]);
    expect(rowsOf('[aria-labelledby=others] table')).toEqual([
      head,
      ['not active', '8. GC Status', '1. Instrument Error', 'All'],
      ['not active', '8. GC Status', '3. Ambient Pressure', 'All'],
      ['not active', '11. Verification Failure', '0. Verification failure', 'Verification'],
    ]);
    expect(find('[aria-labelledby=active] td').className).toBe('deviation off');
    expect(find('[aria-labelledby=others] td').className).toBe('');
    expect(textsOf('p')).toEqual([]);
  });

  it('without any active have one table', async () => {
    await open();
    expect(textsOf('h2')).toEqual(['Active (0)', 'Not active (5)']);
    expect(document.querySelectorAll('table')).toHaveLength(1);
    expect(reasonOf('Reset all alarms…')).toBe('No alarm is active.');
  });

  it('may name a parameter that there is not', async () => {
    await open({ total: 1, rows: [{ ...example.rows![0]!, ParamStr: '--' }] });
    expect(textsOf('td.text')).toEqual(['no such parameter']);
  });

  it.each([
    [{ total: 0 }, ['No alarm is defined, or alarms are switched off.']],
    [{ total: 4, rows: [] }, ['No alarm is defined, or alarms are switched off.']],
    [{ ...example, total: 40 }, ['The instrument has 40 alarms; the first 5 are shown.']],
    [
      { total: 2, rows: example.rows!.slice(0, 1) },
      ['The instrument has 2 alarms; the first 1 are shown.'],
    ],
    [example, []],
  ])('in number: %#', async (alarms, texts) => {
    await open(alarms);
    expect(textsOf('p')).toEqual(texts);
    expect(textsOf('h2')).toHaveLength('rows' in alarms && alarms.rows!.length > 0 ? 2 : 0);
  });

  it('are not there before the first answer', async () => {
    gateway.hold('/api/alarms');
    await show(<AlarmsPage />);
    await settle();
    expect(textsOf('p, h2')).toEqual([]);
  });
});

describe('asking for alarms', () => {
  it('happens every 15 s while the page is seen', async () => {
    await open();
    expect(gateway.requests).toEqual([{ method: 'GET', path: '/api/alarms' }]);
    await act(async () => void (await vi.advanceTimersByTimeAsync(30_000)));
    expect(asked()).toBe(1);
    setHidden(false);
    await act(async () => void (await vi.advanceTimersByTimeAsync(14_999)));
    expect(asked()).toBe(1);
    await act(async () => void (await vi.advanceTimersByTimeAsync(1)));
    expect(asked()).toBe(2);
    await show(null);
    await vi.advanceTimersByTimeAsync(60_000);
    expect(asked()).toBe(2);
  });

  it('happens when the overall alarm comes or goes, and with no other status', async () => {
    await open();
    await setStatus(statusWith({ Alarm_overall: true }));
    await settle();
    expect(asked()).toBe(2);
    await setStatus(statusWith({ Alarm_overall: true, Run_time: 4 }));
    await settle();
    expect(asked()).toBe(2);
    await setStatus(undefined);
    await settle();
    expect(asked()).toBe(3);
  });

  it('that fails leaves the last ones, and says why', async () => {
    await open();
    gateway.answer('/api/alarms', {}, 503);
    await setStatus(statusWith({ Alarm_overall: true }));
    await settle();
    expect(textsOf('[role=alert] p')).toEqual(['The instrument is not reachable.']);
    expect(textsOf('h2')).toEqual(['Active (0)', 'Not active (5)']);
    await act(() => {
      statusFault.value = { status: 503, text: 'The instrument is not reachable.', detail: '' };
    });
    expect(textsOf('[role=alert] p')).toEqual([]);
    statusFault.value = undefined;
    gateway.answer('/api/alarms', example);
    await setStatus(statusWith());
    await settle();
    expect(textsOf('[role=alert] p')).toEqual([]);
  });

  it('shows the latest request, whichever is answered last', async () => {
    const first = gateway.hold('/api/alarms');
    await show(<AlarmsPage />);
    gateway.answer('/api/alarms', withActive(0));
    await setStatus(statusWith({ Alarm_overall: true }));
    await settle();
    first(example);
    await settle();
    expect(textsOf('h2')).toEqual(['Active (1)', 'Not active (4)']);
  });

  it('takes no other document for it', async () => {
    await open({ rows: [] });
    expect(textsOf('[role=alert] p')).toEqual([
      'The answer is not what was asked for. /api/alarms.',
    ]);
  });
});

describe('the reset', () => {
  const outcome = (): string => textOf(find('[data-testid=reset-outcome]'));

  it('asks, and names what will be reset', async () => {
    const odd: Alarm[] = [
      { ...example.rows![0]!, GroupStr: '-1. Odd', ParamStr: '--', Triggered: true },
      { ...example.rows![0]!, GroupStr: '3. Same', ParamStr: '0. Same', Triggered: true },
      { ...example.rows![0]!, GroupStr: 'Peak 10. A', ParamStr: '12. B', Triggered: true },
    ];
    await open({ total: 4, rows: [...withActive(3).rows!.slice(3, 4), ...odd] });
    expect(reasonOf('Reset all alarms…')).toBe('');
    await press('Reset all alarms…');
    expect(textOf(find('dialog h2'))).toBe('Reset all alarms?');
    expect(textsOf('dialog p')).toEqual([
      'These are active and will be reset:',
      'An alarm whose cause persists comes back at once.',
    ]);
    expect(textsOf('dialog li')).toEqual(['NORM Amounts: Methane', 'Odd', 'Same', 'Peak 10. A: B']);
    await press('Cancel');
    expect(document.querySelector('dialog')).toBeNull();
    expect(gateway.of('/api/command/alarm-reset')).toEqual([]);
  });

  it('is sent, and the alarms asked for again', async () => {
    await open(withActive(1));
    await reset(withActive());
    expect(gateway.of('/api/command/alarm-reset')).toEqual([
      { method: 'POST', path: '/api/command/alarm-reset', body: {} },
    ]);
    expect(document.querySelector('dialog')).toBeNull();
    expect(said()).toEqual({ kind: 'good', text: 'Reset of all alarms: accepted.' });
    expect(asked()).toBe(2);
    expect(find('[data-testid=reset-outcome]').getAttribute('role')).toBe('status');
    expect(outcome()).toBe('All alarms are reset, and none came back.');
    expect(find('[data-testid=reset-outcome] p').className).toBe('message good');
    expect(textsOf('h2')).toEqual(['Active (0)', 'Not active (5)']);
  });

  it('names the alarms that came back', async () => {
    await open(withActive(1, 3));
    await reset(withActive(1, 3));
    expect(outcome()).toBe(
      'Still active after the reset, because the cause persists: GC Status: Cabinet Temperature; NORM Amounts: Methane.',
    );
    expect(find('[data-testid=reset-outcome] p').className).toBe('message bad');
    const answer = gateway.hold('/api/command/alarm-reset');
    await press('Reset all alarms…');
    await press('Reset');
    expect(outcome()).toBe('');
    answer({ ErrorCode: 0, Msg: 'Accepted' });
    await settle();
    expect(outcome()).toMatch(/^Still active/);
  });

  it('of which nobody knows what came back says nothing', async () => {
    await open(withActive(1));
    await press('Reset all alarms…');
    gateway.lose('/api/alarms');
    await press('Reset');
    await settle();
    expect(outcome()).toBe('');
  });

  it('that left an empty table has reset them all', async () => {
    await open(withActive(1));
    await reset({ total: 0 });
    expect(outcome()).toBe('All alarms are reset, and none came back.');
  });

  it('that was refused has no outcome, and the alarms are asked for all the same', async () => {
    await open(withActive(1));
    gateway.answer('/api/command/alarm-reset', {}, 409);
    await reset(withActive(1));
    expect(outcome()).toBe('');
    expect(asked()).toBe(2);
  });
});
