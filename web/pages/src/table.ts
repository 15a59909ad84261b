// A table being edited: the texts of its cells, their faults, and operations on rows.
import { problemsOf, schemaAt, type Schema } from './schema';

export type Value = string | number | boolean;
export type Values = Readonly<Record<string, Value>>;

/** A table's values, as the instrument has them or as they are to be sent. */
export interface Table {
  header: Values;
  rows: readonly Values[];
}

export interface Column {
  key: string;
  label: string;
  kind: 'integer' | 'real' | 'choice' | 'flag' | 'text';
  isEditable: boolean;
  /** Whether a difference counts; not for what the instrument computes itself. */
  isCompared: boolean;
  /** Place in the file's schema; only for editable columns. */
  schema?: string;
  choices?: readonly string[];
  /** What the instrument is known to accept: a row that it refuses leaves half a table behind. */
  minimum?: number;
  maximum?: number;
  /** A larger value may be intended, but the instrument may refuse it. */
  usual?: number;
}

/** The structure of one kind of table. */
export interface Layout {
  schema: Schema;
  header: readonly Column[];
  columns: readonly Column[];
  /** The fewest and most rows that editing may leave; `mostRows` is 0 if the rows are fixed. */
  leastRows: number;
  mostRows: number;
  /** What one row is called. */
  rowName: string;
  /** The values of a new row. */
  emptyRow: Values;
}

export interface Row {
  /** Stays the same when the row moves. */
  id: number;
  cells: Readonly<Record<string, string>>;
}

export interface Draft {
  header: Readonly<Record<string, string>>;
  rows: readonly Row[];
  nextId: number;
}

export interface Cell {
  /** The row, or null for the header. */
  rowId: number | null;
  key: string;
}

export interface CellProblem extends Cell {
  text: string;
}

function textsOf(values: Values): Record<string, string> {
  return Object.fromEntries(Object.entries(values).map(([key, value]) => [key, String(value)]));
}

export function draftOf(table: Table): Draft {
  return {
    header: textsOf(table.header),
    rows: table.rows.map((row, index) => ({ id: index, cells: textsOf(row) })),
    nextId: table.rows.length,
  };
}

/** With a decimal point or comma, and without thousands separators. */
const real = /^[+-]?(\d+[.,]?\d*|[.,]\d+)(e[+-]?\d+)?$/i;

/** The value of a cell's text; a text without a valid value is returned unchanged. */
export function valueOf(text: string, kind: Column['kind']): Value {
  const trimmed = text.trim();
  switch (kind) {
    case 'integer':
      return /^[+-]?\d+$/.test(trimmed) ? Number(trimmed) : text;
    case 'real':
      return real.test(trimmed) ? Number(trimmed.replace(',', '.')) : text;
    case 'flag':
      return text === 'true';
    default:
      return text;
  }
}

function notNumber(text: string, kind: 'integer' | 'real'): string {
  if (text.trim() === '') {
    return 'empty';
  }
  const fault = kind === 'integer' ? 'not a whole number' : 'not a number';
  // "1,234.5" is ambiguous.
  const isGrouped = /^[+-]?\d+([.,'’\s]\d+){2,}$|^[+-]?\d+['’\s]\d/.test(text.trim());
  return isGrouped ? `${fault}: leave out what separates thousands` : fault;
}

/** The fault of a cell's text; empty if there is none. */
export function cellProblem(text: string, column: Column, schema: Schema): string {
  if (column.schema === undefined) {
    return '';
  }
  const value = valueOf(text, column.kind);
  if (column.kind === 'real' || column.kind === 'integer') {
    // The schema allows "-", which would leave the instrument without a value.
    const fault = typeof value === 'number' ? '' : notNumber(text, column.kind);
    if (fault) {
      return fault;
    }
  }
  if (column.choices && !column.choices.includes(text)) {
    return `must be one of ${column.choices.join(', ')}`;
  }
  const [problem] = problemsOf(value, schemaAt(schema, column.schema), schema);
  if (problem) {
    return problem.text;
  }
  if ((value as number) < (column.minimum ?? -Infinity)) {
    return `must be at least ${column.minimum}`;
  }
  if ((value as number) > (column.maximum ?? Infinity)) {
    return `must be at most ${column.maximum}`;
  }
  return '';
}

type Cells = Readonly<Record<string, string>>;

/** A missing cell counts as empty. */
export function textIn(cells: Cells, { key }: Column): string {
  return cells[key] ?? '';
}

export function problemsOfDraft(draft: Draft, layout: Layout): CellProblem[] {
  const check = (cells: Cells, columns: readonly Column[], rowId: number | null): CellProblem[] =>
    columns
      .map((column) => ({
        rowId,
        key: column.key,
        text: cellProblem(textIn(cells, column), column, layout.schema),
      }))
      .filter(({ text }) => text !== '');
  return [
    ...check(draft.header, layout.header, null),
    ...draft.rows.flatMap((row) => check(row.cells, layout.columns, row.id)),
  ];
}

/** The values of a draft; texts without a valid value stay as they are. */
export function tableOf(draft: Draft, layout: Layout): Table {
  const values = (cells: Cells, columns: readonly Column[]): Values =>
    Object.fromEntries(
      columns.map((column) => [column.key, valueOf(textIn(cells, column), column.kind)]),
    );
  return {
    header: values(draft.header, layout.header),
    rows: draft.rows.map((row) => values(row.cells, layout.columns)),
  };
}

export function setCell(draft: Draft, rowId: number | null, key: string, text: string): Draft {
  if (rowId === null) {
    return { ...draft, header: { ...draft.header, [key]: text } };
  }
  const rows = draft.rows.map((row) =>
    row.id === rowId ? { ...row, cells: { ...row.cells, [key]: text } } : row,
  );
  return { ...draft, rows };
}

function insertAt(draft: Draft, index: number, cells: Row['cells']): Draft {
  const rows = [...draft.rows];
  rows.splice(index, 0, { id: draft.nextId, cells });
  return { ...draft, rows, nextId: draft.nextId + 1 };
}

export function addRow(draft: Draft, layout: Layout): Draft {
  return draft.rows.length >= layout.mostRows
    ? draft
    : insertAt(draft, draft.rows.length, textsOf(layout.emptyRow));
}

/** Inserts a copy of a row below it. */
export function duplicateRow(draft: Draft, layout: Layout, rowId: number): Draft {
  const index = draft.rows.findIndex(({ id }) => id === rowId);
  const row = draft.rows[index];
  return row && draft.rows.length < layout.mostRows ? insertAt(draft, index + 1, row.cells) : draft;
}

export function removeRow(draft: Draft, layout: Layout, rowId: number): Draft {
  return draft.rows.length <= layout.leastRows
    ? draft
    : { ...draft, rows: draft.rows.filter(({ id }) => id !== rowId) };
}

/** Moves a row up (-1) or down (1), but not beyond either end. */
export function moveRow(draft: Draft, rowId: number, by: -1 | 1): Draft {
  const from = draft.rows.findIndex(({ id }) => id === rowId);
  const to = from + by;
  if (from < 0 || to < 0 || to >= draft.rows.length) {
    return draft;
  }
  const rows = [...draft.rows];
  rows.splice(to, 0, ...rows.splice(from, 1));
  return { ...draft, rows };
}
