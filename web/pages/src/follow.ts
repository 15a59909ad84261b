// Follows a command that was accepted to its effect, which the status shows a little later.
import type { Status } from './documents';
import { autoStateOf, gcStateOf, isError, isIdle } from './states';

export interface Follow {
  /** The command, as the person gave it. */
  name: string;
  /** What is waited for, what is said when it came, and what when it did not come in time. */
  awaited: string;
  done: string;
  notDone: string;
  isMet: (status: Status) => boolean;
  /** Whether a new error of the instrument means that it will not come. */
  endsWithError: boolean;
  limitSeconds: number;
}

export type Progress = { phase: 'waiting' | 'met' | 'failed' | 'late'; text: string };

/** Where a follow stands `seconds` after its command was accepted. */
export function judge(follow: Follow, before: Status, status: Status, seconds: number): Progress {
  // Without the seconds: a screen reader would read each of them out.
  const state = `state: ${gcStateOf(status)}; automation: ${autoStateOf(status)}`;
  if (follow.isMet(status)) {
    return { phase: 'met', text: `${follow.name}: ${follow.done} (${state}).` };
  }
  if (follow.endsWithError && isError(status) && !isError(before)) {
    const error = `${status.Error_str} (error ${status.Error_code})`;
    return { phase: 'failed', text: `${follow.name}: ${follow.notDone}: ${error}.` };
  }
  if (seconds > follow.limitSeconds) {
    const text = `${follow.name}: accepted, but ${follow.notDone} within ${follow.limitSeconds} s (${state}).`;
    return { phase: 'late', text };
  }
  return {
    phase: 'waiting',
    text: `${follow.name}: accepted. Waiting for ${follow.awaited} (${state}).`,
  };
}

/** The same while the instrument does not answer; a later answer may still show the effect. */
export function judgeUnanswered(follow: Follow, seconds: number): Progress {
  return seconds > follow.limitSeconds
    ? {
        phase: 'late',
        text: `${follow.name}: accepted, but what became of it is not known: no answer has shown it within ${follow.limitSeconds} s.`,
      }
    : {
        phase: 'waiting',
        text: `${follow.name}: accepted. Waiting for ${follow.awaited}, but there is no answer at present.`,
      };
}

function begins(
  name: string,
  what: string,
  before: Status,
  isUnderWay: (status: Status) => boolean,
): Follow {
  return {
    name,
    awaited: `${what} to begin`,
    done: `${what} has begun`,
    notDone: `${what} has not begun`,
    // A short run may be over before anybody looks: then the counter tells.
    isMet: (status) => isUnderWay(status) || status.Last_counter !== before.Last_counter,
    endsWithError: true,
    limitSeconds: 30,
  };
}

const isAtWork = (status: Status): boolean => ['Flushing', 'Running'].includes(gcStateOf(status));

export function followRun(type: 'single' | 'calibration', stream: number, before: Status): Follow {
  return type === 'single'
    ? begins(`Single run on stream ${stream}`, 'the run', before, isAtWork)
    : begins(
        `Calibration on stream ${stream}`,
        'the calibration',
        before,
        (status) => isAtWork(status) || autoStateOf(status) === 'Running Calibration',
      );
}

export function followAutomation(before: Status): Follow {
  return begins('Automation', 'the automation', before, (status) => !isIdle(status));
}

export function followAbortNow(): Follow {
  return {
    name: 'Abort now',
    awaited: 'the instrument to stop',
    done: 'the instrument has stopped',
    notDone: 'the instrument has not stopped',
    isMet: (status) => isIdle(status) && !isAtWork(status),
    endsWithError: false,
    limitSeconds: 30,
  };
}

/** The present run may still take its whole time. */
export function followAbortAfterRun(before: Status): Follow {
  const left = Math.max(0, before.Total_run_time - before.Run_time);
  return {
    name: 'Stop after this run',
    awaited: 'the present run to end',
    done: 'the automation has ended',
    notDone: 'the automation has not ended',
    isMet: isIdle,
    endsWithError: false,
    limitSeconds: left + 60,
  };
}

export function followStream(stream: number): Follow {
  return {
    name: `Stream ${stream}`,
    awaited: 'the valve to move',
    done: `the current stream is ${stream}`,
    notDone: `the current stream is not ${stream}`,
    isMet: (status) => status.Curr_stream === stream,
    endsWithError: true,
    limitSeconds: 60,
  };
}

/** No report tells which solution is in use: that the instrument is busy with it is all there is. */
export function followSolution(slot: number): Follow {
  return {
    name: `Solution ${slot}`,
    awaited: 'the instrument to take it up',
    done: 'the instrument is taking it up; it is ready again when that is done',
    notDone: 'nothing of it was seen',
    isMet: (status) => gcStateOf(status) !== 'Ready',
    endsWithError: false,
    limitSeconds: 15,
  };
}
