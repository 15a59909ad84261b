import { describe, expect, it } from 'vitest';
import type { Configuration } from '../src/documents';
import {
  addRow,
  cellProblem,
  draftOf,
  duplicateRow,
  moveRow,
  problemsOfDraft,
  removeRow,
  setCell,
  tableOf,
  valueOf,
  type Draft,
} from '../src/table';
import { calibrationKind, sequenceKind } from '../src/tables';
import { load } from './documents';

const configuration = load<Configuration>('docs/schemas/examples/configuration.json');
const layout = sequenceKind.layout(configuration);
const table = sequenceKind.fromReport(load('tests/system/documents/sequence/everyday.json'));
const draft = draftOf(table);
const streams = (one: Draft): (string | undefined)[] => one.rows.map(({ cells }) => cells.Stream);

describe('rows', () => {
  it('become texts in cells, and back the same values', () => {
    expect(draft.rows[0]!.cells).toEqual({
      Type: 'Calibration',
      Repeat: '2',
      Stream: '4',
      Slot: '1',
      Flush_time: '1.5',
    });
    expect(draft.header).toEqual({ Table_repeat: '2', Continuous: 'false' });
    expect(tableOf(draft, layout)).toEqual(table);
  });

  it('are added at the end, up to 20', () => {
    const added = addRow(draft, layout);
    expect(added.rows.at(-1)).toEqual({
      id: 3,
      cells: { Type: 'Analysis', Repeat: '1', Stream: '1', Slot: '0', Flush_time: '0' },
    });
    expect(addRow(added, layout).rows.map(({ id }) => id)).toEqual([0, 1, 2, 3, 4]);
    let full = draft;
    for (let count = 0; count < 30; count++) {
      full = addRow(full, layout);
    }
    expect(full.rows.length).toBe(20);
    expect(duplicateRow(full, layout, 0)).toBe(full);
  });

  it('are duplicated below themselves, with new ids', () => {
    const duplicated = duplicateRow(draft, layout, 0);
    expect(streams(duplicated)).toEqual(['4', '4', '1', '2']);
    expect(duplicated.rows.map(({ id }) => id)).toEqual([0, 3, 1, 2]);
    expect(streams(duplicateRow(draft, layout, 1))).toEqual(['4', '1', '1', '2']);
    expect(duplicateRow(draft, layout, 99)).toBe(draft);
  });

  it('move up and down, but not past the ends', () => {
    expect(streams(moveRow(draft, 2, -1))).toEqual(['4', '2', '1']);
    expect(streams(moveRow(draft, 1, -1))).toEqual(['1', '4', '2']);
    expect(streams(moveRow(draft, 0, 1))).toEqual(['1', '4', '2']);
    expect(moveRow(draft, 0, -1)).toBe(draft);
    expect(moveRow(draft, 2, 1)).toBe(draft);
    expect(moveRow(draft, 99, 1)).toBe(draft);
  });

  it('are deleted, except for the last one', () => {
    const one = removeRow(removeRow(draft, layout, 0), layout, 2);
    expect(streams(one)).toEqual(['1']);
    expect(removeRow(one, layout, 1)).toBe(one);
  });

  it('have empty cells for missing values', () => {
    const empty: Draft = { header: {}, rows: [{ id: 0, cells: { Stream: '2' } }], nextId: 1 };
    expect(tableOf(empty, layout)).toEqual({
      header: { Table_repeat: '', Continuous: false },
      rows: [{ Type: '', Repeat: '', Stream: 2, Slot: '', Flush_time: '' }],
    });
    expect(problemsOfDraft(empty, layout).map(({ rowId, key }) => [rowId, key])).toEqual([
      [null, 'Table_repeat'],
      [0, 'Type'],
      [0, 'Repeat'],
      [0, 'Slot'],
      [0, 'Flush_time'],
    ]);
  });

  it('change only in the edited cell', () => {
    const changed = setCell(draft, 1, 'Stream', '3');
    expect(streams(changed)).toEqual(['4', '3', '2']);
    expect(streams(draft)).toEqual(['4', '1', '2']);
    expect(setCell(draft, null, 'Continuous', 'true').header.Continuous).toBe('true');
  });

  it('of a calibration are fixed', () => {
    const peaks = calibrationKind.layout(undefined);
    const calibration = draftOf(
      calibrationKind.fromReport(load('docs/schemas/examples/calibration.json')),
    );
    expect(addRow(calibration, peaks)).toBe(calibration);
    expect(duplicateRow(calibration, peaks, 0)).toBe(calibration);
    expect(problemsOfDraft(calibration, peaks)).toEqual([]);
  });
});

