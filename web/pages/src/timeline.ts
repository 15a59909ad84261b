// A sequence as a bar over time: where each line begins, and the automation's position.
import type { Sequence, Status } from './documents';
import { formatSpan } from './format';
import { secondsOf } from './schedule';
import { autoStateOf, gcStateOf } from './states';
import type { Table } from './table';

/** A line of the table, as far as it is known during editing. */
export interface Line {
  /** Counted from 1, as in the status. */
  line: number;
  type: string;
  stream: string;
  runs: number | undefined;
  /** In the instrument's unit. */
  flush: number | undefined;
}

/** A line's part of the bar; lengths are in seconds, or in runs while the run time is unknown. */
export interface Stretch extends Line {
  runs: number;
  from: number;
  flushing: number;
  running: number;
  /** Whether the length of its flushing is unknown; it is drawn nevertheless. */
  isFlushUnknown: boolean;
}

export interface Timeline {
  stretches: Stretch[];
  length: number;
  /** Seconds for one run; undefined if no status gives it. */
  runSeconds: number | undefined;
  runs: number;
  /** Seconds for one pass through the table, without unknown lengths. */
  seconds: number | undefined;
  /** Lines with 0 runs, which are skipped. */
  passedOver: number[];
  /** Lines without a valid number of runs, which are drawn as one run. */
  unclear: number[];
  /** Whether the length of any flushing is unknown. */
  isFlushUnknown: boolean;
}

/** Flushing of unknown length is drawn as this fraction of a run. */
const flushPart = 0.3;
const isCount = (value: unknown): value is number => Number.isInteger(value) && Number(value) >= 0;

/** The lines of a table being edited, whose values may be invalid. */
export function linesOf({ rows }: Table): Line[] {
  return rows.map(({ Type, Repeat, Stream, Flush_time: flush }, index) => ({
    line: index + 1,
    type: String(Type),
    stream: String(Stream),
    runs: isCount(Repeat) ? Repeat : undefined,
    flush: typeof flush === 'number' && flush >= 0 && flush < Infinity ? flush : undefined,
  }));
}

export function timelineOf(
  lines: readonly Line[],
  runSeconds: number | undefined,
  flushUnit: string | undefined,
): Timeline {
  const run = runSeconds ?? 1;
  let from = 0;
  const stretches = lines.flatMap((line): Stretch[] => {
    const runs = line.runs ?? 1;
    if (runs === 0) {
      return [];
    }
    const seconds = runSeconds === undefined ? undefined : secondsOf(line.flush, flushUnit);
    const isFlushUnknown = seconds === undefined && line.flush !== 0;
    const flushing = isFlushUnknown ? flushPart * run : (seconds ?? 0);
    const stretch = { ...line, runs, from, flushing, running: runs * run, isFlushUnknown };
    from += stretch.flushing + stretch.running;
    return [stretch];
  });
  const known = stretches.map(({ flushing, running, isFlushUnknown }) =>
    isFlushUnknown ? running : flushing + running,
  );
  const numbers = (of: (line: Line) => boolean): number[] =>
    lines.filter(of).map(({ line }) => line);
  return {
    stretches,
    length: from,
    runSeconds,
    runs: stretches.reduce((sum, { runs }) => sum + runs, 0),
    seconds:
      runSeconds === undefined ? undefined : known.reduce((sum, seconds) => sum + seconds, 0),
    passedOver: numbers(({ runs }) => runs === 0),
    unclear: numbers(({ runs }) => runs === undefined),
    isFlushUnknown: stretches.some((stretch) => stretch.isFlushUnknown),
  };
}

/** The place after so many seconds, not counting unknown lengths. */
export function placeAfter({ stretches, length }: Timeline, seconds: number): number {
  let left = seconds;
  for (const { from, flushing, running, isFlushUnknown } of stretches) {
    const uncounted = isFlushUnknown ? flushing : 0;
    const counted = flushing + running - uncounted;
    if (left <= counted) {
      return from + (left > 0 ? uncounted : 0) + left;
    }
    left -= counted;
  }
  return length;
}

/** The automation's position from the start of the pass; undefined if it matches no line. */
export function positionIn(
  { stretches, runSeconds }: Timeline,
  status: Status,
): number | undefined {
  const { Seq_line: line, Line_replicate: replicate, Run_time: elapsed } = status;
  const stretch = stretches.find((one) => one.line === line);
  if (!stretch || replicate < 1 || replicate > stretch.runs) {
    return undefined;
  }
  const begin = stretch.from + stretch.flushing;
  const [, left] = /^Flushing Stream (\d+)s$/.exec(status.Auto_state) ?? [];
  if (autoStateOf(status) === 'Flushing Stream') {
    // The time left is given in whole minutes, and not at all in the last one.
    return stretch.isFlushUnknown
      ? stretch.from
      : Math.max(stretch.from, begin - Number(left ?? 0));
  }
  const isOn = gcStateOf(status) === 'Running' && runSeconds !== undefined;
  const run = runSeconds ?? 1;
  return begin + (replicate - 1) * run + (isOn ? Math.min(run, Math.max(0, elapsed)) : 0);
}

