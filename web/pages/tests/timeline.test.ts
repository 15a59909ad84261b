import { describe, expect, it } from 'vitest';
import type { Sequence } from '../src/documents';
import { draftOf, setCell, tableOf } from '../src/table';
import { sequenceKind } from '../src/tables';
import {
  describeStretch,
  fitting,
  linesOf,
  markText,
  passText,
  placeAfter,
  positionIn,
  positionText,
  timelineOf,
  timeMarks,
  wholeText,
  type Line,
} from '../src/timeline';
import { load, statusWith } from './documents';

const everyday = load<Sequence>('tests/system/documents/sequence/everyday.json');
const lines = linesOf(sequenceKind.fromReport(everyday));
const whole = timelineOf(lines, 180, 'min');
const unnamed = timelineOf(lines, 180, undefined);
const unmeasured = timelineOf(lines, undefined, 'min');
const line = (runs: number | undefined, flush: number | undefined = 0, number = 1): Line => ({
  line: number,
  type: 'Analysis',
  stream: '1',
  runs,
  flush,
});
const at = (Seq_line: number, Line_replicate: number, more = {}) =>
  statusWith({
    Seq_line,
    Line_replicate,
    Seq_replicate: 1,
    Auto_state: 'Running Sequence',
    GC_state: 'Running 20s',
    Run_time: 20,
    ...more,
  });

describe('the lines of a table being edited', () => {
  it('are those of the table', () => {
    expect(lines[0]).toEqual({ line: 1, type: 'Calibration', stream: '4', runs: 2, flush: 1.5 });
    expect(lines).toHaveLength(3);
  });

  it('may contain invalid numbers', () => {
    const layout = sequenceKind.layout(undefined);
    const edited = (key: string, text: string) => {
      const draft = setCell(draftOf(sequenceKind.fromReport(everyday)), 1, key, text);
      return linesOf(tableOf(draft, layout))[1]!;
    };
    for (const text of ['', 'x', '-1', '1.5']) {
      expect(edited('Repeat', text).runs, text).toBeUndefined();
    }
    expect(edited('Repeat', '0').runs).toBe(0);
    for (const text of ['', '-', '-1', '1e999']) {
      expect(edited('Flush_time', text).flush, text).toBeUndefined();
    }
    expect(edited('Flush_time', '0').flush).toBe(0);
  });
});

describe('the bar', () => {
  it('shows flushing and runs of each line, one after the other', () => {
    expect(whole.stretches.map(({ from, flushing, running }) => [from, flushing, running])).toEqual(
      [
        [0, 90, 360],
        [450, 60, 900],
        [1410, 30, 540],
      ],
    );
    expect(whole).toMatchObject({ length: 1980, seconds: 1980, runs: 10, isFlushUnknown: false });
  });

  it('draws flushing of unknown length, but does not count it', () => {
    expect(unnamed).toMatchObject({ length: 1962, seconds: 1800, isFlushUnknown: true });
    expect(unnamed.stretches[1]).toMatchObject({ from: 414, flushing: 54, isFlushUnknown: true });
    const mixed = timelineOf([line(1, 0), { ...line(1, 0, 2), flush: undefined }], 100, 'min');
    expect(mixed.stretches.map(({ flushing }) => flushing)).toEqual([0, 30]);
    expect(mixed.isFlushUnknown).toBe(true);
  });

  it('counts runs while no status gives the run time', () => {
    expect(unmeasured).toMatchObject({ seconds: undefined, runs: 10 });
    expect(unmeasured.length).toBeCloseTo(10.9);
    expect(timelineOf([line(2, 0)], undefined, 'min')).toMatchObject({
      length: 2,
      isFlushUnknown: false,
    });
  });

  it('skips lines without runs, with their flushing', () => {
    const some = timelineOf([line(1, 5, 1), line(0, 5, 2), line(2, 0, 3)], 100, 's');
    expect(some).toMatchObject({ passedOver: [2], unclear: [], length: 305, runs: 3 });
    expect(some.stretches.map((one) => one.line)).toEqual([1, 3]);
    expect(timelineOf([], 100, 's')).toMatchObject({ length: 0, seconds: 0, stretches: [] });
  });

  it('draws one run if the number of runs is not valid', () => {
    const some = timelineOf([line(undefined, 0, 1), line(2, 0, 2)], 100, 's');
    expect(some).toMatchObject({ unclear: [1], length: 300 });
  });

  it('has its marks at known times', () => {
    expect([0, 100, 1980, 5000].map((seconds) => placeAfter(whole, seconds))).toEqual([
      0, 100, 1980, 1980,
    ]);
    // Behind the flushing of unknown length.
    expect([0, 1, 360, 361].map((seconds) => placeAfter(unnamed, seconds))).toEqual([
      0, 55, 414, 469,
    ]);
  });
});

