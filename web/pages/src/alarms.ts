// The instrument's alarms, which all pages and the sign in the top share.
import { computed, effect, signal } from '@preact/signals';
import { getReport, type Fault } from './api';
import type { Alarm, Alarms } from './documents';
import { isStale, status } from './store';

/** Milliseconds between two reports while an alarm is active. */
const interval = 60_000;

/** The latest report; it is dropped when the instrument says something else. */
export const alarms = signal<Alarms | undefined>(undefined);
/** Why there is no report, or no newer one. */
export const alarmsFault = signal<Fault | undefined>(undefined);
/** The only one of these requests whose answer still counts. */
let latest = 0;

/** The texts begin with their numbers, which say nothing to a reader. */
function withoutNumber(text: string): string {
  return text.replace(/^-?\d+\. /, '');
}

/** What a person calls it. */
export function nameOf(alarm: Alarm): string {
  const group = withoutNumber(alarm.GroupStr);
  const parameter = alarm.ParamStr === '--' ? group : withoutNumber(alarm.ParamStr);
  return group === parameter ? group : `${group}: ${parameter}`;
}

export const activeAlarms = computed(() =>
  (alarms.value?.rows ?? []).filter(({ Triggered }) => Triggered),
);

/** What sign and lists say: none of them looks at anything else. */
export type AlarmSummary =
  | { kind: 'unknown' }
  | { kind: 'none' }
  /** There is an alarm; which, is not known yet. */
  | { kind: 'asking' }
  /** There is an alarm, and the report cannot be had. */
  | { kind: 'unnamed'; fault: Fault }
  /** There is an alarm; the table may name none of those that are active, and be an older one. */
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

/** Asks for the report; undefined if it was not to be had. */
export async function loadAlarms(): Promise<Alarms | undefined> {
  const number = ++latest;
  const answer = await getReport<Alarms>('/api/alarms', 'total');
  if (number === latest) {
    alarms.value = answer.ok ? answer.value : alarms.value;
    alarmsFault.value = answer.ok ? undefined : answer.fault;
  }
  return answer.ok ? answer.value : undefined;
}

/** What was reported is not so any more. */
function forgetAlarms(): void {
  latest++;
  alarms.value = undefined;
  alarmsFault.value = undefined;
}

/** What the report belongs to. */
const subject = computed(() =>
  status.value ? `${status.value.Application} ${status.value.Alarm_overall}` : undefined,
);

/** Asks whenever there is reason to, until the returned function is called. */
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
    // Nobody asks which alarms are not active, but who has the table in front.
    if (isAlarm || !isFirst) {
      void loadAlarms();
    }
    isFirst = false;
  });
  const stopReturn = effect(() => {
    // It was away, or this page was: what could not be had may be there again.
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
