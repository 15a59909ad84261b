// What all pages share: the status and its age, the command under way, the configuration.
import { computed, signal } from '@preact/signals';
import { getReport, sendCommand, timeLimits, type Answer, type Fault } from './api';
import type { Configuration, Status, Verdict } from './documents';
import { judge, type Follow } from './follow';
import { History, historySeconds, measurementsOf } from './history';
import { createPoller } from './poller';
import { isRunning, reasonAgainst, type Action } from './states';

/** Seconds between two requests for the status. */
const intervals = { running: 1, quiet: 5 } as const;

/** How many intervals without a good answer make the values stale. */
const staleIntervals = 3;

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
/** The command that is being sent; others wait until it is answered. */
export const isSending = signal(false);

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

export const isStale = computed(() => ageSeconds.value > staleIntervals * planned.value);

/** Why the action cannot be taken now; empty when it can. */
export function reasonNotTo(action: Action): string {
  if (!status.value || isStale.value) {
    return 'The state of the instrument is not known: there is no recent answer.';
  }
  if (isSending.value) {
    return 'Another command is being sent.';
  }
  return reasonAgainst(action, status.value);
}

function takeStatus(answer: Answer<Status>): void {
  now.value = Date.now();
  if (!answer.ok) {
    statusFault.value = answer.fault;
    return;
  }
  const time = now.value - answer.ageSeconds * 1000;
  status.value = answer.value;
  statusTime.value = time;
  statusFault.value = undefined;
  if (!configuration.value) {
    // The instrument may have been away when the page was opened.
    void loadConfiguration();
  }
  history.add(now.value / 1000, measurementsOf(answer.value));
  samples.value++;
  if (following) {
    const { follow, before, since } = following;
    const { phase, text } = judge(follow, before, answer.value, (now.value - since) / 1000);
    notice.value = {
      kind: phase === 'waiting' ? 'waiting' : phase === 'met' ? 'good' : 'bad',
      text,
    };
    if (phase !== 'waiting') {
      following = undefined;
    }
  }
}

const poller = createPoller<Answer<Status>>({
  ask: () => getReport<Status>('/api/status', 'GC_state', timeLimits.status),
  take: takeStatus,
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

/** Sends a command; of one that was accepted, `follow` says what to wait for. */
export async function command(
  name: string,
  send: { method: 'POST' | 'PUT'; path: string; body: unknown },
  follow?: (before: Status) => Follow,
): Promise<Answer<Verdict | null>> {
  const before = status.value;
  isSending.value = true;
  following = undefined;
  notice.value = { kind: 'waiting', text: `${name}: being sent.` };
  poller.wake();
  const body = typeof send.body === 'string' ? send.body : JSON.stringify(send.body);
  const answer = await sendCommand(send.method, send.path, body);
  isSending.value = false;
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

/** Begins to ask for the status; called once. */
export function start(): void {
  document.addEventListener('visibilitychange', () => {
    now.value = Date.now();
    poller.visibilityChanged();
  });
  setInterval(() => {
    if (!document.hidden) {
      now.value = Date.now();
    }
  }, 1000);
  poller.wake();
  void loadConfiguration();
}
