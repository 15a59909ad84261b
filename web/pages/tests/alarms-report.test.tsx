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

describe('the alarm report', () => {
  it('is requested when an alarm comes and goes, but not for every status', async () => {
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

  it('is requested at once if an alarm is already active, and again for another instrument', async () => {
    await setStatus(alarmed);
    stop = watchAlarms();
    await settle();
    expect(asked()).toBe(1);
    await setStatus({ ...alarmed, Application: 'Another one' });
    expect(alarms.value).toBeUndefined();
    await settle();
    expect(asked()).toBe(2);
  });

  it('is requested every minute while an alarm is active, even in a hidden page', async () => {
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

  it('is requested again when the instrument comes back, if it could not be read', async () => {
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

  it('is the one requested last, whichever is answered last', async () => {
    const answer = gateway.hold('/api/alarms');
    const first = loadAlarms();
    gateway.answer('/api/alarms', activeAt(0));
    expect(await loadAlarms()).toEqual(activeAt(0));
    answer(activeAt(2));
    expect(await first).toEqual(activeAt(2));
    expect(alarms.value).toEqual(activeAt(0));
  });

  it('is dropped when its alarm ends, even if the answer is still to come', async () => {
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

describe('the name of an alarm', () => {
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

describe('watching the alarms', () => {
  it('ends when it is stopped', async () => {
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

  it('is summarized for the lists', async () => {
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

describe('the list of active alarms', () => {
  it('is empty while there is no alarm, whatever a report says', async () => {
    alarms.value = activeAt(1);
    await show(<ActiveAlarms />);
    expect(textOf(document.body)).toBe('');
    await setStatus(undefined);
    expect(textOf(document.body)).toBe('');
  });

  it('names them', async () => {
    await setStatus(alarmed);
    await show(<ActiveAlarms />);
    expect(textOf(document.body)).toBe('Reading which alarms are active.');
    await ask();
    expect(textsOf('li')).toEqual(['GC Status: Cabinet Temperature', 'NORM Amounts: Methane']);
  });

  it('keeps the names while a newer report cannot be read, and says so if there is none', async () => {
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

  it('never says that there is none while the alarm sign is on', async () => {
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
