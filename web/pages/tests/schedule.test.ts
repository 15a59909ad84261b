import { describe, expect, it } from 'vitest';
import type { Sequence, Status } from '../src/documents';
import {
  blocksOf,
  describeEnd,
  endOfAutomation,
  endOfRun,
  remainingOf,
  secondsOf,
} from '../src/schedule';
import { load, statusWith } from './documents';

const sequence = load<Sequence>('docs/schemas/examples/sequence.json');
const time = new Date(2026, 2, 5, 14, 30, 7).getTime();
const after = (seconds: number): number => time + seconds * 1000;

const running = (changes: Partial<Status> = {}): Status =>
  statusWith({
    GC_state: 'Running 37s',
    Run_time: 37,
    Auto_state: 'Running Sequence',
    Seq_line: 2,
    Line_replicate: 4,
    Seq_replicate: 2,
    ...changes,
  });

describe('a time with a unit', () => {
  it.each([
    [1.5, 'min', 90],
    [1.5, 's', 1.5],
    [1.5, 'h', 5400],
    [-1, 'min', 0],
    [0, undefined, 0],
  ])('%s %s', (value, unit, seconds) => expect(secondsOf(value, unit)).toBe(seconds));

  it.each([
    [1.5, undefined],
    [1.5, '°C'],
    [1.5, 'constructor'],
    ['-', 'min'],
    [undefined, 'min'],
  ] as const)('%s %s is not known', (value, unit) =>
    expect(secondsOf(value, unit)).toBeUndefined(),
  );
});

it('lists what a pass through the table consists of', () => {
  const rows = [...sequence.rows!, { Repeat: 0 }, {}, { Repeat: 1, Flush_time: 0 }];
  expect(blocksOf({ ...sequence, rows }, 180, 'min')).toEqual([
    { line: 1, flush: 90, runs: 2, seconds: 360 },
    { line: 2, flush: 60, runs: 5, seconds: 900 },
    { line: 3, flush: 30, runs: 3, seconds: 540 },
    { line: 6, flush: 0, runs: 1, seconds: 180 },
  ]);
  expect(blocksOf({ Table_repeat: 1, total: 0 }, 180)).toEqual([]);
  expect(blocksOf(sequence, 180)[0]!.flush).toBeUndefined();
});

describe('the end of a run', () => {
  it('is when its remaining time is over', () => {
    expect(endOfRun(running(), time)).toEqual({ kind: 'at', time: after(143) });
    expect(endOfRun(running({ Run_time: 180 }), time)).toEqual({ kind: 'at', time });
  });

  it('does not exist without a run', () => {
    expect(endOfRun(statusWith(), time)).toEqual({ kind: 'none' });
    expect(endOfRun(running({ GC_state: 'Flushing' }), time)).toEqual({ kind: 'none' });
  });

  it('is unknown if the run time is zero, or over', () => {
    expect(endOfRun(running({ Total_run_time: 0 }), time)).toMatchObject({ kind: 'unknown' });
    expect(endOfRun(running({ Run_time: 181 }), time)).toMatchObject({ kind: 'unknown' });
  });
});

describe('what is left of a sequence', () => {
  it('is counted after the present run, in the last pass', () => {
    expect(remainingOf(running(), sequence, 'min')).toEqual({
      runs: 4,
      lines: 2,
      passes: 0,
      seconds: 180 + 30 + 540,
      hasUnknownFlush: false,
      isCut: false,
    });
  });

  it('includes whole passes', () => {
    expect(remainingOf(running({ Seq_replicate: 1 }), sequence, 'min')).toMatchObject({
      runs: 14,
      lines: 2,
      passes: 1,
      seconds: 180 + 30 + 540 + 90 + 360 + 60 + 900 + 30 + 540,
    });
  });

  it('is nothing during the last run', () => {
    const last = running({ Seq_line: 3, Line_replicate: 3 });
    expect(remainingOf(last, sequence)).toEqual({
      runs: 0,
      lines: 0,
      passes: 0,
      seconds: 0,
      hasUnknownFlush: false,
      isCut: false,
    });
    expect(remainingOf(last, { ...sequence, total: 4 })).toMatchObject({ isCut: true });
  });

  it('has unknown flush times without a unit, if any are left', () => {
    expect(remainingOf(running(), sequence)).toMatchObject({ hasUnknownFlush: true, seconds: 720 });
    const last = running({ Seq_line: 3, Line_replicate: 1 });
    expect(remainingOf(last, sequence)).toMatchObject({ hasUnknownFlush: false, seconds: 360 });
    expect(remainingOf({ ...last, Seq_replicate: 1 }, sequence)).toMatchObject({
      hasUnknownFlush: true,
    });
  });

  it.each([
    [{ Seq_line: 4 }],
    [{ Line_replicate: 6 }],
    [{ Line_replicate: 0 }],
    [{ Seq_replicate: 3 }],
    [{ Seq_replicate: 0 }],
  ])('is unknown if the status is at %j', (changes) => {
    expect(remainingOf(running(changes), sequence)).toBeUndefined();
  });

  it('is unknown once the passes are no longer counted', () => {
    const often = { ...sequence, Table_repeat: 1200 };
    expect(remainingOf(running({ Seq_replicate: 998 }), often)).toMatchObject({ passes: 202 });
    expect(remainingOf(running({ Seq_replicate: 999 }), often)).toBeUndefined();
    expect(
      remainingOf(running({ Seq_replicate: 999 }), { ...sequence, Table_repeat: 999 }),
    ).toMatchObject({ passes: 0 });
  });

  it('accepts any numbers', () => {
    const most = 2147483647;
    const rows = [{ Repeat: most, Flush_time: 0 }];
    const huge = { Table_repeat: 998, total: 1, rows };
    const first = running({ Seq_line: 1, Line_replicate: 1, Seq_replicate: 1 });
    expect(remainingOf(first, huge)!.runs).toBe(998 * most - 1);
    expect(describeEnd(endOfAutomation(first, huge, time), time)).toBe('in more than a year');
  });
});

