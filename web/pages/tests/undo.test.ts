import { signal } from '@preact/signals';
import { beforeEach, describe, expect, it } from 'vitest';
import { cellName, cellText, firstDifference, unusualValues } from '../src/cells';
import type { Configuration } from '../src/documents';
import { Editing } from '../src/editing';
import {
  addRow,
  draftOf,
  duplicateRow,
  moveRow,
  removeRow,
  setCell,
  type Draft,
  type Table,
} from '../src/table';
import { calibrationKind, sequenceKind } from '../src/tables';
import { Undo } from '../src/undo';
import { load } from './documents';

const layout = sequenceKind.layout(undefined);
const table = sequenceKind.fromReport(load('tests/system/documents/sequence/everyday.json'));
const amounts = calibrationKind.fromReport(load('docs/schemas/examples/calibration.json'));
const peaks = calibrationKind.layout(undefined);
const draft = draftOf(table);

let editing: Editing;

const now = (): Draft => editing.draft.value!;
const streams = (): (string | undefined)[] => now().rows.map(({ cells }) => cells.Stream);
const typeIn = (rowId: number | null, key: string, text: string): void =>
  editing.change(
    setCell(now(), rowId, key, text),
    { what: `${key} ${rowId}`, place: { rowId, key } },
    true,
  );
const said = () => [editing.said.value?.text, editing.said.value?.place];
const steps = (): string[] => editing.undos.past.value.map(({ what }) => what);

beforeEach(() => {
  editing = new Editing(sequenceKind, signal<Configuration | undefined>(undefined));
  editing.show(table);
});

describe('undo', () => {
  it('goes back through all steps in order, and forward again', () => {
    typeIn(1, 'Stream', '3');
    editing.change(removeRow(now(), layout, 0), { what: 'deletion of line 1' });
    const place = { rowId: 1, key: 'Stream' };
    editing.change(moveRow(now(), 1, 1), { what: 'move of line 1 down', place });
    expect(streams()).toEqual(['2', '3']);
    editing.undo();
    expect(said()).toEqual(['Undone: move of line 1 down.', place]);
    expect(streams()).toEqual(['3', '2']);
    editing.undo();
    expect(said()).toEqual(['Undone: deletion of line 1.', { rowId: 0, key: 'Type' }]);
    expect(streams()).toEqual(['4', '3', '2']);
    editing.undo();
    expect(said()).toEqual(['Undone: Stream 1.', { rowId: 1, key: 'Stream' }]);
    expect(now()).toEqual(draft);
    expect(editing.isDirty.value).toBe(false);
    const last = editing.said.value;
    editing.undo();
    expect(editing.said.value).toBe(last);
    editing.redo();
    editing.redo();
    expect(said()).toEqual(['Redone: deletion of line 1.', { rowId: 1, key: 'Type' }]);
    editing.redo();
    expect(streams()).toEqual(['2', '3']);
    editing.redo();
    expect(streams()).toEqual(['2', '3']);
  });

  it('forgets what could be redone after another change', () => {
    typeIn(1, 'Stream', '3');
    editing.undo();
    typeIn(1, 'Stream', '1');
    typeIn(2, 'Stream', '1');
    expect(editing.undos.future.value).toEqual([]);
    expect(editing.said.value).toBeUndefined();
    editing.redo();
    expect(streams()).toEqual(['4', '1', '1']);
  });

  it('treats everything typed during one visit to a cell as one step', () => {
    typeIn(1, 'Stream', '');
    typeIn(1, 'Stream', '3');
    typeIn(1, 'Repeat', '7');
    typeIn(1, 'Stream', '2');
    expect(steps()).toEqual(['Stream 1', 'Repeat 1', 'Stream 1']);
    editing.leaveCell();
    typeIn(1, 'Stream', '4');
    typeIn(2, 'Stream', '4');
    expect(steps()).toHaveLength(5);
    editing.undo();
    editing.undo();
    expect(streams()).toEqual(['4', '2', '2']);
    typeIn(1, 'Stream', '22');
    editing.undo();
    editing.undo();
    expect(streams()).toEqual(['4', '3', '2']);
  });

  it('has no step for a visit that leaves the text unchanged', () => {
    typeIn(1, 'Stream', '3');
    typeIn(1, 'Stream', '1');
    expect(steps()).toHaveLength(1);
    editing.leaveCell();
    expect(steps()).toEqual([]);
    typeIn(null, 'Table_repeat', '3');
    typeIn(null, 'Table_repeat', '2');
    editing.leaveCell();
    expect(steps()).toEqual([]);
    typeIn(null, 'Table_repeat', '3');
    editing.leaveCell();
    editing.leaveCell();
    expect(steps()).toEqual(['Table_repeat null']);
  });

  it('restores edits and their base when the table was read again', () => {
    const other: Table = { ...table, rows: table.rows.slice(1) };
    typeIn(1, 'Stream', '3');
    editing.show(other);
    expect([streams(), editing.base.value]).toEqual([['1', '2'], other]);
    editing.undo();
    expect(editing.said.value?.text).toBe('Undone: reading of the instrument’s table.');
    expect([streams(), editing.base.value]).toEqual([['4', '3', '2'], table]);
    editing.redo();
    expect([streams(), editing.base.value]).toEqual([['1', '2'], other]);
    editing.undo();
    // From now on this table is certainly the base.
    editing.rebase(other);
    editing.redo();
    editing.undo();
    expect(editing.base.value).toBe(other);
  });

  it('has no step for reading what is already shown', () => {
    editing.show(table);
    expect(steps()).toEqual([]);
    editing.show({ ...table, rows: table.rows.slice(1) });
    expect(steps()).toEqual(['reading of the instrument’s table']);
  });

  it('does nothing without a table', () => {
    const empty = new Editing(sequenceKind, signal<Configuration | undefined>(undefined));
    empty.undo();
    empty.redo();
    empty.leaveCell();
    expect([empty.draft.value, empty.said.value]).toEqual([undefined, undefined]);
  });

  it('goes back 200 steps', () => {
    const undos = new Undo();
    for (let n = 0; n < 205; n++) {
      undos.record({ what: String(n) }, { draft });
    }
    expect(undos.past.value).toHaveLength(200);
    expect(undos.past.value[0]!.what).toBe('5');
  });
});

