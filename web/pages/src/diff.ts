// What tells one table from another.
import type { Column, Layout, Table, Value, Values } from './table';

export interface CellChange {
  label: string;
  before: Value | undefined;
  after: Value | undefined;
}

export interface RowChange {
  kind: 'added' | 'removed' | 'changed';
  /** Places in the two tables, from 1; 0 where the row is not. */
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

/** A real that has been to the instrument and back may have lost its last digits. */
function isSameValue(a: Value | undefined, b: Value | undefined): boolean {
  if (typeof a === 'number' && typeof b === 'number') {
    return Math.abs(a - b) <= 1e-6 * Math.max(Math.abs(a), Math.abs(b));
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
  for (let i = 0, j = 0; i < before.length || j < after.length;) {
    if (i < before.length && j < after.length && isSame(before[i]!, after[j]!)) {
      steps.push('same');
      i++;
      j++;
    } else if (j >= after.length || (i < before.length && at(i + 1, j) >= at(i, j + 1))) {
      steps.push('removed');
      i++;
    } else {
      steps.push('added');
      j++;
    }
  }
  return steps;
}

/** The differences; removed and added rows that stand at the same place count as changed. */
export function diffTables(before: Table, after: Table, layout: Layout): TableDiff {
  const header = layout.header
    .filter(({ key }) => !isSameValue(before.header[key], after.header[key]))
    .map(({ key, label }) => ({ label, before: before.header[key], after: after.header[key] }));

  const isSame = (a: Values, b: Values): boolean =>
    differingKeys(a, b, layout.columns).length === 0;
  const rows: RowChange[] = [];
  let i = 0;
  let j = 0;
  let removed: number[] = [];
  let added: number[] = [];
  const flush = (): void => {
    for (let n = 0; n < Math.max(removed.length, added.length); n++) {
      const from = removed[n];
      const to = added[n];
      const old = from === undefined ? undefined : before.rows[from];
      const fresh = to === undefined ? undefined : after.rows[to];
      rows.push({
        kind: old && fresh ? 'changed' : old ? 'removed' : 'added',
        placeBefore: from === undefined ? 0 : from + 1,
        placeAfter: to === undefined ? 0 : to + 1,
        ...(old && { before: old }),
        ...(fresh && { after: fresh }),
        keys: old && fresh ? differingKeys(old, fresh, layout.columns) : [],
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
      removed.push(i++);
    } else {
      added.push(j++);
    }
  }
  flush();
  return { header, rows };
}

export function isEmptyDiff(diff: TableDiff): boolean {
  return diff.header.length === 0 && diff.rows.length === 0;
}
