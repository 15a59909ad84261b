// When the run and the automation are expected to end, for all pages.
import { computed } from '@preact/signals';
import { endOfAutomation, endOfRun, type End } from './schedule';
import { sequence } from './sequence';
import { configuration, status, statusTime } from './store';

/** Milliseconds by which rounding and delayed answers shift an end that has not changed. */
const jitter = 3000;

/** Keeps the time shown while the next is nearly the same: a time that alternates is unreadable. */
function steady(shown: End, next: End): End {
  return 'time' in shown &&
    'time' in next &&
    shown.kind === next.kind &&
    Math.abs(shown.time - next.time) < jitter
    ? { ...next, time: shown.time }
    : next;
}

function steadily(find: () => End): () => End {
  let shown: End = { kind: 'none' };
  return () => (shown = steady(shown, find()));
}

const none: End = { kind: 'none' };

export const expectedRunEnd = computed<End>(
  steadily(() => (status.value ? endOfRun(status.value, statusTime.value) : none)),
);

export const expectedAutomationEnd = computed<End>(
  steadily(() => {
    const unit = configuration.value?.units?.flush_time;
    return status.value
      ? endOfAutomation(status.value, sequence.value, statusTime.value, unit)
      : none;
  }),
);