describe('a comma', () => {
  const text = () => now().rows[1]!.cells.Flush_time;

  it('is replaced by a point when the cell is left', () => {
    typeIn(1, 'Flush_time', '1,25');
    expect(text()).toBe('1,25');
    expect(editing.edited().rows[1]!.Flush_time).toBe(1.25);
    editing.leaveCell();
    expect(text()).toBe('1.25');
    editing.undo();
    expect(text()).toBe('1');
    typeIn(1, 'Flush_time', '1,');
    editing.undo();
    expect(text()).toBe('1');
  });

  it.each([
    ['Flush_time', '1,234.5'],
    ['Flush_time', 'a,b'],
    ['Repeat', '1,5'],
    ['Type', 'a,b'],
  ])('in %s %s stays', (key, typed) => {
    typeIn(1, key, typed);
    editing.leaveCell();
    expect(now().rows[1]!.cells[key]).toBe(typed);
  });
});

describe('cells', () => {
  it('have names and texts', () => {
    expect(cellName({ rowId: 1, key: 'Flush_time' }, draft, layout)).toBe('Flush time, line 2');
    expect(cellName({ rowId: null, key: 'Table_repeat' }, draft, layout)).toBe(
      'Runs of the whole table',
    );
    expect(cellName({ rowId: 0, key: 'other' }, draft, layout)).toBe('other, line 1');
    expect(cellText({ rowId: 1, key: 'Stream' }, draft)).toBe('1');
    expect(cellText({ rowId: 1, key: 'other' }, draft)).toBe('');
    expect(cellText({ rowId: 9, key: 'Stream' }, draft)).toBeUndefined();
    expect(cellText({ rowId: null, key: 'Continuous' }, draft)).toBe('false');
  });

  it.each<[string, Draft, Draft, unknown]>([
    ['nothing', draft, draft, undefined],
    [
      'the header',
      draft,
      setCell(draft, null, 'Continuous', 'true'),
      { rowId: null, key: 'Continuous' },
    ],
    ['a cell', draft, setCell(draft, 2, 'Slot', '5'), { rowId: 2, key: 'Slot' }],
    ['a line more', draft, duplicateRow(draft, layout, 0), { rowId: 3, key: 'Type' }],
    ['a line at the end', draft, addRow(draft, layout), { rowId: 3, key: 'Type' }],
    ['a line less', draft, removeRow(draft, layout, 1), { rowId: 2, key: 'Type' }],
    ['the last line less', draft, removeRow(draft, layout, 2), { rowId: 1, key: 'Type' }],
    ['none left', draft, { ...draft, rows: [] }, undefined],
  ])('differ in %s', (_, from, to, cell) => {
    expect(firstDifference(from, to, layout)).toEqual(cell);
  });

  it('of a new row are found by the first one that can be edited', () => {
    const one = draftOf({ header: {}, rows: [amounts.rows[0]!] });
    const two = draftOf(amounts);
    expect(firstDifference(one, two, peaks)).toEqual({ rowId: 1, key: 'Level_amt' });
  });

  it('with unusual values are listed', () => {
    expect(unusualValues(table, layout)).toEqual([]);
    expect(unusualValues(amounts, peaks)).toEqual([]);
    const most = { ...table.rows[0]!, Repeat: 999, Flush_time: 60 };
    const more = { ...table.rows[0]!, Repeat: 1000, Flush_time: 60.5 };
    const header = { ...table.header, Table_repeat: 1000 };
    expect(unusualValues({ header, rows: [most, more] }, layout)).toEqual([
      'Runs of the whole table: 1000',
      'Runs, line 2: 1000',
      'Flush time, line 2: 60.5',
    ]);
    const amount = { ...amounts.rows[0]!, Level_amt: 1_000_001 };
    expect(unusualValues({ header: {}, rows: [amount] }, peaks)).toEqual([
      'Amount, level 1, peak 1: 1000001',
    ]);
  });
});
