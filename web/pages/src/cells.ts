// The names and texts of cells, the first difference between two drafts, and unusual values.
import {
  textIn,
  type Cell,
  type Column,
  type Draft,
  type Layout,
  type Table,
  type Values,
} from './table';

function columnOf({ rowId, key }: Cell, layout: Layout): Column | undefined {
  return (rowId === null ? layout.header : layout.columns).find((column) => column.key === key);
}

/** The cell's name on the page, with its row's place in the table: `Flush time, line 2`. */
export function cellName(cell: Cell, draft: Draft, layout: Layout): string {
  const label = columnOf(cell, layout)?.label ?? cell.key;
  const index = draft.rows.findIndex(({ id }) => id === cell.rowId);
  return cell.rowId === null ? label : `${label}, ${layout.rowName} ${index + 1}`;
}

/** The cell's text; undefined if there is no such row. */
export function cellText({ rowId, key }: Cell, draft: Draft): string | undefined {
  const cells = rowId === null ? draft.header : draft.rows.find((row) => row.id === rowId)?.cells;
  return cells && (cells[key] ?? '');
}

/** Whether the cell holds a real number. */
export function isReal(cell: Cell, layout: Layout): boolean {
  return columnOf(cell, layout)?.kind === 'real';
}

/** A cell of the second draft at which it differs from the first; undefined if they are equal. */
export function firstDifference(from: Draft, to: Draft, layout: Layout): Cell | undefined {
  const differs = (columns: readonly Column[], a: Cells, b: Cells): string | undefined =>
    columns.find((column) => textIn(a, column) !== textIn(b, column))?.key;
  const key = differs(layout.header, from.header, to.header);
  if (key !== undefined) {
    return { rowId: null, key };
  }
  const first = layout.columns.find(({ isEditable }) => isEditable)?.key ?? '';
  for (const [index, { id, cells }] of to.rows.entries()) {
    const before = from.rows.find((row) => row.id === id);
    const changed = before && differs(layout.columns, before.cells, cells);
    if (changed !== undefined) {
      return { rowId: id, key: changed };
    }
    if (from.rows[index]?.id !== id) {
      return { rowId: id, key: first };
    }
  }
  const last = to.rows.at(-1);
  return last && from.rows.length > to.rows.length ? { rowId: last.id, key: first } : undefined;
}

type Cells = Draft['header'];

/** Values above the usual range, each with its cell's name: `Runs, line 2: 1200`. */
export function unusualValues(table: Table, layout: Layout): string[] {
  const of = (values: Values, columns: readonly Column[], where: string): string[] =>
    columns
      .filter(({ key, usual }) => (values[key] as number) > (usual ?? Infinity))
      .map(({ key, label }) => `${label}${where}: ${String(values[key])}`);
  return [
    ...of(table.header, layout.header, ''),
    ...table.rows.flatMap((row, n) => of(row, layout.columns, `, ${layout.rowName} ${n + 1}`)),
  ];
}
