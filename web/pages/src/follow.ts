// What to wait for after a command: its effect, which the status shows a little later, and its end.
import { automationCourse, calibrationCourse, singleRunCourse, type Course } from './courses';
import type { Status } from './documents';
import { formatSpan } from './format';
import { autoStateOf, gcStateOf, isAtWork, isError, isIdle } from './states';

export interface Follow {
  /** The command, as the user gave it. */
  name: string;
  /** What is awaited, and the texts for when it has happened and when it has not in time. */
  awaited: string;
  /** `last` is the latest status before that. */
  done: (last: Status | undefined, status: Status) => string;
  notDone: string;
  isMet: (status: Status) => boolean;
  /** Whether a new error of the instrument means that it will not happen. */
  endsWithError: boolean;
  limitSeconds: number;
  /** Whether the effect still lasts. */
  holds: (status: Status) => boolean;
  /** Describes the end of what has then begun. */
  course?: Course;
  /** Whether it ends everything else that is followed. */
  endsOthers?: boolean;
}

/** A short run may end before the next status: then the counter shows it. */
function begins(
  name: string,
  what: string,
  before: Status,
  isUnderWay: (status: Status) => boolean,
  course: Course,
): Follow {
  return {
    name,
    awaited: `${what} to begin`,
    done: () => `${what} has begun`,
    notDone: `${what} has not begun`,
    isMet: (status) => isUnderWay(status) || status.Last_counter !== before.Last_counter,
    endsWithError: true,
    limitSeconds: 30,
    holds: () => true,
    course,
  };
}

export function followRun(type: 'single' | 'calibration', stream: number, before: Status): Follow {
  return type === 'single'
    ? begins(
        `Single run on stream ${stream}`,
        'the run',
        before,
        isAtWork,
        singleRunCourse(stream, before),
      )
    : begins(
        `Calibration on stream ${stream}`,
        'the calibration',
        before,
        (status) => isAtWork(status) || autoStateOf(status) === 'Running Calibration',
        calibrationCourse(stream, before),
      );
}

export function followAutomation(before: Status): Follow {
  const isUnderWay = (status: Status): boolean => !isIdle(status);
  return begins('Automation', 'the automation', before, isUnderWay, automationCourse(before));
}

const hasStopped = (status: Status): boolean => isIdle(status) && !isAtWork(status);

export function followAbortNow(): Follow {
  return {
    name: 'Abort now',
    awaited: 'the instrument to stop',
    done: (last, status) =>
      last && gcStateOf(last) === 'Running' && last.Last_counter === status.Last_counter
        ? `the run was aborted at ${formatSpan(last.Run_time)}`
        : 'nothing is running',
    notDone: 'the instrument has not stopped',
    isMet: hasStopped,
    endsWithError: false,
    limitSeconds: 30,
    holds: hasStopped,
    endsOthers: true,
  };
}

/** The present run may still take all the time that it has left. */
export function followAbortAfterRun(before: Status | undefined): Follow {
  const left = before ? Math.max(0, before.Total_run_time - before.Run_time) : 3600;
  return {
    name: 'Stop after this run',
    awaited: 'the present run to end',
    done: (_, status) =>
      before && before.Last_counter !== status.Last_counter
        ? `ended after run ${status.Last_counter}`
        : 'the automation has ended, and no further run was counted',
    notDone: 'the automation has not ended',
    isMet: isIdle,
    endsWithError: false,
    limitSeconds: left + 60,
    holds: isIdle,
  };
}

export function followStream(stream: number): Follow {
  const isThere = (status: Status): boolean => status.Curr_stream === stream;
  return {
    name: `Stream ${stream}`,
    awaited: 'the valve to move',
    done: () => `the current stream is ${stream}`,
    notDone: `the current stream is not ${stream}`,
    isMet: isThere,
    endsWithError: true,
    limitSeconds: 60,
    holds: isThere,
  };
}

/** A cause that persists triggers its alarm again at once. */
export function followAlarmReset(): Follow {
  const isQuiet = (status: Status): boolean => !status.Alarm_overall;
  return {
    name: 'Reset of all alarms',
    awaited: 'the alarms to go',
    done: () => 'no alarm is active',
    notDone: 'an alarm is still active, or has come back',
    isMet: isQuiet,
    endsWithError: false,
    limitSeconds: 10,
    holds: isQuiet,
  };
}

/** The states without their numbers, each of which a screen reader would read out. */
export function describeState(status: Status): string {
  return `state: ${gcStateOf(status)}; automation: ${autoStateOf(status)}`;
}

export function describeError(status: Status): string {
  return `${status.Error_str} (error ${status.Error_code})`;
}

export function isNewError(before: Status | undefined, status: Status): boolean {
  return isError(status) && !(before && isError(before));
}
