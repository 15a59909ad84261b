import { describe, expect, it } from 'vitest';
import { diffTables, isEmptyDiff, type TableDiff } from '../src/diff';
import type { Table, Values } from '../src/table';
import { calibrationKind, sequenceKind } from '../src/tables';

const layout = sequenceKind.layout(undefined);
const line = (stream: number, repeat = 1): Values => ({
  Type: 'Analysis',
  Repeat: repeat,
  Stream: stream,
  Slot: 0,
  Flush_time: 0.5,
});
const table = (...rows: Values[]): Table => ({
  header: { Table_repeat: 1, Continuous: false },
  rows,
});
const told = (diff: TableDiff): string[] =>
  diff.rows.map(
    ({ kind, placeBefore, placeAfter, keys }) =>
      `${kind} ${placeBefore} ${placeAfter} ${keys.join()}`,
  );
const compare = (before: Table, after: Table): string[] => told(diffTables(before, after, layout));

describe('difference', () => {
  it('is empty between equal tables', () => {
    const diff = diffTables(table(line(1), line(2)), table(line(1), line(2)), layout);
    expect(diff).toEqual({ header: [], rows: [] });
    expect(isEmptyDiff(diff)).toBe(true);
  });

  it('distinguishes an added row from those that only moved down', () => {
    expect(compare(table(line(1), line(2)), table(line(9), line(1), line(2)))).toEqual([
      'added 0 1 ',
    ]);
  });

  it('finds a removed row', () => {
    expect(compare(table(line(1), line(2), line(3)), table(line(1), line(3)))).toEqual([
      'removed 2 0 ',
    ]);
  });

  it('finds a changed row, and its columns', () => {
    expect(compare(table(line(1), line(2), line(3)), table(line(1), line(2, 7), line(3)))).toEqual([
      'changed 2 2 Repeat',
    ]);
  });

  it('shows a moved row as removed and added', () => {
    expect(compare(table(line(1), line(2), line(3)), table(line(2), line(3), line(1)))).toEqual([
      'removed 1 0 ',
      'added 0 3 ',
    ]);
  });

  it('shows an exchange as the first removed, and added below', () => {
    expect(compare(table(line(1), line(2)), table(line(2), line(1)))).toEqual([
      'removed 1 0 ',
      'added 0 2 ',
    ]);
  });

  it('contains the rows that it reports', () => {
    const rows = (before: Table, after: Table) =>
      diffTables(before, after, layout).rows.map((row) => [row.before, row.after]);
    expect(rows(table(line(1)), table(line(1, 2)))).toEqual([[line(1), line(1, 2)]]);
    expect(rows(table(line(1)), table())).toEqual([[line(1), undefined]]);
    expect(rows(table(), table(line(1)))).toEqual([[undefined, line(1)]]);
  });

  it('keeps as many rows as possible, and reports all others', () => {
    const kept = (a: number[], b: number[]): number =>
      a.length === 0 || b.length === 0
        ? 0
        : a[0] === b[0]
          ? 1 + kept(a.slice(1), b.slice(1))
          : Math.max(kept(a.slice(1), b), kept(a, b.slice(1)));
    // Every table of up to four lines with two streams, and some longer ones.
    const short = [0, 1, 2, 3, 4].flatMap((length) =>
      Array.from({ length: 2 ** length }, (_, n) =>
        Array.from({ length }, (_, place) => ((n >> place) & 1) + 1),
      ),
    );
    const pairs = short.flatMap((a) => short.map((b) => [a, b] as const));
    pairs.push([
      [1, 2, 3, 4, 5, 3, 2],
      [3, 4, 5, 1, 2, 3],
    ]);
    for (const [a, b] of pairs) {
      const diff = diffTables(
        table(...a.map((stream) => line(stream))),
        table(...b.map((stream) => line(stream))),
        layout,
      );
      const places = (place: 'placeBefore' | 'placeAfter'): number[] =>
        diff.rows.map((row) => row[place]).filter((one) => one > 0);
      const rest = (all: number[], told: number[]): number[] =>
        all.filter((_, index) => !told.includes(index + 1));
      const same = rest(a, places('placeBefore'));
      expect([a, b, same]).toEqual([a, b, rest(b, places('placeAfter'))]);
      expect([a, b, same.length]).toEqual([a, b, kept(a, b)]);
    }
  });

  it('reports all changes at once', () => {
    const before = table(line(1), line(2), line(3));
    const after = table(line(1, 4), line(3), line(5), line(6));
    expect(compare(before, after)).toEqual([
      'changed 1 1 Repeat',
      'removed 2 0 ',
      'added 0 3 ',
      'added 0 4 ',
    ]);
  });

  it('reports the header', () => {
    const after = { ...table(line(1)), header: { Table_repeat: 3, Continuous: false } };
    expect(diffTables(table(line(1)), after, layout).header).toEqual([
      { label: 'Runs of the whole table', before: 1, after: 3 },
    ]);
    expect(isEmptyDiff(diffTables(table(line(1)), after, layout))).toBe(false);
    expect(isEmptyDiff(diffTables(table(line(1)), table(), layout))).toBe(false);
  });

  it('ignores the last digits, which a real may lose on its way', () => {
    const rounded = { ...line(1), Flush_time: 0.5000000298 };
    expect(compare(table(line(1)), table(rounded))).toEqual([]);
    const other = { ...line(1), Flush_time: 0.50001 };
    expect(compare(table(line(1)), table(other))).toEqual(['changed 1 1 Flush_time']);
  });

  it.each([
    [1, 1.0000009, true],
    [1, 1.0000011, false],
    [1000, 1000.0009, true],
    [1000, 1000.0011, false],
    [-1000, -1000.0009, true],
    [0.001, 0.0010000005, true],
    [0, 0, true],
    [0, 1e-9, false],
    [0.5, '-', false],
    ['-', 0.5, false],
    ['-', '-', true],
    ['2', 2, false],
    [2, '2', false],
  ])('treats a time of %j as the same as %j: %j', (before, after, isSame) => {
    const withTime = (value: number | string): Table => table({ ...line(1), Flush_time: value });
    expect(isEmptyDiff(diffTables(withTime(before), withTime(after), layout))).toBe(isSame);
  });

  it('reports a text that differs', () => {
    expect(compare(table(line(1)), table({ ...line(1), Type: 'Blank' }))).toEqual([
      'changed 1 1 Type',
    ]);
  });

  it('ignores what the instrument computes', () => {
    const peak: Values = {
      Channel: 1,
      ID: 2,
      PkName: 'Methane',
      Ret_time: 28.2,
      Level_amt: 84.95,
      Linear: 1,
    };
    const peaks = calibrationKind.layout(undefined);
    const before: Table = { header: {}, rows: [peak] };
    const recalibrated: Table = { header: {}, rows: [{ ...peak, Linear: 1.1, Ret_time: 28.3 }] };
    expect(isEmptyDiff(diffTables(before, recalibrated, peaks))).toBe(true);
    const cleared: Table = { header: {}, rows: [{ ...peak, Level_amt: 0 }] };
    expect(told(diffTables(before, cleared, peaks))).toEqual(['changed 1 1 Level_amt']);
  });

  it('matches all of 400 peaks', () => {
    const peaks = calibrationKind.layout(undefined);
    const rows = (amount: number): Values[] =>
      Array.from({ length: 400 }, (_, n) => ({
        Channel: 1,
        ID: n + 1,
        PkName: '',
        Level_amt: amount,
      }));
    const diff = diffTables({ header: {}, rows: rows(1) }, { header: {}, rows: rows(2) }, peaks);
    expect(diff.rows.length).toBe(400);
    expect(diff.rows.every(({ kind }) => kind === 'changed')).toBe(true);
  });
});
