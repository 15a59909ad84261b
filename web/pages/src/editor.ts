// Editing one of the instrument's tables: load, change, compare, send, read back.
import { computed, signal, type ReadonlySignal, type Signal } from '@preact/signals';
import type { Fault } from './api';
import { diffTables, isEmptyDiff, type TableDiff } from './diff';
import { fileLimit, type Configuration } from './documents';
import {
  draftOf,
  problemsOfDraft,
  tableOf,
  type CellProblem,
  type Draft,
  type Layout,
  type Table,
} from './table';
import { readFile } from './files';
import type { TableKind } from './tables';

export type Read = { ok: true; table: Table } | { ok: false; fault: Fault };
export type Sent = { ok: true } | { ok: false; fault: Fault };

/** What an editor needs from outside. */
export interface Instrument {
  read: () => Promise<Read>;
  send: (file: string) => Promise<Sent>;
  describe: (fault: Fault) => string;
}

export type Review =
  /** What sending would change. */
  | { kind: 'send'; diff: TableDiff }
  /** What somebody else has changed since the table was loaded. */
  | { kind: 'conflict'; diff: TableDiff; theirs: Table };

export interface Message {
  kind: 'good' | 'bad';
  text: string;
  diff?: TableDiff;
}

export class Editor {
  /** The instrument's table as it was loaded. */
  readonly base: Signal<Table | undefined> = signal(undefined);
  readonly draft: Signal<Draft | undefined> = signal(undefined);
  readonly review: Signal<Review | undefined> = signal(undefined);
  readonly message: Signal<Message | undefined> = signal(undefined);
  /** What is being done; empty when nothing is. */
  readonly busy = signal('');

  readonly layout: ReadonlySignal<Layout>;
  readonly problems: ReadonlySignal<CellProblem[]>;
  readonly isDirty: ReadonlySignal<boolean>;

  constructor(
    readonly kind: TableKind,
    private readonly instrument: Instrument,
    configuration: ReadonlySignal<Configuration | undefined>,
  ) {
    this.layout = computed(() => kind.layout(configuration.value));
    this.problems = computed(() =>
      this.draft.value ? problemsOfDraft(this.draft.value, this.layout.value) : [],
    );
    this.isDirty = computed(() => {
      const { base, draft } = this;
      return base.value !== undefined && draft.value !== undefined
        ? !isEmptyDiff(this.diff(base.value, tableOf(draft.value, this.layout.value)))
        : false;
    });
  }

  /** Shows the instrument's table; what was edited is lost. */
  async load(): Promise<void> {
    this.review.value = undefined;
    const table = await this.readNow('Reading the table');
    if (table) {
      this.base.value = table;
      this.draft.value = draftOf(table);
      this.message.value = undefined;
    }
  }

  /** Compares with what the instrument has now; the answer is in `review`. */
  async prepare(): Promise<void> {
    this.message.value = undefined;
    const fresh = await this.readNow('Comparing with the instrument');
    if (!fresh || this.isConflict(fresh)) {
      return;
    }
    const diff = this.diff(fresh, this.edited());
    this.review.value = { kind: 'send', diff };
  }

  /** Goes on with the edited table, on top of what somebody else has changed. */
  async keepEdits(theirs: Table): Promise<void> {
    this.base.value = theirs;
    this.review.value = undefined;
    await this.prepare();
  }

  /** Sends, unless the instrument's table has changed while the person looked; then reads it back. */
  async send(): Promise<void> {
    this.review.value = undefined;
    const fresh = await this.readNow('Looking whether the table has changed');
    if (!fresh || this.isConflict(fresh)) {
      return;
    }
    const wanted = this.edited();
    const file = this.kind.toFile(wanted);
    const size = new TextEncoder().encode(file).length;
    if (size > fileLimit) {
      this.fail(`The table has ${size} octets; the gateway takes ${fileLimit}. Nothing was sent.`);
      return;
    }
    this.busy.value = 'Sending the table';
    const sent = await this.instrument.send(file);
    const after = await this.readNow('Reading the table back');
    const outcome = sent.ok
      ? 'The instrument accepted the table.'
      : this.instrument.describe(sent.fault);
    if (!after) {
      this.fail(`${outcome} It could not be read back: ${this.message.value!.text}`);
      return;
    }
    this.base.value = after;
    const diff = this.diff(wanted, after);
    if (!sent.ok) {
      this.message.value = {
        kind: 'bad',
        text: isEmptyDiff(diff)
          ? `${outcome} Even so the instrument now has the table.`
          : `${outcome} The instrument does not have the table as it was sent. What it has differs:`,
        ...(!isEmptyDiff(diff) && { diff }),
      };
    } else if (isEmptyDiff(diff)) {
      this.draft.value = draftOf(after);
      this.message.value = { kind: 'good', text: 'Sent, read back, and the same.' };
    } else {
      const text = 'The instrument accepted the table, but what it has now differs:';
      this.message.value = { kind: 'bad', text, diff };
    }
  }

  import(name: string, octets: ArrayBuffer): void {
    const base = this.base.value;
    if (!base) {
      return;
    }
    try {
      const table = readFile(octets, this.kind, base);
      this.draft.value = draftOf(table);
      this.message.value = { kind: 'good', text: `${name} was read. Nothing has been sent yet.` };
    } catch (error) {
      this.fail(`${name} was not read. ${(error as Error).message}`);
    }
  }

  /** The file of what is shown. */
  exported(): string {
    return this.kind.toFile(this.edited());
  }

  private edited(): Table {
    return tableOf(this.draft.value!, this.layout.value);
  }

  private diff(before: Table, after: Table): TableDiff {
    return diffTables(before, after, this.layout.value);
  }

  private fail(text: string): void {
    this.message.value = { kind: 'bad', text };
  }

  private isConflict(fresh: Table): boolean {
    const diff = this.diff(this.base.value!, fresh);
    if (isEmptyDiff(diff)) {
      return false;
    }
    this.review.value = { kind: 'conflict', diff, theirs: fresh };
    return true;
  }

  private async readNow(what: string): Promise<Table | undefined> {
    this.busy.value = what;
    const answer = await this.instrument.read();
    this.busy.value = '';
    if (answer.ok) {
      return answer.table;
    }
    this.fail(this.instrument.describe(answer.fault));
    return undefined;
  }
}