describe('the position of the automation', () => {
  it('is in the run of the line', () => {
    expect(positionIn(whole, at(1, 1))).toBe(110);
    expect(positionIn(whole, at(2, 3))).toBe(510 + 360 + 20);
    expect(positionIn(whole, at(2, 3, { Run_time: 999 }))).toBe(510 + 540);
    expect(positionIn(whole, at(2, 3, { Run_time: -5 }))).toBe(510 + 360);
  });

  it('is before the run in a delay', () => {
    const delay = { GC_state: 'Ready', Auto_state: 'Run Delay 12s', Run_time: 180 };
    expect(positionIn(whole, at(2, 2, delay))).toBe(510 + 180);
  });

  it('is in the flushing, by the minutes left', () => {
    const flushing = (Auto_state: string) => ({ GC_state: 'Flushing', Auto_state, Run_time: 0 });
    expect(positionIn(whole, at(1, 1, flushing('Flushing Stream 60s')))).toBe(30);
    expect(positionIn(whole, at(1, 1, flushing('Flushing Stream')))).toBe(90);
    expect(positionIn(whole, at(2, 1, flushing('Flushing Stream 600s')))).toBe(450);
    expect(positionIn(unnamed, at(2, 1, flushing('Flushing Stream 60s')))).toBe(414);
  });

  it('is at whole runs while the run time is unknown', () => {
    expect(positionIn(unmeasured, at(1, 2))).toBe(1.3);
  });

  it('is unknown if status and table do not match', () => {
    expect(positionIn(whole, at(0, 0))).toBeUndefined();
    expect(positionIn(whole, at(4, 1))).toBeUndefined();
    expect(positionIn(whole, at(1, 3))).toBeUndefined();
    expect(positionIn(whole, at(1, 0))).toBeUndefined();
    expect(positionIn(whole, at(1, 2))).toBe(290);
  });

  it('is put into words', () => {
    expect(positionText(at(2, 3), everyday)).toBe('line 2, run 3 of 5, pass 1 of 2');
    expect(positionText(at(2, 3), { ...everyday, Continuous: true })).toBe(
      'line 2, run 3 of 5, pass 1',
    );
    expect(positionText(at(2, 3), undefined)).toBe('line 2, run 3, pass 1');
    expect(positionText(at(9, 3), everyday)).toBe('line 9, run 3, pass 1 of 2');
    expect(positionText(at(0, 0), everyday)).toBe('no line of the sequence');
    expect(positionText(at(0, 0, { Auto_state: 'Idle' }), undefined)).toBe('not under way');
  });
});

describe('lengths', () => {
  it('of a pass', () => {
    expect(passText(whole)).toBe('10 runs, 33 min 00 s');
    expect(passText(unnamed)).toBe('10 runs, 30 min 00 s plus flushing');
    expect(passText(unmeasured)).toBe('10 runs, how long is not known');
    expect(passText(timelineOf([line(1)], 37, 's'))).toBe('1 run, 37 s');
    expect(passText(timelineOf([line(undefined)], 37, 's'))).toBe('not known yet');
  });

  it('of the whole table', () => {
    expect(wholeText(whole, 2, false)).toBe('2 passes, 20 runs, 1 h 06 min');
    expect(wholeText(whole, 1, false)).toBe('1 pass, 10 runs, 33 min 00 s');
    expect(wholeText(unnamed, 0, false)).toBe('0 passes, 0 runs, 0 s');
    expect(wholeText(unnamed, 2, false)).toBe('2 passes, 20 runs, 1 h 00 min plus flushing');
    expect(wholeText(unmeasured, 2, false)).toBe('2 passes, 20 runs, how long is not known');
    expect(wholeText(whole, 2, true)).toBe('no end: after the last line it starts again');
    expect(wholeText(whole, 'x', false)).toBe('not known yet');
    expect(wholeText(whole, -1, false)).toBe('not known yet');
    expect(wholeText(timelineOf([line(undefined)], 9, 's'), 2, false)).toBe('not known yet');
  });

  it('of a line', () => {
    const told = (timeline = whole) =>
      timeline.stretches.map((stretch) => describeStretch(stretch, timeline));
    expect(told()).toEqual([
      'Line 1: Calibration, stream 4, 2 runs, 7 min 30 s, of which 1 min 30 s flushing, begins after 0 s',
      'Line 2: Analysis, stream 1, 5 runs, 16 min 00 s, of which 1 min 00 s flushing, begins after 7 min 30 s',
      'Line 3: Analysis, stream 2, 3 runs, 9 min 30 s, of which 30 s flushing, begins after 23 min 30 s',
    ]);
    expect(told(unnamed).slice(0, 2)).toEqual([
      'Line 1: Calibration, stream 4, 2 runs, 6 min 00 s plus flushing, begins after 0 s',
      'Line 2: Analysis, stream 1, 5 runs, 15 min 00 s plus flushing, begin not known',
    ]);
    expect(told(unmeasured)[0]).toBe('Line 1: Calibration, stream 4, 2 runs');
    expect(told(timelineOf([line(undefined, 0, 1), line(1, 0, 2)], 60, 's'))).toEqual([
      'Line 1: Analysis, stream 1, runs not known yet',
      'Line 2: Analysis, stream 1, 1 run, 1 min 00 s, begin not known',
    ]);
  });
});

describe('time marks', () => {
  it('are round, and no more than there is room for', () => {
    expect(timeMarks(1980, 7)).toEqual([0, 300, 600, 900, 1200, 1500, 1800]);
    expect(timeMarks(3, 5)).toEqual([0, 1, 2, 3]);
    expect(timeMarks(600, 5)).toEqual([0, 120, 240, 360, 480, 600]);
    expect(timeMarks(86400 * 20, 5)).toEqual([0, 4, 8, 12, 16, 20].map((days) => days * 86400));
    expect(timeMarks(0, 5)).toEqual([0]);
  });

  it('have the usual unit', () => {
    expect([0, 30, 60, 90, 1800, 3600, 5400, 86400].map(markText)).toEqual([
      '0',
      '30 s',
      '1 min',
      '90 s',
      '30 min',
      '1 h',
      '1:30 h',
      '24 h',
    ]);
    expect(markText(3900)).toBe('1:05 h');
  });

  it('have the first text that there is room for', () => {
    expect([9, 8, 4, 1, 0].map((letters) => fitting(['long text', 'text', '1'], letters))).toEqual([
      'long text',
      'text',
      'text',
      '1',
      '',
    ]);
  });
});