describe('the end of the automation', () => {
  const endOf = (status: Status, table: Sequence | undefined = sequence, unit?: string): unknown =>
    endOfAutomation(status, table, time, unit);

  it('does not exist while it is idle', () => {
    expect(endOf(statusWith())).toEqual({ kind: 'none' });
  });

  it('is that of the last run', () => {
    expect(endOf(running({ Seq_line: 3, Line_replicate: 3 }))).toEqual({
      kind: 'at',
      time: after(143),
    });
  });

  it('is not before the remaining runs, with the reasons', () => {
    expect(endOf(running(), sequence, 'min')).toEqual({
      kind: 'not-before',
      time: after(143 + 180 + 30 + 540),
      why: 'delays between runs are not known',
    });
    expect(endOf(running())).toMatchObject({
      why: 'the unit of the flush times is not known; delays between runs are not known',
    });
    expect(
      endOf(running({ Seq_line: 3, Line_replicate: 3 }), { ...sequence, total: 21 }),
    ).toMatchObject({
      kind: 'not-before',
      time: after(143),
      why: 'the sequence has more lines than can be shown',
    });
  });

  const last = { Seq_line: 3, Line_replicate: 3, GC_state: 'Ready', Run_time: 0 };
  it.each([
    ['Run Delay 30s', { kind: 'at', time: after(210) }],
    ['Flushing Stream 60s', { kind: 'not-before', time: after(240) }],
    ['Flushing Stream', { kind: 'not-before', time: after(180) }],
    ['Running Sequence', { kind: 'not-before', time }],
    ['Recalculating', { kind: 'not-before', time }],
  ])('includes what comes before the run: %s', (Auto_state, end) => {
    expect(endOf(running({ ...last, Auto_state }))).toMatchObject(end);
  });

  it('is unknown if a run takes too long', () => {
    const late = running({ Seq_line: 3, Line_replicate: 3, Run_time: 200 });
    expect(endOf(late)).toEqual({
      kind: 'not-before',
      time,
      why: 'how long the present step takes is not known',
    });
  });

  it('never comes if the table starts again', () => {
    expect(endOf(running(), { ...sequence, Continuous: true })).toEqual({ kind: 'never' });
  });

  it('is unknown without a matching sequence', () => {
    expect(endOf(running(), { Table_repeat: 1, total: 0 })).toMatchObject({ kind: 'unknown' });
    expect(endOfAutomation(running(), undefined, time)).toEqual({
      kind: 'unknown',
      why: 'the sequence is not known',
    });
  });

  it('is the end of the run if that was started alone', () => {
    const alone = { Seq_line: 0, Line_replicate: 0, Seq_replicate: 0 };
    expect(endOf(running({ ...alone, Auto_state: 'Running - Single Run' }))).toEqual({
      kind: 'at',
      time: after(143),
    });
    expect(endOf(running({ ...alone, Auto_state: 'Running Calibration' }))).toEqual({
      kind: 'not-before',
      time: after(143),
      why: 'more runs may follow',
    });
  });
});

describe('an end in words', () => {
  it.each([
    [{ kind: 'none' }, ''],
    [{ kind: 'never' }, 'when it is stopped'],
    [{ kind: 'unknown', why: '' }, 'not known'],
    [{ kind: 'at', time: after(143) }, '14:32'],
    [{ kind: 'not-before', time: after(143), why: '' }, 'not before 14:32'],
    [{ kind: 'at', time: after(86_400) }, '14:30 on 6 March'],
    [{ kind: 'at', time: after(302 * 86_400) }, '14:30 on 1 January 2027'],
    [{ kind: 'at', time: after(367 * 86_400) }, 'in more than a year'],
  ] as const)('%j', (end, text) => expect(describeEnd(end, time)).toBe(text));
});
