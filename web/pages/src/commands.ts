// Commands: which are possible now, and what became of those that were sent.
import { computed, effect, signal } from '@preact/signals';
import { sendCommand, type Answer } from './api';
import { askNow, isAwaited, knownStatus, onAnswer, status } from './contact';
import type { Status, Verdict } from './documents';
import { describeFault } from './faults';
import type { Follow } from './follow';
import { Following } from './following';
import { change, isAnyAwaited, missStatus, notices, say, takeStatus } from './notices';
import { noteLogin } from './session';
import { reasonAgainst, type Action } from './states';

/** Milliseconds without an answer after which the browser may be asking for a password. */
const patience = 3000;

/** The commands that are being sent. */
const sending = signal<readonly string[]>([]);

/** Whether an abort, now or after the run, is being sent. */
export const isAborting = computed(() => sending.value.includes('abort'));

/** Whether something may have begun that the status does not show yet. */
const mayBegin = computed(
  () =>
    sending.value.includes('run') ||
    notices.value.some((one) => one.following?.follow.course && !one.following.isOver),
);

/**
 * Why the action is not possible now; empty if it is. Stopping never waits for another command, and
 * is disabled only when there is certainly nothing to stop. Resetting alarms is always harmless.
 */
export function reasonNotTo(action: Action): string {
  const known = knownStatus.value;
  if (action === 'abort-now') {
    return '';
  }
  if (action === 'abort-after-run') {
    return known && !mayBegin.value ? reasonAgainst(action, known) : '';
  }
  if (!known && action !== 'alarm-reset') {
    return 'The state of the instrument is not known: there is no recent answer.';
  }
  if (sending.value[0]) {
    return 'Another command is being sent.';
  }
  return known ? reasonAgainst(action, known) : '';
}

/** Sends a command; if it may have been carried out, `follow` says what to wait for. */
export async function command(
  name: string,
  send: { method: 'POST' | 'PUT'; path: string; body: unknown },
  follow?: (before: Status | undefined) => Follow | undefined,
  accepted = 'accepted.',
): Promise<Answer<Verdict | null>> {
  const before = status.value;
  sending.value = [...sending.value, send.path];
  const id = say(send.path, { kind: 'waiting', text: `${name}: being sent.` });
  askNow();
  const hint = setTimeout(() => {
    const text = `${name}: no answer yet. If the browser asks who you are, sign in there.`;
    change(id, { kind: 'waiting', text });
  }, patience);
  const body = typeof send.body === 'string' ? send.body : JSON.stringify(send.body);
  const answer = await sendCommand(send.method, send.path, body);
  clearTimeout(hint);
  noteLogin(answer);
  sending.value = sending.value.filter((_, index) => index !== sending.value.indexOf(send.path));
  const isInDoubt = !answer.ok && answer.fault.isUnknown === true;
  const followed = answer.ok || isInDoubt ? follow?.(before) : undefined;
  if (followed) {
    const doubt = answer.ok ? '' : describeFault(answer.fault);
    const following = new Following(followed, before, Date.now(), doubt);
    change(id, following.begin(), { following });
  } else if (answer.ok) {
    change(id, { kind: 'good', text: `${name}: ${accepted}` });
  } else {
    change(id, { kind: 'bad', text: `${name}: ${describeFault(answer.fault)}` });
  }
  askNow();
  return answer;
}

effect(() => {
  isAwaited.value = isAnyAwaited.value;
});

onAnswer((answer) => {
  if (answer.ok) {
    takeStatus(answer.value, Date.now() - answer.ageSeconds * 1000);
  } else {
    missStatus(Date.now());
  }
});
