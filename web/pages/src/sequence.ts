// The instrument's sequence, while an automation is under way.
import { computed, effect, signal } from '@preact/signals';
import { getReport, type Fault } from './api';
import type { Sequence } from './documents';
import { isStale, status } from './store';
import { isIdle } from './states';

/** Milliseconds after which a failed request is repeated. */
const interval = 60_000;

export const sequence = signal<Sequence | undefined>(undefined);
export const sequenceFault = signal<Fault | undefined>(undefined);
/** Number of the latest request; answers to earlier ones are ignored. */
let latest = 0;

/** Requests the sequence again. */
export async function loadSequence(): Promise<void> {
  const number = ++latest;
  const answer = await getReport<Sequence>('/api/sequence', 'Table_repeat');
  if (number === latest) {
    // An older sequence may belong to another instrument.
    sequence.value = answer.ok ? answer.value : undefined;
    sequenceFault.value = answer.ok ? undefined : answer.fault;
  }
}

/** The instrument whose automation is under way, if one is. */
const subject = computed(() =>
  status.value && !isIdle(status.value) ? status.value.Application : undefined,
);

/**
 * Requests the sequence when an automation begins and when the instrument comes back, until the
 * returned function is called.
 */
export function watchSequence(): () => void {
  const stop = effect(() => {
    if (subject.value === undefined) {
      // From now on the sequence may be changed.
      latest++;
      sequence.value = undefined;
      sequenceFault.value = undefined;
    } else if (!isStale.value) {
      void loadSequence();
    }
  });
  const timer = setInterval(() => {
    if (subject.value !== undefined && sequenceFault.value) {
      void loadSequence();
    }
  }, interval);
  return () => {
    stop();
    clearInterval(timer);
  };
}