describe('texts of cells', () => {
  it.each([
    ['5', 'integer', 5],
    [' -3 ', 'integer', -3],
    ['1.0', 'integer', '1.0'],
    ['', 'integer', ''],
    ['0x10', 'integer', '0x10'],
    ['1.5', 'real', 1.5],
    ['+5', 'integer', 5],
    ['-12', 'integer', -12],
    ['5-', 'integer', '5-'],
    ['.5', 'real', 0.5],
    ['.125', 'real', 0.125],
    ['12', 'real', 12],
    ['12.', 'real', 12],
    ['12.25', 'real', 12.25],
    ['-1.5', 'real', -1.5],
    ['+1.5', 'real', 1.5],
    [' 1.5 ', 'real', 1.5],
    ['x1.5', 'real', 'x1.5'],
    ['1.5x', 'real', '1.5x'],
    ['1e5', 'real', 100000],
    ['1E+5', 'real', 100000],
    ['2e-12', 'real', 2e-12],
    ['1e', 'real', '1e'],
    ['1exx', 'real', '1exx'],
    ['1ex', 'real', '1ex'],
    ['1.x', 'real', '1.x'],
    ['.x', 'real', '.x'],
    ['.', 'real', '.'],
    [' a ', 'text', ' a '],
    [' 5 ', 'choice', ' 5 '],
    ['TRUE', 'flag', false],
    ['2e-5', 'real', 0.00002],
    ['1,5', 'real', 1.5],
    [',5', 'real', 0.5],
    ['5,', 'real', 5],
    ['1,5e2', 'real', 150],
    [',', 'real', ','],
    ['1,234.5', 'real', '1,234.5'],
    ['1.234,5', 'real', '1.234,5'],
    ['1,2,3', 'real', '1,2,3'],
    ['1,0', 'integer', '1,0'],
    ['-', 'real', '-'],
    ['NaN', 'real', 'NaN'],
    ['true', 'flag', true],
    ['false', 'flag', false],
  ] as const)('%j as %s is %j', (text, kind, value) => {
    expect(valueOf(text, kind)).toBe(value);
  });

  it.each([
    ['Repeat', '1.5', 'not a whole number'],
    ['Repeat', '99999999999', 'must be at most 2147483647'],
    ['Repeat', '-1', 'must be at least 0'],
    ['Repeat', '0', undefined],
    ['Repeat', '2147483647', undefined],
    ['Stream', '-1', 'must be at least 0'],
    ['Stream', '0', undefined],
    ['Slot', '-1', 'must be at least 0'],
    ['Slot', '0', undefined],
    ['Slot', '10', undefined],
    ['Flush_time', '-0.001', 'must be at least 0'],
    ['Flush_time', '0', undefined],
    ['Flush_time', '1e30', undefined],
    ['Stream', '5', 'must be at most 4'],
    ['Stream', '4', undefined],
    ['Slot', '11', 'must be at most 10'],
    ['Repeat', ' ', 'empty'],
    ['Repeat', '1.000.000', 'not a whole number: leave out what separates thousands'],
    ['Repeat', '1,0', 'not a whole number'],
    ['Flush_time', '', 'empty'],
    ['Flush_time', '-', 'not a number'],
    ['Flush_time', '1,5', undefined],
    ['Flush_time', '1,234.5', 'not a number: leave out what separates thousands'],
    ['Flush_time', '-1.234,5', 'not a number: leave out what separates thousands'],
    ['Flush_time', ' 12’345 ', 'not a number: leave out what separates thousands'],
    ['Flush_time', '1 000', 'not a number: leave out what separates thousands'],
    ['Flush_time', '1,x', 'not a number'],
    ['Flush_time', 'x1,234.5', 'not a number'],
    ['Flush_time', '1,234.5x', 'not a number'],
    ['Flush_time', '1,234.', 'not a number'],
    ['Flush_time', '1e999', 'must be a number'],
    ['Flush_time', '2', undefined],
    ['Type', 'None', 'must be one of Analysis, Calibration, Blank, Verification'],
  ])('%s %j: %s', (key, text, expected) => {
    const [problem] = problemsOfDraft(setCell(draft, 1, key, text), layout);
    expect(problem).toEqual(expected && { rowId: 1, key, text: expected });
  });

  it('have bounds of their own', () => {
    const column = { ...layout.columns[1]!, minimum: 5, maximum: 7 };
    const told = ['4', '5', '7', '8'].map((text) => cellProblem(text, column, layout.schema));
    expect(told).toEqual(['must be at least 5', '', '', 'must be at most 7']);
  });

  it('are checked in the header, too', () => {
    expect(problemsOfDraft(setCell(draft, null, 'Table_repeat', 'twice'), layout)).toEqual([
      { rowId: null, key: 'Table_repeat', text: 'not a whole number' },
    ]);
  });

  it('have no limit for streams before the configuration is known', () => {
    const unknown = sequenceKind.layout(undefined);
    expect(problemsOfDraft(setCell(draft, 1, 'Stream', '40'), unknown)).toEqual([]);
  });

  it('exist for only one line without a stream selector', () => {
    const bare = sequenceKind.layout({ ...configuration, Stream_configured: false, Stream_max: 0 });
    expect(bare.mostRows).toBe(1);
    expect(problemsOfDraft(setCell(draft, 0, 'Stream', '3'), bare)).toEqual([]);
  });
});
