// Contact with the instrument: its status, the age of the status, and its configuration.
import { computed, signal } from '@preact/signals';
import { everyFewSeconds } from './background';
import { getReport, timeLimits, type Answer, type Fault } from './api';
import type { Configuration, Status } from './documents';
import { History, historySeconds, measurementsOf } from './history';
import { createPoller } from './poller';
import { isOtherInstrument, isRunning } from './states';

/** Seconds between two requests for the status. */
const intervals = { running: 1, quiet: 5, hidden: 10 } as const;

/** Number of intervals or requests without a good answer after which the values are stale. */
const staleIntervals = 3;

export const status = signal<Status | undefined>(undefined);
/** When the status shown was read, in milliseconds; 0 before the first one. */
export const statusTime = signal(0);
/** Why the latest request for the status failed; the last values stay. */
export const statusFault = signal<Fault | undefined>(undefined);
/** The current time in milliseconds, updated every second, or every few seconds in a hidden page. */
export const now = signal(Date.now());
export const configuration = signal<Configuration | undefined>(undefined);
/** Counts the samples added to `history`, which is not a signal itself. */
export const samples = signal(0);
/** Room for one sample a second, and for the gaps. */
export const history = new History(historySeconds + 400);
/** Whether the effect of a command is awaited. */
export const isAwaited = signal(false);
/** How many times the instrument has come back after it, or the web server, was away. */
export const returns = signal(0);

const intervalSeconds = computed(() =>
  (status.value && isRunning(status.value)) || isAwaited.value
    ? intervals.running
    : intervals.quiet,
);

export const ageSeconds = computed(() =>
  statusTime.value === 0 ? Infinity : Math.max(0, (now.value - statusTime.value) / 1000),
);

/** The interval chosen after the latest answer. */
const planned = signal<number>(intervals.quiet);

/**
 * How long the latest good answers took: values are not stale while a slow answer is on its way.
 * Several are kept, as the gateway repeats an answer for a second without any delay.
 */
const answerSeconds = signal<readonly number[]>([]);

/** Number of successive requests without a good answer. */
const missed = signal(0);

export const isStale = computed(
  () =>
    missed.value >= staleIntervals ||
    ageSeconds.value > staleIntervals * planned.value + Math.max(0, ...answerSeconds.value),
);

/** When the last good status was read, in milliseconds; undefined unless the values are stale. */
export const lostSince = computed(() =>
  isStale.value && statusTime.value > 0 ? statusTime.value : undefined,
);

/** The status; undefined while it is stale. */
export const knownStatus = computed(() => (isStale.value ? undefined : status.value));

const listeners: ((answer: Answer<Status>) => void)[] = [];

/** Reports every answer to a request for the status, after the signals are updated. */
export function onAnswer(listener: (answer: Answer<Status>) => void): void {
  listeners.push(listener);
}

function takeStatus(answer: Answer<Status>, seconds: number): void {
  now.value = Date.now();
  if (answer.ok) {
    takeGood(answer.value, answer.ageSeconds, seconds);
  } else {
    statusFault.value = answer.fault;
    missed.value++;
  }
  listeners.forEach((listener) => listener(answer));
}

function takeGood(current: Status, age: number, seconds: number): void {
  missed.value = 0;
  answerSeconds.value = [seconds, ...answerSeconds.value].slice(0, 4);
  const wasLost = statusFault.value !== undefined;
  if (status.value && isOtherInstrument(status.value, current)) {
    configuration.value = undefined;
  }
  status.value = current;
  statusTime.value = now.value - age * 1000;
  statusFault.value = undefined;
  if (!configuration.value || wasLost) {
    // The instrument may have been away when the page was opened, or may have come back changed.
    void loadConfiguration();
  }
  if (wasLost) {
    returns.value++;
  }
  if (samples.value === 0) {
    restoreHistory(current);
  }
  history.add(now.value / 1000, measurementsOf(current));
  samples.value++;
}

const poller = createPoller<{ answer: Answer<Status>; seconds: number }>({
  ask: async () => {
    const begun = Date.now();
    const answer = await getReport<Status>('/api/status', 'GC_state', timeLimits.status);
    return { answer, seconds: (Date.now() - begun) / 1000 };
  },
  take: ({ answer, seconds }) => takeStatus(answer, seconds),
  interval: () => {
    planned.value = document.hidden ? intervals.hidden : intervalSeconds.value;
    return planned.value * 1000;
  },
  isHidden: () => document.hidden,
});

/** Requests the status at once, unless the page is hidden. */
export const askNow = poller.wake;

let configurationRequest: Promise<Fault | undefined> | undefined;

async function requestConfiguration(): Promise<Fault | undefined> {
  const answer = await getReport<Configuration>('/api/config', 'Inst_serial');
  if (answer.ok) {
    configuration.value = answer.value;
    return undefined;
  }
  return answer.fault;
}

/** Callers during a request share its answer. */
export function loadConfiguration(): Promise<Fault | undefined> {
  configurationRequest ??= requestConfiguration().finally(() => {
    configurationRequest = undefined;
  });
  return configurationRequest;
}

/** The key under which this tab keeps an instrument's curves while a page is reloaded. */
const placeOfHistory = (of: Status): string => `history of ${of.Application}`;

function restoreHistory(of: Status): void {
  try {
    history.restore(sessionStorage.getItem(placeOfHistory(of)), Date.now() / 1000);
  } catch {
    // The browser does not let pages store anything.
  }
}

function saveHistory(): void {
  const place = status.value && placeOfHistory(status.value);
  if (place) {
    try {
      sessionStorage.setItem(place, history.save());
    } catch {
      // There is no room: the curves start again.
    }
  }
}

/** Starts to request the status; called once. */
export function beginContact(): void {
  document.addEventListener('visibilitychange', () => {
    now.value = Date.now();
    poller.wake();
  });
  window.addEventListener('pagehide', saveHistory);
  setInterval(() => {
    if (!document.hidden) {
      now.value = Date.now();
    }
  }, 1000);
  everyFewSeconds(() => {
    if (document.hidden) {
      now.value = Date.now();
      poller.check();
    }
  });
  poller.begin();
  void loadConfiguration();
}
