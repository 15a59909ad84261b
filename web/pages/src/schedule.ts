// Predicts the end of the run and of the automation from status and sequence.
import type { Real, Sequence, Status } from './documents';
import { formatMoment } from './format';
import { autoStateOf, gcStateOf, isIdle } from './states';

/** Seconds in a unit of time, by the names that an owner may give it. */
const secondsOfUnit: ReadonlyMap<string | undefined, number> = new Map([
  ['s', 1],
  ['sec', 1],
  ['seconds', 1],
  ['min', 60],
  ['minutes', 60],
  ['h', 3600],
  ['hours', 3600],
]);

/** An instrument's time in seconds; undefined if the time or its unit is unknown. */
export function secondsOf(time: Real | undefined, unit: string | undefined): number | undefined {
  if (time === 0) {
    return 0;
  }
  const factor = secondsOfUnit.get(unit);
  return typeof time === 'number' && factor ? Math.max(0, time) * factor : undefined;
}

/** A line's part of a pass through the table: flushing, then its runs. */
export interface Block {
  /** Counted from 1, as in the status. */
  line: number;
  /** Seconds; undefined if unknown. */
  flush: number | undefined;
  runs: number;
  /** Seconds for all its runs, without the delays between them, which no report gives. */
  seconds: number;
}

/** The blocks of a pass through the table, without skipped lines. */
export function blocksOf(sequence: Sequence, runSeconds: number, flushUnit?: string): Block[] {
  return (sequence.rows ?? []).flatMap(({ Repeat: runs = 0, Flush_time }, index) =>
    runs > 0
      ? {
          line: index + 1,
          flush: secondsOf(Flush_time, flushUnit),
          runs,
          seconds: runs * runSeconds,
        }
      : [],
  );
}

export type End =
  /** Nothing is under way. */
  | { kind: 'none' }
  | { kind: 'at'; time: number }
  /** The earliest time: some step takes an unknown time. */
  | { kind: 'not-before'; time: number; why: string }
  /** It continues until it is stopped. */
  | { kind: 'never' }
  | { kind: 'unknown'; why: string };

/** Seconds that the present run has left; undefined if there is none. */
function runLeft(status: Status): number | undefined {
  return gcStateOf(status) === 'Running'
    ? Math.max(0, status.Total_run_time - status.Run_time)
    : undefined;
}

/** When the present run ends; `time` is when the status was read, in milliseconds. */
export function endOfRun(status: Status, time: number): End {
  const left = runLeft(status);
  if (left === undefined) {
    return { kind: 'none' };
  }
  if (status.Total_run_time <= 0) {
    return { kind: 'unknown', why: 'the instrument tells no run time' };
  }
  return status.Run_time > status.Total_run_time
    ? { kind: 'unknown', why: 'the run takes longer than its run time' }
    : { kind: 'at', time: time + left * 1000 };
}

/** What comes after the present run. */
export interface Remaining {
  /** All runs, and the lines of the present pass that have any of them. */
  runs: number;
  lines: number;
  /** Passes through the table after the present one. */
  passes: number;
  /** Seconds for all of it, as far as known. */
  seconds: number;
  /** Whether any flush time still to come is of unknown length. */
  hasUnknownFlush: boolean;
  /** Whether the table has more rows than are known. */
  isCut: boolean;
}

/** The highest pass that the instrument counts; assumed, as no report says. */
const lastPass = 999;

const sum = (blocks: readonly Block[], of: (block: Block) => number): number =>
  blocks.reduce((total, block) => total + of(block), 0);
const secondsIn = (block: Block): number => (block.flush ?? 0) + block.seconds;

