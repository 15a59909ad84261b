// What was done to a table, in the order it was done, to go back and forth in.
import { signal } from '@preact/signals';
import type { Cell, Draft, Table } from './table';

/** How far back one can go. */
const mostSteps = 200;

/** What can be gone back to. */
export interface Moment {
  draft: Draft;
  /** The instrument's table as it was read, where the step was reading it anew. */
  base?: Table;
}

/** One thing that was done. */
export interface Step {
  /** As a noun: `Runs, line 2`. */
  what: string;
  /** Where the person goes on, if that is not where the two tables differ. */
  place?: Cell;
}

type Kept = Step & { moment: Moment };

export class Undo {
  readonly past = signal<readonly Kept[]>([]);
  readonly future = signal<readonly Kept[]>([]);

  /** Remembers how the table was before the step. */
  record(step: Step, before: Moment): void {
    this.past.value = [...this.past.value, { ...step, moment: before }].slice(-mostSteps);
    this.future.value = [];
  }

  /** How the table was before the latest step; `present` is how it is. */
  back(present: Required<Moment>): Kept | undefined {
    return this.move(this.past, this.future, present);
  }

  /** How the table was before the latest step back. */
  forth(present: Required<Moment>): Kept | undefined {
    return this.move(this.future, this.past, present);
  }

  /** The latest step has changed nothing. */
  forgetLatest(): void {
    this.past.value = this.past.value.slice(0, -1);
  }

  /** What was read from the instrument has been replaced there: only what was edited comes back. */
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
