// Editing one of the instrument's tables: load, change, compare, send, read back, restore.
import { signal, type ReadonlySignal, type Signal } from '@preact/signals';
import type { Fault } from './api';
import type { Backups } from './backups';
import { isEmptyDiff, type TableDiff } from './diff';
import type { Configuration } from './documents';
import { Editing, type Unsent } from './editing';
import { readFile } from './files';
import { fileLimit } from './limits';
import { isHalfway, outcome, type Goal, type Message } from './outcome';
import { draftOf, type Table } from './table';
import type { TableKind } from './tables';

export type Read = { ok: true; table: Table } | { ok: false; fault: Fault };
export type Sent = { ok: true } | { ok: false; fault: Fault };

/** What an editor needs from outside. */
export interface Instrument {
  read: () => Promise<Read>;
  send: (file: string) => Promise<Sent>;
  describe: (fault: Fault) => string;
  backups: Backups;
}

/** A table to be sent. */
export interface Wanted {
  goal: Goal;
  table: Table;
}

export type Review =
  /** What sending would change. */
  | { kind: 'send'; wanted: Wanted; diff: TableDiff }
  /** What has changed on the instrument since the table was loaded. */
  | { kind: 'conflict'; wanted: Wanted; diff: TableDiff; theirs: Table }
  /** Edits made here that would be lost. */
  | { kind: 'discard'; title: string; yes: string; diff: TableDiff; go: () => void };

export class Editor extends Editing {
  readonly review: Signal<Review | undefined> = signal(undefined);
  readonly message: Signal<Message | undefined> = signal(undefined);
  /** The operation in progress; empty if there is none. */
  readonly busy = signal('');
  /** Counts the instruments: answers about an earlier one are ignored. */
  readonly instruments = signal(0);

  constructor(
    kind: TableKind,
    readonly instrument: Instrument,
    configuration: ReadonlySignal<Configuration | undefined>,
  ) {
    super(kind, configuration);
  }

  /** Shows the instrument's table. */
  async load(): Promise<void> {
    this.review.value = undefined;
    const table = await this.readNow('Reading the table');
    if (table) {
      const { before, draft } = this;
      const known = [before.value, before.value && draft.value && this.edited()];
      if (known.some((one) => one && isEmptyDiff(this.diff(one, table)))) {
        // The instrument has nothing of the refused table, or has stored all of it after all.
        before.value = undefined;
      }
      this.show(table);
      this.message.value = undefined;
    }
  }

  /** The same, after a question if edits would be lost. */
  reload(): void {
    const title = 'Discard the changes made here?';
    this.ask(title, 'Discard and reload', () => void this.load());
  }

  import(name: string, octets: ArrayBuffer): void {
    if (this.base.value) {
      try {
        const table = readFile(octets, this.kind, this.base.value);
        this.replace(table, `import of ${name}`, `${name} was read. Nothing has been sent yet.`);
      } catch (error) {
        this.say('bad', `${name} was not read. ${(error as Error).message}`);
      }
    }
  }

  /** Edits another table, after a question if edits would be lost. */
  replace(table: Table, what: string, said: string): void {
    this.ask('Replace the changes made here?', 'Replace', () => {
      this.change(draftOf(table), { what });
      this.say('good', said);
    });
  }

  /** Compares with the instrument's present table; the result is in `review`. */
  async prepare(wanted: Wanted = { goal: 'edits', table: this.edited() }): Promise<void> {
    this.message.value = undefined;
    const fresh = await this.readNow('Comparing with the instrument');
    if (fresh && !this.isConflict(wanted, fresh)) {
      this.review.value = { kind: 'send', wanted, diff: this.diff(fresh, wanted.table) };
    }
  }

  /** Compares the table that the instrument had before one was refused halfway. */
  async prepareRestore(): Promise<void> {
    const { value: before } = this.before;
    if (before) {
      this.message.value = undefined;
      const instruments = this.instruments.value;
      this.busy.value = 'Looking for the earlier table';
      const found = await this.findBackup(before);
      if (instruments !== this.instruments.value) {
        return;
      }
      this.busy.value = '';
      if (typeof found === 'string') {
        this.say('bad', `The earlier tables could not be read. ${found}`);
      } else {
        await this.prepare({ goal: 'restore', table: found });
      }
    }
  }

