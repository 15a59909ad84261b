// The instrument's state from the texts of the status, and the actions that it allows.
import { channelKeys, type Status } from './documents';

/** The states of `GC_state` without their numbers; `Unknown` for any other text. */
export const gcStates = [
  'Initializing',
  'Flushing',
  'Running',
  'Stabilizing',
  'Ready',
  'Error',
  'Recoverable Error',
  'Unrecoverable Error',
  'Not Ready',
  'Wait Ext Rdy',
  'Cleaning',
  'Unknown',
] as const;
export type GcState = (typeof gcStates)[number];

export function gcStateOf(status: Status): GcState {
  const text = status.GC_state.replace(/ -?\d+(s| min)$/, '');
  return gcStates.find((state) => state === text) ?? 'Unknown';
}

/** The automation's state without its number. */
export function autoStateOf(status: Status): string {
  return status.Auto_state.replace(/ \d+s$/, '');
}

/** A text of the status as it is shown: without a countdown of zero or less. */
export function withoutNothing(text: string): string {
  return text.replace(/ (-\d+|0)(s| min)$/, '');
}

/** Whether the instrument is in a run, or is preparing one. */
export function isAtWork(status: Status): boolean {
  return ['Flushing', 'Running'].includes(gcStateOf(status));
}

export function isError(status: Status): boolean {
  return gcStateOf(status).endsWith('Error');
}

export function isIdle(status: Status): boolean {
  return status.Auto_state === 'Idle';
}

/** Whether something is under way that ends by itself and that the user waits for. */
export function isRunning(status: Status): boolean {
  return isAtWork(status) || !isIdle(status);
}

export function isSimulated(status: Status): boolean {
  return status.Application.includes('(simulated)');
}

/** Whether the instrument that answers now may be configured differently from the one before. */
export function isOtherInstrument(before: Status, after: Status): boolean {
  return (
    before.Application !== after.Application ||
    channelKeys.some((key) => key in before !== key in after)
  );
}

export const actions = [
  'start-run',
  'start-automation',
  'abort-now',
  'abort-after-run',
  'stream',
  'solution',
  'alarm-reset',
  'send-table',
] as const;
export type Action = (typeof actions)[number];

/** The condition for an action that the instrument accepts only while the automation is idle. */
interface Rule {
  /** States in which the instrument accepts it. */
  states: readonly GcState[];
  /** Why not, in any other state. */
  reason: string;
}

const quiet: readonly GcState[] = ['Stabilizing', 'Ready', 'Not Ready', 'Wait Ext Rdy'];
const settings: readonly GcState[] = [...quiet, 'Error', 'Recoverable Error'];

/** Actions without a rule are possible in every state; an unknown state forbids all others. */
const rules: Readonly<Record<Action, Rule | undefined>> = {
  'start-run': { states: ['Ready'], reason: 'A run starts only from Ready.' },
  'start-automation': { states: ['Ready'], reason: 'The automation starts only from Ready.' },
  'abort-now': undefined,
  'abort-after-run': undefined,
  stream: { states: settings, reason: 'The stream can be switched only while nothing runs.' },
  solution: {
    states: quiet,
    reason: 'A solution can be loaded only while nothing runs and there is no error.',
  },
  'alarm-reset': undefined,
  'send-table': {
    states: settings,
    reason: 'The instrument accepts tables only while nothing runs.',
  },
};

/** Why the instrument would not accept the action now; empty if it would. */
export function reasonAgainst(action: Action, status: Status): string {
  const state = gcStateOf(status);
  if (action === 'abort-after-run' && isIdle(status)) {
    return 'The automation is not under way.';
  }
  const rule = rules[action];
  if (rule && !isIdle(status)) {
    return `${rule.reason} The automation is: ${withoutNothing(status.Auto_state)}.`;
  }
  if (rule && !rule.states.includes(state)) {
    return `${rule.reason} The state is: ${withoutNothing(status.GC_state)}.`;
  }
  return '';
}
