// How a run, a calibration or the automation ended.
import type { Status } from './documents';
import { formatMoment, formatSpan } from './format';
import { gcStateOf, isAtWork, isError, isIdle } from './states';

export interface Ending {
  kind: 'good' | 'bad';
  text: string;
}

/** A status, and when it was read, in milliseconds. */
export interface Sight {
  status: Status;
  time: number;
}

/** Describes an end, from the status that shows it and `last`, the one before. */
type Course = (end: Sight, last: Sight | undefined) => Ending;
export type { Course };

/** Seconds between two statuses after which the time of the end is unknown. */
const unseen = 20;

/** Seconds by which a run's clock and number may be late. */
const slack = 3;

export function isOver(status: Status): boolean {
  return isIdle(status) && !isAtWork(status);
}

function endedAt(end: Sight, last: Sight | undefined): string {
  const isSeen = last !== undefined && end.time - last.time <= unseen * 1000;
  const clock = formatMoment(end.time, end.time);
  return isSeen ? `ended at ${clock}` : `was over when the instrument was seen again at ${clock}`;
}

/** Seconds at which the last run seen was aborted; undefined if it was not, or if unknown. */
function cutAt(end: Sight, last: Sight | undefined): number | undefined {
  if (!last || gcStateOf(last.status) !== 'Running') {
    return undefined;
  }
  const { Run_time: elapsed, Total_run_time: total, Last_counter } = last.status;
  const passed = (end.time - last.time) / 1000;
  const isCounted = end.status.Last_counter !== Last_counter;
  return !isCounted && elapsed + passed + slack < total ? elapsed : undefined;
}

function runsSince(before: Status, status: Status): string {
  const first = before.Last_counter + 1;
  const last = status.Last_counter;
  return first === last ? `run ${last}` : `runs ${first} to ${last}`;
}

function failed(what: string, end: Sight, last: Sight | undefined): Ending {
  const { Error_str, Error_code } = end.status;
  const text = `${what} ${endedAt(end, last)} with an error: ${Error_str} (error ${Error_code}).`;
  return { kind: 'bad', text };
}

export function singleRunCourse(stream: number, before: Status): Course {
  return (end, last) => {
    const name = `The run on stream ${stream}`;
    if (isError(end.status) && !isError(before)) {
      return failed(name, end, last);
    }
    const number = end.status.Last_counter;
    if (number !== before.Last_counter) {
      const total = formatSpan((last?.status ?? before).Total_run_time);
      const text = `Run ${number} ${endedAt(end, last)} after ${total}, stream ${stream}.`;
      return { kind: 'good', text };
    }
    const cut = cutAt(end, last);
    const text =
      cut === undefined
        ? `${name} ${endedAt(end, last)}, and no analysis was counted: it may have been aborted.`
        : `${name} was aborted at ${formatSpan(cut)}, ${formatMoment(end.time, end.time)}.`;
    return { kind: 'bad', text };
  };
}

/** Runs that the gateway requests for a calibration. */
const calibrationRuns = 2;

export function calibrationCourse(stream: number, before: Status): Course {
  return (end, last) => {
    const name = `The calibration on stream ${stream}`;
    if (isError(end.status) && !isError(before)) {
      return failed(name, end, last);
    }
    const runs = end.status.Last_counter - before.Last_counter;
    const when = endedAt(end, last);
    return runs >= calibrationRuns
      ? { kind: 'good', text: `${name} ${when}: ${runsSince(before, end.status)}.` }
      : {
          kind: 'bad',
          text: `${name} ${when} after ${runs} of ${calibrationRuns} runs: it may have been aborted.`,
        };
  };
}

export function automationCourse(before: Status): Course {
  return (end, last) => {
    const name = 'The automation';
    if (isError(end.status) && !isError(before)) {
      return failed(name, end, last);
    }
    const isCounted = end.status.Last_counter !== before.Last_counter;
    const runs = isCounted ? runsSince(before, end.status) : 'no run was counted';
    const cut = cutAt(end, last);
    const aborted =
      cut === undefined ? '' : `; the run after that was aborted at ${formatSpan(cut)}`;
    const kind = isCounted && cut === undefined ? 'good' : 'bad';
    return { kind, text: `${name} ${endedAt(end, last)}: ${runs}${aborted}.` };
  };
}
