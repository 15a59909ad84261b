// @vitest-environment happy-dom
import { act } from 'preact/test-utils';
import { afterEach, beforeEach, describe, expect, it, vi } from 'vitest';
import {
  activeAlarms,
  alarms,
  alarmsFault,
  alarmSummary,
  loadAlarms,
  nameOf,
  watchAlarms,
} from '../src/alarms';
import { ActiveAlarms } from '../src/components/ActiveAlarms';
import type { Alarm, Alarms } from '../src/documents';
import { load, statusWith } from './documents';
import { settle, show, textOf, textsOf } from './dom';
import type { Gateway } from './gateway';
import { arrange, clear, setAge, setStatus } from './world';

const table = load<Alarms>('docs/schemas/examples/alarms.json');
const activeAt = (...places: number[]): Alarms => ({
  ...table,
  rows: table.rows!.map((row, index) => ({ ...row, Triggered: places.includes(index) })),
});
const alarmed = statusWith({ Alarm_overall: true });

let gateway: Gateway;
let stop = (): void => undefined;
const ask = (): Promise<void> => act(async () => void (await loadAlarms()));
const asked = (): number => gateway.of('/api/alarms').length;

beforeEach(async () => {
  gateway = await arrange();
  gateway.answer('/api/alarms', activeAt(1, 3));
  alarms.value = undefined;
  alarmsFault.value = undefined;
});
afterEach(async () => {
  stop();
  vi.useRealTimers();
  await clear();
});

describe('the report of alarms', () => {
  it('is asked for when an alarm comes and goes, and not for every status', async () => {
    stop = watchAlarms();
    await settle();
    expect(asked()).toBe(0);
    await setStatus(alarmed);
    await settle();
    expect(asked()).toBe(1);
    expect(activeAlarms.value).toHaveLength(2);
    await setStatus({ ...alarmed, Run_time: 1 });
    await settle();
    expect(asked()).toBe(1);
    await setStatus(statusWith());
    expect(alarms.value).toBeUndefined();
    await settle();
    expect(asked()).toBe(2);
  });

  it('is asked for at once by who comes to an alarm, and of another instrument', async () => {
    await setStatus(alarmed);
    stop = watchAlarms();
    await settle();
    expect(asked()).toBe(1);
    await setStatus({ ...alarmed, Application: 'Another one' });
    expect(alarms.value).toBeUndefined();
    await settle();
    expect(asked()).toBe(2);
  });

  it('is asked for every minute while an alarm is active, seen or not', async () => {
    vi.useFakeTimers();
    await setStatus(alarmed);
    stop = watchAlarms();
    await vi.advanceTimersByTimeAsync(59_000);
    expect(asked()).toBe(1);
    await vi.advanceTimersByTimeAsync(1_000);
    expect(asked()).toBe(2);
    await setStatus(statusWith());
    await vi.advanceTimersByTimeAsync(60_000);
    expect(asked()).toBe(3);
    stop();
    await setStatus(alarmed);
    await vi.advanceTimersByTimeAsync(60_000);
    expect(asked()).toBe(3);
  });

  it('is asked for again when the instrument comes back, if it was not to be had', async () => {
    gateway.answer('/api/alarms', {}, 503);
    await setStatus(alarmed);
    stop = watchAlarms();
    await settle();
    await setAge(60);
    await settle();
    expect(asked()).toBe(1);
    gateway.answer('/api/alarms', activeAt(1));
    await setAge(0);
    await settle();
    expect(asked()).toBe(2);
    expect(alarmsFault.value).toBeUndefined();
  });

  it('is the one that was asked for last, whichever is answered last', async () => {
    const answer = gateway.hold('/api/alarms');
    const first = loadAlarms();
    gateway.answer('/api/alarms', activeAt(0));
    expect(await loadAlarms()).toEqual(activeAt(0));
    answer(activeAt(2));
    expect(await first).toEqual(activeAt(2));
    expect(alarms.value).toEqual(activeAt(0));
  });

  it('does not outlive the alarm that it was asked for', async () => {
    const answer = gateway.hold('/api/alarms');
    await setStatus(alarmed);
    stop = watchAlarms();
    gateway.answer('/api/alarms', activeAt());
    await setStatus(statusWith());
    await settle();
    await act(() => answer(activeAt(1)));
    await settle();
    expect(activeAlarms.value).toEqual([]);
  });
});

