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

  it('tells an added row from those that only moved down', () => {
    expect(compare(table(line(1), line(2)), table(line(9), line(1), line(2)))).toEqual([
      'added 0 1 ',
    ]);
  });

  it('tells a removed row', () => {
    expect(compare(table(line(1), line(2), line(3)), table(line(1), line(3)))).toEqual([
      'removed 2 0 ',
    ]);
  });

  it('tells a changed row, and what of it', () => {
    expect(compare(table(line(1), line(2), line(3)), table(line(1), line(2, 7), line(3)))).toEqual([
      'changed 2 2 Repeat',
    ]);
  });

  it('tells a moved row as removed and added', () => {
    expect(compare(table(line(1), line(2), line(3)), table(line(2), line(3), line(1)))).toEqual([
      'removed 1 0 ',
      'added 0 3 ',
    ]);
  });

  it('tells all of it at once', () => {
    const before = table(line(1), line(2), line(3));
    const after = table(line(1, 4), line(3), line(5), line(6));
    expect(compare(before, after)).toEqual([
      'changed 1 1 Repeat',
      'removed 2 0 ',
      'added 0 3 ',
      'added 0 4 ',
    ]);
  });

  it('tells the header', () => {
    const after = { ...table(line(1)), header: { Table_repeat: 3, Continuous: false } };
    expect(diffTables(table(line(1)), after, layout).header).toEqual([
      { label: 'Runs of the whole table', before: 1, after: 3 },
    ]);
  });

  it('does not count the last digits that a real may lose on its way', () => {
    const rounded = { ...line(1), Flush_time: 0.5000000298 };
    expect(compare(table(line(1)), table(rounded))).toEqual([]);
    const other = { ...line(1), Flush_time: 0.50001 };
    expect(compare(table(line(1)), table(other))).toEqual(['changed 1 1 Flush_time']);
  });

  it('does not count what the instrument computes', () => {
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

  it('pairs up all of 400 peaks', () => {
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
