// The instrument's alarms, shared by all pages and the header.
import { computed, effect, signal } from '@preact/signals';
import { getReport, type Fault } from './api';
import type { Alarm, Alarms } from './documents';
import { isStale, status } from './store';

/** Milliseconds between two reports while an alarm is active. */
const interval = 60_000;

/** The latest report; dropped when the instrument or its overall alarm changes. */
export const alarms = signal<Alarms | undefined>(undefined);
/** Why there is no report, or no newer one. */
export const alarmsFault = signal<Fault | undefined>(undefined);
/** Number of the latest request; answers to earlier ones are ignored. */
let latest = 0;

/** Removes the number at the start of a text, which means nothing to the user. */
function withoutNumber(text: string): string {
  return text.replace(/^-?\d+\. /, '');
}

/** The alarm's name for the user. */
export function nameOf(alarm: Alarm): string {
  const group = withoutNumber(alarm.GroupStr);
  const parameter = alarm.ParamStr === '--' ? group : withoutNumber(alarm.ParamStr);
  return group === parameter ? group : `${group}: ${parameter}`;
}

export const activeAlarms = computed(() =>
  (alarms.value?.rows ?? []).filter(({ Triggered }) => Triggered),
);

/** What is known of the active alarms, for everything that names them. */
export type AlarmSummary =
  | { kind: 'unknown' }
  | { kind: 'none' }
  /** There is an alarm; the report that names it has not arrived yet. */
  | { kind: 'asking' }
  /** There is an alarm, but the report could not be read. */
  | { kind: 'unnamed'; fault: Fault }
  /** There is an alarm; the report may be incomplete or out of date, so `names` may be empty. */
  | { kind: 'named'; names: string[]; isWhole: boolean; fault: Fault | undefined };

export const alarmSummary = computed<AlarmSummary>(() => {
  if (!status.value) {
    return { kind: 'unknown' };
  }
  if (!status.value.Alarm_overall) {
    return { kind: 'none' };
  }
  const fault = alarmsFault.value;
  if (!alarms.value) {
    return fault ? { kind: 'unnamed', fault } : { kind: 'asking' };
  }
  const { rows = [], total } = alarms.value;
  const names = activeAlarms.value.map(nameOf);
  return { kind: 'named', names, isWhole: total <= rows.length, fault };
});

/** Requests the report; undefined if it could not be read. */
export async function loadAlarms(): Promise<Alarms | undefined> {
  const number = ++latest;
  const answer = await getReport<Alarms>('/api/alarms', 'total');
  if (number === latest) {
    alarms.value = answer.ok ? answer.value : alarms.value;
    alarmsFault.value = answer.ok ? undefined : answer.fault;
  }
  return answer.ok ? answer.value : undefined;
}

/** Drops the report, which no longer applies, and any answer still to come. */
function forgetAlarms(): void {
  latest++;
  alarms.value = undefined;
  alarmsFault.value = undefined;
}

/** The instrument and the alarm state that the report belongs to. */
const subject = computed(() =>
  status.value ? `${status.value.Application} ${status.value.Alarm_overall}` : undefined,
);

/** Requests the report whenever it may have changed, until the returned function is called. */
export function watchAlarms(): () => void {
  let isFirst = true;
  const stop = effect(() => {
    if (subject.value === undefined) {
      return;
    }
    const isAlarm = status.peek()!.Alarm_overall;
    if (!isFirst) {
      forgetAlarms();
    }
    // Without an alarm at the start, only the Alarms page needs the table, and requests it itself.
    if (isAlarm || !isFirst) {
      void loadAlarms();
    }
    isFirst = false;
  });
  const stopReturn = effect(() => {
    // The instrument answers again: retry a report that could not be read.
    if (!isStale.value && alarmsFault.peek()) {
      void loadAlarms();
    }
  });
  const timer = setInterval(() => {
    if (status.value?.Alarm_overall) {
      void loadAlarms();
    }
  }, interval);
  return () => {
    stop();
    stopReturn();
    clearInterval(timer);
  };
}
