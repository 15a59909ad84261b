// @vitest-environment happy-dom
import { act } from 'preact/test-utils';
import { afterEach, beforeEach, describe, expect, it, vi } from 'vitest';
import type { Alarm, Alarms } from '../src/documents';
import { AlarmsPage } from '../src/pages/Alarms';
import { alarms, alarmsFault, loadAlarms } from '../src/alarms';
import { takeStatus } from '../src/notices';
import { returns, statusFault } from '../src/store';
import { load, statusWith } from './documents';
import { find, press, reasonOf, rowsOf, settle, show, textOf, textsOf } from './dom';
import type { Gateway } from './gateway';
import { arrange, clear, said, setAge, setHidden, setStatus } from './world';

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
  alarms.value = undefined;
  alarmsFault.value = undefined;
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

describe('the alarms page', () => {
  it('shows the alarms, the active ones first', async () => {
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

  it('shows one table when none is active', async () => {
    await open();
    expect(textsOf('h2')).toEqual(['Active (0)', 'Not active (5)']);
    expect(document.querySelectorAll('table')).toHaveLength(1);
    expect(reasonOf('Reset all alarms…')).toBe('No alarm is active.');
  });

  it('shows an alarm whose parameter does not exist', async () => {
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
  ])('says how many there are: %#', async (alarms, texts) => {
    await open(alarms);
    expect(textsOf('p')).toEqual(texts);
    expect(textsOf('h2')).toHaveLength('rows' in alarms && alarms.rows!.length > 0 ? 2 : 0);
  });

  it('shows none before the first answer', async () => {
    gateway.hold('/api/alarms');
    await show(<AlarmsPage />);
    await settle();
    expect(textsOf('p, h2')).toEqual([]);
  });
});

describe('requesting alarms', () => {
  it('happens every 15 s while the page is visible', async () => {
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

  it('happens when the instrument comes back', async () => {
    await open();
    await act(() => {
      returns.value++;
    });
    await settle();
    expect(asked()).toBe(2);
  });

  it('keeps the last ones when it fails, and says why', async () => {
    await open();
    gateway.answer('/api/alarms', {}, 503);
    await act(async () => void (await loadAlarms()));
    expect(textsOf('[role=alert] p')).toEqual(['The instrument is not reachable.']);
    expect(textsOf('h2')).toEqual(['Active (0)', 'Not active (5)']);
    await act(() => {
      statusFault.value = { status: 503, text: 'The instrument is not reachable.', detail: '' };
    });
    expect(textsOf('[role=alert] p')).toEqual([]);
    statusFault.value = undefined;
    gateway.answer('/api/alarms', example);
    await act(async () => void (await loadAlarms()));
    expect(textsOf('[role=alert] p')).toEqual([]);
  });

  it('accepts no other document', async () => {
    await open({ rows: [] });
    expect(textsOf('[role=alert] p')).toEqual([
      'The answer is not what was requested. /api/alarms.',
    ]);
  });
});

describe('an alarm sign that is ahead of the report', () => {
  it('is not contradicted', async () => {
    await setStatus(statusWith({ Alarm_overall: true }));
    await open();
    expect(textsOf('h2')).toEqual(['Not active (5)']);
    expect(textsOf('p[role=status]')).toEqual([
      'The instrument reports an alarm, but its table does not name one yet.',
    ]);
    expect(reasonOf('Reset all alarms…')).toBe('');
    await act(async () => {
      alarms.value = { ...example, total: 40 };
    });
    expect(textsOf('p[role=status]')).toEqual([
      'None of the alarms that can be shown is active: it is one further down the table.',
    ]);
    await act(async () => {
      alarms.value = { total: 0 };
    });
    expect(textOf(find('body'))).not.toContain('No alarm is defined');
    await setStatus(statusWith());
    expect(textOf(find('body'))).toContain('No alarm is defined');
  });
});

describe('the reset', () => {
  const outcome = (): string | undefined => said()?.text;

  it('is disabled only if status and report say that there is nothing to reset', async () => {
    const answer = gateway.hold('/api/alarms');
    await show(<AlarmsPage />);
    expect(reasonOf('Reset all alarms…')).toBe('The alarms are being read.');
    answer(example);
    await settle();
    expect(reasonOf('Reset all alarms…')).toBe('No alarm is active.');
    await setStatus(statusWith({ Alarm_overall: true }));
    expect(reasonOf('Reset all alarms…')).toBe('');
    await setStatus(statusWith());
    expect(reasonOf('Reset all alarms…')).toBe('No alarm is active.');
    await setAge(60);
    expect(reasonOf('Reset all alarms…')).toBe('');
  });

  it('is possible when the report cannot be read', async () => {
    gateway.answer('/api/alarms', {}, 502);
    await show(<AlarmsPage />);
    await settle();
    expect(reasonOf('Reset all alarms…')).toBe('');
    await press('Reset all alarms…');
    expect(textsOf('dialog p')).toEqual([
      'It is not known which alarms are active. All are reset.',
      'An alarm whose cause persists comes back at once.',
    ]);
  });

  it('asks first, and names what will be reset', async () => {
    const odd = [
      { ...example.rows![0]!, GroupStr: '-1. Odd', ParamStr: '--', Triggered: true },
      { ...example.rows![0]!, GroupStr: '3. Same', ParamStr: '0. Same', Triggered: true },
      { ...example.rows![0]!, GroupStr: 'Peak 10. A', ParamStr: '12. B', Triggered: true },
    ] as unknown as Alarm[];
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

  it('is sent and followed, and the alarms are requested again', async () => {
    await setStatus(statusWith({ Alarm_overall: true }));
    await open(withActive(1));
    await reset(withActive());
    expect(gateway.of('/api/command/alarm-reset')).toEqual([
      { method: 'POST', path: '/api/command/alarm-reset', body: {} },
    ]);
    expect(document.querySelector('dialog')).toBeNull();
    expect(said()).toEqual({ kind: 'waiting', text: 'Reset of all alarms: accepted.' });
    expect(asked()).toBe(2);
    const moment = Date.now();
    await act(() => takeStatus(statusWith(), moment));
    expect(said()).toEqual({ kind: 'good', text: 'Reset of all alarms: no alarm is active.' });
    // Removed as soon as there is another notice.
    await act(() => takeStatus(statusWith({ Alarm_overall: true }), moment));
    expect(said()).toBeUndefined();
  });

  it('names the alarms that came back, until they end', async () => {
    await setStatus(statusWith({ Alarm_overall: true }));
    await open(withActive(1, 3));
    await reset(withActive(1, 3));
    expect(said()).toEqual({
      kind: 'bad',
      text: 'Reset of all alarms: accepted. Still active, because the cause persists: GC Status: Cabinet Temperature; NORM Amounts: Methane.',
    });
    await act(() => takeStatus(statusWith({ Alarm_overall: true }), Date.now()));
    expect(outcome()).toMatch(/Still active/);
    await act(() => takeStatus(statusWith(), Date.now()));
    expect(outcome()).toBeUndefined();
  });

  it('claims nothing if it is unknown which alarms came back', async () => {
    await open(withActive(1));
    await press('Reset all alarms…');
    gateway.lose('/api/alarms');
    await press('Reset');
    await settle();
    expect(outcome()).toBe('Reset of all alarms: accepted.');
  });

  it('reports a refusal, and the alarms are requested nevertheless', async () => {
    await open(withActive(1));
    gateway.answer('/api/command/alarm-reset', {}, 409);
    await reset(withActive(1));
    expect(outcome()).toBe('Reset of all alarms: The gateway rejected the command.');
    expect(asked()).toBe(2);
  });
});
