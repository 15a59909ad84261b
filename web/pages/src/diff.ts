// The differences between two tables.
import type { Column, Layout, Table, Value, Values } from './table';

export interface CellChange {
  label: string;
  before: Value | undefined;
  after: Value | undefined;
}

export interface RowChange {
  kind: 'added' | 'removed' | 'changed';
  /** Places in the two tables, from 1; 0 if the table does not have the row. */
  placeBefore: number;
  placeAfter: number;
  before?: Values;
  after?: Values;
  /** The columns whose values differ. */
  keys: string[];
}

export interface TableDiff {
  header: CellChange[];
  rows: RowChange[];
}

/** A real may lose its last digits when it is sent to the instrument and read back. */
function isSameValue(a: Value | undefined, b: Value | undefined): boolean {
  if (typeof a === 'number' && typeof b === 'number') {
    return Math.abs(a - b) <= 1e-6 * Math.abs(a);
  }
  return a === b;
}

function differingKeys(before: Values, after: Values, columns: readonly Column[]): string[] {
  return columns
    .filter(({ key, isCompared }) => isCompared && !isSameValue(before[key], after[key]))
    .map(({ key }) => key);
}

type Step = 'same' | 'removed' | 'added';

/** The fewest rows to remove and add, by the longest common subsequence. */
function stepsBetween(
  before: readonly Values[],
  after: readonly Values[],
  isSame: (a: Values, b: Values) => boolean,
): Step[] {
  const width = after.length + 1;
  const lengths = new Uint16Array((before.length + 1) * width);
  const at = (i: number, j: number): number => lengths[i * width + j]!;
  for (let i = before.length - 1; i >= 0; i--) {
    for (let j = after.length - 1; j >= 0; j--) {
      lengths[i * width + j] = isSame(before[i]!, after[j]!)
        ? at(i + 1, j + 1) + 1
        : Math.max(at(i + 1, j), at(i, j + 1));
    }
  }
  const steps: Step[] = [];
  let i = 0;
  let j = 0;
  while (i < before.length && j < after.length) {
    if (isSame(before[i]!, after[j]!)) {
      steps.push('same');
      i++;
      j++;
    } else if (at(i + 1, j) >= at(i, j + 1)) {
      steps.push('removed');
      i++;
    } else {
      steps.push('added');
      j++;
    }
  }
  const rest = (length: number, step: Step): Step[] => Array<Step>(length).fill(step);
  return [...steps, ...rest(before.length - i, 'removed'), ...rest(after.length - j, 'added')];
}

/** A row, and its place in its table, from 1. */
interface Place {
  row: Values;
  place: number;
}

/** The differences; a row removed and one added at the same place count as one changed row. */
export function diffTables(before: Table, after: Table, layout: Layout): TableDiff {
  const header = layout.header
    .filter(({ key }) => !isSameValue(before.header[key], after.header[key]))
    .map(({ key, label }) => ({ label, before: before.header[key], after: after.header[key] }));

  const isSame = (a: Values, b: Values): boolean =>
    differingKeys(a, b, layout.columns).length === 0;
  const rows: RowChange[] = [];
  let i = 0;
  let j = 0;
  let removed: Place[] = [];
  let added: Place[] = [];
  const flush = (): void => {
    for (let n = 0; n < Math.max(removed.length, added.length); n++) {
      const from = removed[n];
      const to = added[n];
      rows.push({
        kind: from && to ? 'changed' : from ? 'removed' : 'added',
        placeBefore: from?.place ?? 0,
        placeAfter: to?.place ?? 0,
        ...(from && { before: from.row }),
        ...(to && { after: to.row }),
        keys: from && to ? differingKeys(from.row, to.row, layout.columns) : [],
      });
    }
    removed = [];
    added = [];
  };
  for (const step of stepsBetween(before.rows, after.rows, isSame)) {
    if (step === 'same') {
      flush();
      i++;
      j++;
    } else if (step === 'removed') {
      removed.push({ row: before.rows[i]!, place: ++i });
    } else {
      added.push({ row: after.rows[j]!, place: ++j });
    }
  }
  flush();
  return { header, rows };
}

export function isEmptyDiff(diff: TableDiff): boolean {
  return diff.header.length === 0 && diff.rows.length === 0;
}