describe('a name', () => {
  it.each([
    ['8. GC Status', '12. Instrument Error', 'GC Status: Instrument Error'],
    ['10. Any Alarm', '--', 'Any Alarm'],
    ['11. Verification', '0. Verification', 'Verification'],
    ['2. NORM Amounts', '-1. n. 5. x', 'NORM Amounts: n. 5. x'],
    ['Unknown', '3.4', 'Unknown: 3.4'],
  ])('of %s and %s', (GroupStr, ParamStr, name) => {
    expect(nameOf({ ...table.rows![0]!, GroupStr, ParamStr } as Alarm)).toBe(name);
  });
});

describe('what is watched', () => {
  it('is not watched any more after its end', async () => {
    gateway.answer('/api/alarms', {}, 503);
    await setStatus(alarmed);
    stop = watchAlarms();
    await settle();
    await setAge(60);
    stop();
    await setAge(0);
    await settle();
    expect(asked()).toBe(1);
  });

  it('is summed up as one', async () => {
    expect(alarmSummary.value).toEqual({ kind: 'none' });
    await setStatus(alarmed);
    expect(alarmSummary.value).toEqual({ kind: 'asking' });
    alarms.value = { total: 0 };
    expect(alarmSummary.value).toMatchObject({ kind: 'named', names: [], isWhole: true });
    alarms.value = { ...activeAt(1), total: 5 };
    expect(alarmSummary.value).toMatchObject({ names: ['GC Status: Cabinet Temperature'] });
    expect(alarmSummary.value).toMatchObject({ isWhole: true, fault: undefined });
    alarms.value = { ...activeAt(1), total: 6 };
    expect(alarmSummary.value).toMatchObject({ isWhole: false });
    await setStatus(undefined);
    expect(alarmSummary.value).toEqual({ kind: 'unknown' });
  });
});

describe('active alarms', () => {
  it('are none while there is no alarm, whatever a report says', async () => {
    alarms.value = activeAt(1);
    await show(<ActiveAlarms />);
    expect(textOf(document.body)).toBe('');
    await setStatus(undefined);
    expect(textOf(document.body)).toBe('');
  });

  it('are named', async () => {
    await setStatus(alarmed);
    await show(<ActiveAlarms />);
    expect(textOf(document.body)).toBe('Reading which alarms are active.');
    await ask();
    expect(textsOf('li')).toEqual(['GC Status: Cabinet Temperature', 'NORM Amounts: Methane']);
  });

  it('keep their names while a newer report is not to be had, and say so if there is none', async () => {
    gateway.answer('/api/alarms', { title: 'No way' }, 503);
    await setStatus(alarmed);
    await show(<ActiveAlarms />);
    await ask();
    expect(textOf(document.body)).toBe(
      'Which alarms are active is not known: The instrument is not reachable. No way.',
    );
    gateway.answer('/api/alarms', activeAt(1));
    await ask();
    expect(textsOf('li')).toEqual(['GC Status: Cabinet Temperature']);
    expect(textsOf('p')).toEqual([]);
    gateway.lose('/api/alarms');
    await ask();
    expect(textsOf('li')).toEqual(['GC Status: Cabinet Temperature']);
    expect(textsOf('p')).toEqual([
      'This may have changed: The web server does not answer. The connection failed.',
    ]);
  });

  it('are never said to be none under the sign', async () => {
    gateway.answer('/api/alarms', activeAt());
    await setStatus(alarmed);
    await show(<ActiveAlarms />);
    await ask();
    expect(textOf(document.body)).toMatch(/^The alarm table names none at present/);
    gateway.answer('/api/alarms', { ...activeAt(), total: 40 });
    await ask();
    expect(textOf(document.body)).toMatch(/^None of the alarms that can be shown/);
  });
});
