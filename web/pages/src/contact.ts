// The contact with the instrument: its status, how old that is, and its configuration.
import { computed, signal } from '@preact/signals';
import { everyFewSeconds } from './background';
import { getReport, timeLimits, type Answer, type Fault } from './api';
import type { Configuration, Status } from './documents';
import { History, historySeconds, measurementsOf } from './history';
import { createPoller } from './poller';
import { isOtherInstrument, isRunning } from './states';

/** Seconds between two requests for the status. */
const intervals = { running: 1, quiet: 5, hidden: 10 } as const;

/** How many intervals, or requests, without a good answer make the values stale. */
const staleIntervals = 3;

export const status = signal<Status | undefined>(undefined);
/** When the shown status was true, in milliseconds; 0 before there is one. */
export const statusTime = signal(0);
/** What is wrong with the latest request for the status; the last values stay. */
export const statusFault = signal<Fault | undefined>(undefined);
/** The present, in milliseconds, once a second; in a hidden page every few seconds. */
export const now = signal(Date.now());
export const configuration = signal<Configuration | undefined>(undefined);
/** Counts the samples in `history`, which is no signal itself. */
export const samples = signal(0);
/** At most one sample a second, and the gaps. */
export const history = new History(historySeconds + 400);
/** Whether somebody waits for the effect of a command. */
export const isAwaited = signal(false);
/** How often the instrument has come back after it, or the web server, was away. */
export const returns = signal(0);

const intervalSeconds = computed(() =>
  (status.value && isRunning(status.value)) || isAwaited.value
    ? intervals.running
    : intervals.quiet,
);

export const ageSeconds = computed(() =>
  statusTime.value === 0 ? Infinity : Math.max(0, (now.value - statusTime.value) / 1000),
);

/** The interval that the latest answer was given for. */
const planned = signal<number>(intervals.quiet);

/**
 * How long the latest good answers took: where they are slow, values are not stale while the next
 * ones come. More than one, as the gateway gives the same answer again for a second.
 */
const answerSeconds = signal<readonly number[]>([]);

/** How many requests in a row have brought no good answer. */
const missed = signal(0);

export const isStale = computed(
  () =>
    missed.value >= staleIntervals ||
    ageSeconds.value > staleIntervals * planned.value + Math.max(0, ...answerSeconds.value),
);

/** When the last good answer was true, in milliseconds, once three answers were missed. */
export const lostSince = computed(() =>
  isStale.value && statusTime.value > 0 ? statusTime.value : undefined,
);

/** The status, while it may be relied on. */
export const knownStatus = computed(() => (isStale.value ? undefined : status.value));

const listeners: ((answer: Answer<Status>) => void)[] = [];

/** Tells of every answer to a request for the status, after the signals have it. */
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
    // The instrument may have been away when the page was opened, and may have come back changed.
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

/** Asks for the status at once, unless nobody sees the page. */
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

/** Who asks while a request is under way gets its answer. */
export function loadConfiguration(): Promise<Fault | undefined> {
  configurationRequest ??= requestConfiguration().finally(() => {
    configurationRequest = undefined;
  });
  return configurationRequest;
}

/** Where this tab keeps the curves of an instrument while a page is loaded again. */
const placeOfHistory = (of: Status): string => `history of ${of.Application}`;

function restoreHistory(of: Status): void {
  try {
    history.restore(sessionStorage.getItem(placeOfHistory(of)), Date.now() / 1000);
  } catch {
    // The browser keeps nothing for pages.
  }
}

function saveHistory(): void {
  const place = status.value && placeOfHistory(status.value);
  if (place) {
    try {
      sessionStorage.setItem(place, history.save());
    } catch {
      // There is no room: the curves begin anew.
    }
  }
}

/** Begins to ask for the status; called once. */
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