/** What is left after the present run; undefined if status and sequence do not match. */
export function remainingOf(
  status: Status,
  sequence: Sequence,
  flushUnit?: string,
): Remaining | undefined {
  const { Seq_line: line, Line_replicate: replicate, Seq_replicate: pass } = status;
  const whole = blocksOf(sequence, status.Total_run_time, flushUnit);
  const current = whole.find((block) => block.line === line);
  const passes = sequence.Table_repeat - pass;
  const isCounted = pass >= 1 && (pass < lastPass || passes <= 0);
  if (!current || replicate < 1 || replicate > current.runs || passes < 0 || !isCounted) {
    return undefined;
  }
  const own = current.runs - replicate;
  const later = whole.filter((block) => block.line > line);
  const ahead = passes > 0 ? whole : later;
  const allRuns = (blocks: readonly Block[]): number => sum(blocks, ({ runs }) => runs);
  return {
    runs: own + allRuns(later) + passes * allRuns(whole),
    lines: later.length + (own > 0 ? 1 : 0),
    passes,
    seconds: own * status.Total_run_time + sum(later, secondsIn) + passes * sum(whole, secondsIn),
    hasUnknownFlush: ahead.some(({ flush }) => flush === undefined),
    isCut: sequence.total > (sequence.rows ?? []).length,
  };
}

/** Seconds until the next run begins, if one is awaited; 0 if the instrument gives none. */
function waitOf(status: Status): { seconds: number; isExact: boolean } | undefined {
  const [, seconds] = /^(?:Run Delay|Flushing Stream) (\d+)s$/.exec(status.Auto_state) ?? [];
  const state = autoStateOf(status);
  return ['Run Delay', 'Flushing Stream'].includes(state)
    ? // The time left for flushing is given in whole minutes.
      { seconds: Number(seconds ?? 0), isExact: state === 'Run Delay' }
    : undefined;
}

/** Seconds until the present run, or the one awaited, is over. */
function presentLeft(status: Status): { seconds: number; isExact: boolean } {
  const left = runLeft(status);
  if (left !== undefined) {
    return { seconds: left, isExact: endOfRun(status, 0).kind === 'at' };
  }
  const wait = waitOf(status);
  return wait
    ? { seconds: wait.seconds + status.Total_run_time, isExact: wait.isExact }
    : { seconds: 0, isExact: false };
}

/** When the automation ends by itself; `time` is when the status was read, in milliseconds. */
export function endOfAutomation(
  status: Status,
  sequence: Sequence | undefined,
  time: number,
  flushUnit?: string,
): End {
  if (isIdle(status)) {
    return { kind: 'none' };
  }
  const present = presentLeft(status);
  const after = (seconds: number): number => time + seconds * 1000;
  if (status.Seq_line < 1) {
    // Runs outside the sequence: no report gives the number of runs of a calibration.
    return autoStateOf(status) === 'Running - Single Run'
      ? endOfRun(status, time)
      : { kind: 'not-before', time: after(present.seconds), why: 'more runs may follow' };
  }
  if (!sequence) {
    return { kind: 'unknown', why: 'the sequence is not known' };
  }
  if (sequence.Continuous) {
    return { kind: 'never' };
  }
  const remaining = remainingOf(status, sequence, flushUnit);
  if (!remaining) {
    return { kind: 'unknown', why: 'the sequence does not fit what the instrument does' };
  }
  const end = after(present.seconds + remaining.seconds);
  const reasons = [
    remaining.isCut && 'the sequence has more lines than can be shown',
    remaining.hasUnknownFlush && 'the unit of the flush times is not known',
    remaining.runs > 0 && 'delays between runs are not known',
    !present.isExact && 'how long the present step takes is not known',
  ].filter((reason) => reason !== false);
  return reasons.length === 0
    ? { kind: 'at', time: end }
    : { kind: 'not-before', time: end, why: reasons.join('; ') };
}

/** Milliseconds beyond which an end is not given as a time of day. */
const farthest = 366 * 24 * 3600 * 1000;

/** An end in a few words; empty if nothing is under way. */
export function describeEnd(end: End, present: number): string {
  switch (end.kind) {
    case 'none':
      return '';
    case 'never':
      return 'when it is stopped';
    case 'unknown':
      return 'not known';
    default: {
      const before = end.kind === 'at' ? '' : 'not before ';
      return end.time - present > farthest
        ? 'in more than a year'
        : `${before}${formatMoment(end.time, present)}`;
    }
  }
}
