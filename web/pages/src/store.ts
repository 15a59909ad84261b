// What all pages share: the status and its age, the command under way, the configuration.
import { computed, signal } from '@preact/signals';
import { getReport, sendCommand, timeLimits, type Answer, type Fault } from './api';
import type { BegunCommand, Configuration, Status, Unfinished, Verdict } from './documents';
import { judge, judgeUnanswered, type Follow, type Progress } from './follow';
import { History, historySeconds, measurementsOf } from './history';
import { createPoller } from './poller';
import { isOtherInstrument, isRunning, reasonAgainst, type Action } from './states';

/** Seconds between two requests for the status. */
const intervals = { running: 1, quiet: 5 } as const;

/** How many intervals, or requests, without a good answer make the values stale. */
const staleIntervals = 3;

/** Milliseconds after which a command without an answer may be waiting for a password. */
const patience = 3000;

export const status = signal<Status | undefined>(undefined);
/** When the shown status was true, in milliseconds; 0 before there is one. */
export const statusTime = signal(0);
/** What is wrong with the latest request for the status; the last values stay. */
export const statusFault = signal<Fault | undefined>(undefined);
/** The present, in milliseconds, once a second. */
export const now = signal(Date.now());
export const configuration = signal<Configuration | undefined>(undefined);
/** Counts the samples in `history`, which is no signal itself. */
export const samples = signal(0);
/** At most one sample a second, and the gaps. */
export const history = new History(historySeconds + 400);

export interface Notice {
  kind: 'waiting' | 'good' | 'bad';
  text: string;
}
export const notice = signal<Notice | undefined>(undefined);
/** Whether the web server has let this page give a command. */
export const isSignedIn = signal(false);
/** The commands that are being sent. */
const sending = signal<readonly string[]>([]);

/** Commands that were interrupted, until somebody has taken note. */
export const interruptions = signal<readonly BegunCommand[]>([]);

let following: { follow: Follow; before: Status; since: number } | undefined;