/** The automation's position in words. */
export function positionText(status: Status, of: Sequence | undefined): string {
  const { Seq_line: line, Line_replicate: replicate, Seq_replicate: pass } = status;
  if (line < 1) {
    return status.Auto_state === 'Idle' ? 'not under way' : 'no line of the sequence';
  }
  const runs = of?.rows?.[line - 1]?.Repeat;
  const among = (count: number | undefined): string => (count === undefined ? '' : ` of ${count}`);
  return `line ${line}, run ${replicate}${among(runs)}, pass ${pass}${among(of?.Continuous ? undefined : of?.Table_repeat)}`;
}

const counted = (count: number, one: string, many: string): string =>
  `${count} ${count === 1 ? one : many}`;
export const runsText = (count: number): string => counted(count, 'run', 'runs');

/** How long a pass takes, in words. */
export function passText(timeline: Timeline): string {
  const { runs, seconds, isFlushUnknown } = timeline;
  const length =
    seconds === undefined
      ? 'how long is not known'
      : formatSpan(seconds) + (isFlushUnknown ? ' plus flushing' : '');
  return timeline.unclear.length > 0 ? 'not known yet' : `${runsText(runs)}, ${length}`;
}

/** How long the whole table takes, in words. */
export function wholeText(timeline: Timeline, passes: unknown, isContinuous: boolean): string {
  if (isContinuous) {
    return 'no end: after the last line it starts again';
  }
  if (!isCount(passes) || timeline.unclear.length > 0) {
    return 'not known yet';
  }
  const { runs, seconds, isFlushUnknown } = timeline;
  const all = { ...timeline, runs: passes * runs };
  const length = seconds === undefined ? seconds : passes * seconds;
  const isFlushed = isFlushUnknown && passes > 0;
  return `${counted(passes, 'pass', 'passes')}, ${passText({ ...all, seconds: length, isFlushUnknown: isFlushed })}`;
}

export function describeStretch(stretch: Stretch, timeline: Timeline): string {
  const { line, type, stream, runs, flushing, running, from, isFlushUnknown } = stretch;
  const isUnclear = timeline.unclear.includes(line);
  const parts = [
    `Line ${line}: ${type}, stream ${stream}`,
    isUnclear ? 'runs not known yet' : runsText(runs),
  ];
  if (timeline.runSeconds !== undefined && !isUnclear) {
    parts.push(
      isFlushUnknown
        ? `${formatSpan(running)} plus flushing`
        : flushing > 0
          ? `${formatSpan(flushing + running)}, of which ${formatSpan(flushing)} flushing`
          : formatSpan(running),
    );
    const isExact = timeline.stretches.every(
      (other) =>
        other.line >= line || !(other.isFlushUnknown || timeline.unclear.includes(other.line)),
    );
    parts.push(isExact ? `begins after ${formatSpan(from)}` : 'begin not known');
  }
  return parts.join(', ');
}

/** Possible distances between two marks, in seconds. */
const steps: readonly number[] = [1, 5, 10, 30, 60, 120, 300, 600, 1800, 3600, 7200, 21600, 86400];

/** Marks of a time axis, with at most `mostSteps` steps. */
export function timeMarks(seconds: number, mostSteps: number): number[] {
  const days = 86400 * Math.ceil(seconds / mostSteps / 86400);
  const step = steps.find((one) => seconds / one <= mostSteps) ?? days;
  return Array.from({ length: Math.floor(seconds / step) + 1 }, (_, n) => n * step);
}

/** A mark: `0`, `30 s`, `10 min`, `1:30 h`. */
export function markText(seconds: number): string {
  if (seconds === 0) {
    return '0';
  }
  if (seconds < 60) {
    return `${seconds} s`;
  }
  if (seconds < 3600) {
    const rest = seconds % 60;
    return rest === 0 ? `${seconds / 60} min` : `${seconds} s`;
  }
  const minutes = Math.floor((seconds % 3600) / 60);
  return `${Math.floor(seconds / 3600)}${minutes > 0 ? `:${String(minutes).padStart(2, '0')}` : ''} h`;
}

/** The first of the texts that fits; empty if none does. */
export function fitting(texts: readonly string[], letters: number): string {
  return texts.find((text) => text.length <= letters) ?? '';
}
