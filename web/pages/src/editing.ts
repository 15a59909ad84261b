// A table being edited: the instrument's table, the edited draft, and undo.
import { batch, computed, signal, type ReadonlySignal, type Signal } from '@preact/signals';
import { cellText, firstDifference, isReal } from './cells';
import { diffTables, isEmptyDiff, type TableDiff } from './diff';
import type { Configuration } from './documents';
import {
  draftOf,
  problemsOfDraft,
  setCell,
  tableOf,
  valueOf,
  type Cell,
  type CellProblem,
  type Draft,
  type Layout,
  type Table,
} from './table';
import type { TableKind } from './tables';
import { Undo, type Step } from './undo';

/** Says what was undone or redone. */
export interface Said {
  text: string;
  /** Where the focus goes. */
  place: Cell | undefined;
}

/** What is kept of a table when the page is reloaded. */
export interface Unsent {
  base: Table;
  draft: Draft;
  /** The instrument's table before one was refused halfway. */
  before?: Table | undefined;
  /** When `base` was read, in milliseconds. */
  readAt: number;
}

export class Editing {
  /** The instrument's table as it was loaded. */
  readonly base: Signal<Table | undefined> = signal(undefined);
  readonly draft: Signal<Draft | undefined> = signal(undefined);
  readonly said: Signal<Said | undefined> = signal(undefined);
  /** When the instrument's table was read, in milliseconds. */
  readonly readAt = signal(0);
  /** The instrument's table before it refused one, of which it may have stored a part. */
  readonly before: Signal<Table | undefined> = signal(undefined);

  readonly layout: ReadonlySignal<Layout>;
  readonly problems: ReadonlySignal<CellProblem[]>;
  readonly isDirty: ReadonlySignal<boolean>;
  /** What is to be kept when the page is reloaded, if anything. */
  readonly unsent: ReadonlySignal<Unsent | undefined>;
  readonly undos = new Undo();
  /** The cell being typed into: everything typed there is one step. */
  private visited: Cell | undefined;

  constructor(
    readonly kind: TableKind,
    configuration: ReadonlySignal<Configuration | undefined>,
  ) {
    this.layout = computed(() => kind.layout(configuration.value));
    this.problems = computed(() =>
      this.draft.value ? problemsOfDraft(this.draft.value, this.layout.value) : [],
    );
    this.isDirty = computed(
      () =>
        this.base.value !== undefined &&
        this.draft.value !== undefined &&
        !isEmptyDiff(this.diff(this.base.value, this.edited())),
    );
    this.unsent = computed(() => {
      const [base, draft, before] = [this.base.value, this.draft.value, this.before.value];
      const isWorth = this.isDirty.value || before !== undefined;
      return base && draft && isWorth
        ? { base, draft, before, readAt: this.readAt.value }
        : undefined;
    });
  }

  /** Makes one change; further typing in the same cell belongs to the same step. */
  change(draft: Draft, step: Step, isTyping = false): void {
    const before = this.draft.value!;
    const { place } = step;
    const isSameVisit =
      isTyping && place?.rowId === this.visited?.rowId && place?.key === this.visited?.key;
    if (!isSameVisit) {
      this.leaveCell();
      this.undos.record(step, { draft: this.draft.value ?? before });
    }
    this.visited = isTyping ? place : undefined;
    this.draft.value = draft;
    this.said.value = undefined;
    this.touched();
  }

  /** Completes what was typed. */
  leaveCell(): void {
    const place = this.visited;
    const draft = this.draft.value;
    this.visited = undefined;
    if (!place || !draft) {
      return;
    }
    const text = cellText(place, draft) ?? '';
    const isComma = isReal(place, this.layout.value) && typeof valueOf(text, 'real') === 'number';
    if (isComma && text.includes(',')) {
      // Shown as it is understood.
      this.draft.value = setCell(draft, place.rowId, place.key, text.replace(',', '.'));
    }
    const latest = this.undos.past.value.at(-1);
    if (latest && cellText(place, latest.moment.draft) === cellText(place, this.draft.value!)) {
      this.undos.forgetLatest();
    }
  }

  undo(): void {
    this.travel('Undone');
  }

  redo(): void {
    this.travel('Redone');
  }

  /** Shows the instrument's table; undo restores the edits. */
  show(table: Table): void {
    this.leaveCell();
    const base = this.base.value;
    const draft = this.draft.value;
    const isChanged = base && (this.isDirty.value || !isEmptyDiff(this.diff(base, table)));
    if (isChanged && draft) {
      this.undos.record({ what: 'reading of the instrument’s table' }, { draft, base });
    }
    batch(() => {
      this.base.value = table;
      this.draft.value = draftOf(table);
      this.said.value = undefined;
    });
  }

  /** Makes the instrument's present table the base of the edits. */
  rebase(table: Table): void {
    this.base.value = table;
    this.undos.forgetBases();
  }

  /** Starts again, with the unsent edits kept for this instrument or with nothing. */
  reset(unsent?: Unsent): void {
    batch(() => {
      this.visited = undefined;
      this.undos.clear();
      this.base.value = unsent?.base;
      this.draft.value = unsent?.draft;
      this.before.value = unsent?.before;
      this.readAt.value = unsent?.readAt ?? 0;
      this.said.value = undefined;
    });
  }

  edited(): Table {
    return tableOf(this.draft.value!, this.layout.value);
  }

  diff(before: Table, after: Table): TableDiff {
    return diffTables(before, after, this.layout.value);
  }

  /** Called when the user has changed the table. */
  protected touched(): void {}

  private travel(how: 'Undone' | 'Redone'): void {
    this.leaveCell();
    const base = this.base.value;
    const draft = this.draft.value;
    if (!base || !draft) {
      return;
    }
    const present = { draft, base };
    const step = how === 'Undone' ? this.undos.back(present) : this.undos.forth(present);
    if (!step) {
      return;
    }
    const { moment, what } = step;
    const difference = firstDifference(draft, moment.draft, this.layout.value);
    const isThere = step.place && cellText(step.place, moment.draft) !== undefined;
    this.touched();
    batch(() => {
      this.draft.value = moment.draft;
      this.base.value = moment.base ?? base;
      this.said.value = { text: `${how}: ${what}.`, place: isThere ? step.place : difference };
    });
  }
}