const intervalSeconds = computed(() =>
  (status.value && isRunning(status.value)) || notice.value?.kind === 'waiting'
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

/** Why the action cannot be taken now; empty when it can. */
export function reasonNotTo(action: Action): string {
  if (!status.value || isStale.value) {
    return 'The state of the instrument is not known: there is no recent answer.';
  }
  // What stops the instrument does not wait for anything but itself.
  const isInTheWay = action === 'abort-now' ? sending.value.includes('abort') : sending.value[0];
  if (isInTheWay) {
    return 'Another command is being sent.';
  }
  return reasonAgainst(action, status.value);
}

function secondsSince(time: number): number {
  return (Date.now() - time) / 1000;
}

function showProgress({ phase, text }: Progress): void {
  const kinds = { waiting: 'waiting', met: 'good', failed: 'bad', late: 'bad' } as const;
  notice.value = { kind: kinds[phase], text };
}

async function loadInterruptions(): Promise<void> {
  const answer = await getReport<Unfinished>('/api/unfinished', 'interrupted');
  if (answer.ok) {
    interruptions.value = answer.value.interrupted;
  }
}

/** Tells the gateway that somebody has taken note of an interrupted command. */
export async function takeNote({ id }: BegunCommand): Promise<void> {
  const answer = await sendCommand('POST', 'seen', JSON.stringify({ id }));
  noteLogin(answer);
  // Somebody else may have been faster.
  if (!answer.ok && answer.fault.status !== 404) {
    notice.value = { kind: 'bad', text: `Interrupted command: ${describeFault(answer.fault)}` };
  }
  await loadInterruptions();
}

function takeStatus(answer: Answer<Status>, seconds: number): void {
  now.value = Date.now();
  const isAnswered = answer.ok || answer.fault.status !== 0;
  if (isAnswered && (answer.interrupted ?? 0) !== interruptions.value.length) {
    void loadInterruptions();
  }
  if (!answer.ok) {
    statusFault.value = answer.fault;
    missed.value++;
    if (following) {
      showProgress(judgeUnanswered(following.follow, secondsSince(following.since)));
    }
    return;
  }
  missed.value = 0;
  answerSeconds.value = [seconds, ...answerSeconds.value].slice(0, 4);
  const wasLost = statusFault.value !== undefined;
  if (status.value && isOtherInstrument(status.value, answer.value)) {
    configuration.value = undefined;
  }
  const time = now.value - answer.ageSeconds * 1000;
  status.value = answer.value;
  statusTime.value = time;
  statusFault.value = undefined;
  if (!configuration.value || wasLost) {
    // The instrument may have been away when the page was opened, and may have come back changed.
    void loadConfiguration();
  }
  if (samples.value === 0) {
    restoreHistory(answer.value);
  }
  history.add(now.value / 1000, measurementsOf(answer.value));
  samples.value++;
  if (following) {
    const { follow, before, since } = following;
    const progress = judge(follow, before, answer.value, secondsSince(since));
    showProgress(progress);
    if (progress.phase !== 'waiting') {
      following = undefined;
    }
  }
}

const poller = createPoller<{ answer: Answer<Status>; seconds: number }>({
  ask: async () => {
    const begun = Date.now();
    const answer = await getReport<Status>('/api/status', 'GC_state', timeLimits.status);
    return { answer, seconds: secondsSince(begun) };
  },
  take: ({ answer, seconds }) => takeStatus(answer, seconds),
  interval: () => {
    planned.value = intervalSeconds.value;
    return planned.value * 1000;
  },
  isHidden: () => document.hidden,
});

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

export function describeFault(fault: Fault): string {
  return fault.detail ? `${fault.text} ${fault.detail.replace(/\.$/, '')}.` : fault.text;
}

/** Counts the commands: what is said is about the latest. */
let commands = 0;

/** What an answer to a command tells of who asks. */
function noteLogin(answer: Answer<unknown>): void {
  if (answer.ok || answer.fault.status !== 0) {
    isSignedIn.value = answer.ok || ![401, 403].includes(answer.fault.status);
  }
}

/** Lets the browser ask for the password before it matters. */
export async function signIn(): Promise<void> {
  notice.value = { kind: 'waiting', text: 'Signing in. The browser asks who you are.' };
  const answer = await sendCommand('POST', 'login', '{}');
  noteLogin(answer);
  notice.value = answer.ok
    ? { kind: 'good', text: 'Signed in until the browser is closed.' }
    : { kind: 'bad', text: `Sign in: ${describeFault(answer.fault)}` };
}

/** Sends a command; of one that was accepted, `follow` says what to wait for. */
export async function command(
  name: string,
  send: { method: 'POST' | 'PUT'; path: string; body: unknown },
  follow?: (before: Status) => Follow,
): Promise<Answer<Verdict | null>> {
  const before = status.value;
  const number = ++commands;
  sending.value = [...sending.value, send.path];
  following = undefined;
  notice.value = { kind: 'waiting', text: `${name}: being sent.` };
  poller.wake();
  const hint = setTimeout(() => {
    if (number === commands) {
      const text = `${name}: no answer yet. If the browser asks who you are, sign in there.`;
      notice.value = { kind: 'waiting', text };
    }
  }, patience);
  const body = typeof send.body === 'string' ? send.body : JSON.stringify(send.body);
  const answer = await sendCommand(send.method, send.path, body);
  clearTimeout(hint);
  noteLogin(answer);
  sending.value = sending.value.filter((_, index) => index !== sending.value.indexOf(send.path));
  if (number !== commands) {
    return answer;
  }
  if (!answer.ok) {
    notice.value = { kind: 'bad', text: `${name}: ${describeFault(answer.fault)}` };
  } else if (follow && before) {
    following = { follow: follow(before), before, since: Date.now() };
    notice.value = { kind: 'waiting', text: `${name}: accepted.` };
  } else {
    notice.value = { kind: 'good', text: `${name}: accepted.` };
  }
  poller.wake();
  return answer;
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
export function start(): void {
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
  poller.wake();
  void loadConfiguration();
}