  /** Compares the same table again, now based on what has changed on the instrument. */
  async keepEdits(theirs: Table, wanted?: Wanted): Promise<void> {
    this.rebase(theirs);
    this.review.value = undefined;
    await this.prepare(wanted);
  }

  /** Sends the table and reads it back, unless the instrument's table has changed meanwhile. */
  async send(wanted: Wanted = { goal: 'edits', table: this.edited() }): Promise<void> {
    this.review.value = undefined;
    const fresh = await this.readNow('Checking whether the table has changed');
    if (!fresh || this.isConflict(wanted, fresh)) {
      return;
    }
    const { goal, table } = wanted;
    const file = this.kind.toFile(table);
    const size = new TextEncoder().encode(file).length;
    if (size > fileLimit) {
      const text = `The table has ${size} octets; the gateway accepts ${fileLimit}.`;
      this.say('bad', `${text} Nothing was sent.`);
      return;
    }
    this.busy.value = 'Sending the table';
    const sent = await this.instrument.send(file);
    const after = await this.readNow('Reading the table back');
    const fault = sent.ok
      ? undefined
      : { ...sent.fault, description: this.instrument.describe(sent.fault) };
    if (!after) {
      const said = fault?.description ?? 'The instrument accepted the table.';
      const why = this.message.value?.text ?? '';
      this.before.value = fault ? (this.before.value ?? fresh) : undefined;
      this.say('bad', `${said} It could not be read back: ${why}`);
      return;
    }
    const found = { toSent: this.diff(table, after), toBefore: this.diff(fresh, after) };
    this.rebase(after);
    if (isHalfway(fault, found)) {
      this.before.value ??= fresh;
    } else if (isEmptyDiff(found.toSent)) {
      this.before.value = undefined;
      if (goal === 'edits') {
        this.draft.value = draftOf(after);
      }
    }
    this.message.value = { ...outcome(goal, fault, found), time: Date.now() };
  }

  /** Switches to another instrument, or to the same one after the page was reloaded. */
  takeOver(unsent?: Unsent): void {
    this.instruments.value++;
    this.busy.value = '';
    this.review.value = undefined;
    this.message.value = undefined;
    this.reset(unsent);
    if (unsent) {
      const text = 'The changes made here before the page was reloaded are still here.';
      this.say('good', `${text} They have not been sent.`);
    }
  }

  /** The edited table as a file. */
  exported(): string {
    return this.kind.toFile(this.edited());
  }

  /** A message of success no longer applies after further changes. */
  protected override touched(): void {
    if (this.message.value?.kind === 'good') {
      this.message.value = undefined;
    }
  }

  private ask(title: string, yes: string, go: () => void): void {
    this.leaveCell();
    if (!this.isDirty.value) {
      go();
      return;
    }
    const diff = this.diff(this.base.value!, this.edited());
    const done = (): void => {
      this.review.value = undefined;
      go();
    };
    this.review.value = { kind: 'discard', title, yes, diff, go: done };
  }

  /** The backup of this table, or `before` if it is gone; a reason if the list cannot be read. */
  private async findBackup(before: Table): Promise<Table | string> {
    const { backups } = this.instrument;
    const list = await backups.list();
    if (!list.ok) {
      return list.reason;
    }
    for (const { number } of list.value) {
      const answer = await backups.table(number, before);
      if (answer.ok && isEmptyDiff(this.diff(before, answer.value))) {
        return answer.value;
      }
    }
    return before;
  }

  private say(kind: Message['kind'], text: string): void {
    this.message.value = { kind, text, time: Date.now() };
  }

  private isConflict(wanted: Wanted, fresh: Table): boolean {
    const diff = this.diff(this.base.value!, fresh);
    if (isEmptyDiff(diff)) {
      return false;
    }
    this.review.value = { kind: 'conflict', wanted, diff, theirs: fresh };
    return true;
  }

  private async readNow(what: string): Promise<Table | undefined> {
    const instruments = this.instruments.value;
    this.busy.value = what;
    const answer = await this.instrument.read();
    if (instruments !== this.instruments.value) {
      return undefined;
    }
    this.busy.value = '';
    if (answer.ok) {
      this.readAt.value = Date.now();
      return answer.table;
    }
    this.say('bad', this.instrument.describe(answer.fault));
    return undefined;
  }
}
