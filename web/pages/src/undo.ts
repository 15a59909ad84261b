// Undo and redo: the changes to a table, in order.
import { signal } from '@preact/signals';
import type { Cell, Draft, Table } from './table';

/** The most steps that can be undone. */
const mostSteps = 200;

/** A state that can be restored. */
export interface Moment {
  draft: Draft;
  /** The instrument's table as it was read before, if the step was reading it again. */
  base?: Table;
}

/** One change. */
export interface Step {
  /** As a noun: `Runs, line 2`. */
  what: string;
  /** Where the user continues, if not where the two tables differ. */
  place?: Cell;
}

type Kept = Step & { moment: Moment };

export class Undo {
  readonly past = signal<readonly Kept[]>([]);
  readonly future = signal<readonly Kept[]>([]);

  /** Keeps the state before the step. */
  record(step: Step, before: Moment): void {
    this.past.value = [...this.past.value, { ...step, moment: before }].slice(-mostSteps);
    this.future.value = [];
  }

  /** Undoes the latest step: returns the state before it. `present` is the state now. */
  back(present: Required<Moment>): Kept | undefined {
    return this.move(this.past, this.future, present);
  }

  /** Redoes the step undone last: returns the state before it was undone. */
  forth(present: Required<Moment>): Kept | undefined {
    return this.move(this.future, this.past, present);
  }

  /** Forgets the latest step, which has changed nothing. */
  forgetLatest(): void {
    this.past.value = this.past.value.slice(0, -1);
  }

  /** After the instrument's table was replaced, undo restores edits only, not what was read. */
  forgetBases(): void {
    for (const steps of [this.past, this.future]) {
      steps.value = steps.value.map((step) => ({ ...step, moment: { draft: step.moment.draft } }));
    }
  }

  clear(): void {
    this.past.value = [];
    this.future.value = [];
  }

  private move(from: typeof this.past, to: typeof this.past, present: Required<Moment>) {
    const step = from.value.at(-1);
    if (step) {
      const { draft, base } = present;
      const moment: Moment = step.moment.base ? { draft, base } : { draft };
      from.value = from.value.slice(0, -1);
      to.value = [...to.value, { ...step, moment }];
    }
    return step;
  }
}
