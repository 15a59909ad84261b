// @vitest-environment happy-dom
import { signal } from '@preact/signals';
import { afterEach, beforeEach, describe, expect, it } from 'vitest';
import { backupName, type Backup, type Got } from '../src/backups';
import { EarlierTables } from '../src/components/EarlierTables';
import type { Configuration } from '../src/documents';
import { Editor, type Read } from '../src/editor';
import { setCell, type Table } from '../src/table';
import { sequenceKind } from '../src/tables';
import { load } from './documents';
import { find, press, rowsOf, settle, show, textOf, textsOf } from './dom';
import { arrange, clear } from './world';

const table = sequenceKind.fromReport(load('tests/system/documents/sequence/everyday.json'));
const shorter: Table = { header: { ...table.header, Table_repeat: 9 }, rows: table.rows.slice(1) };
const other: Table = {
  ...table,
  rows: [{ ...table.rows[0]!, Repeat: 7 }, table.rows[1]!, table.rows[2]!, table.rows[2]!],
};
const backups: Backup[] = [3, 2, 1].map((number) => ({
  number,
  time: `2026-11-2${number}T07:31:35Z`,
  user: `user ${number}`,
}));
const name = (number: number): string => backupName(backups.find((one) => one.number === number)!);

let list: Got<readonly Backup[]>;
let tables: Record<number, Got<Table>>;
let present: Read;
let asked: (number | string)[];
let isOpen: boolean;
/** What the list waits for. */
let until: Promise<void>;
let go: () => void;
let editor: Editor;

async function open(): Promise<void> {
  editor = new Editor(
    sequenceKind,
    {
      read: async () => {
        asked.push('present');
        return present;
      },
      send: async () => ({ ok: true }),
      describe: ({ text }) => text,
      backups: {
        list: async () => {
          asked.push('list');
          await until;
          return list;
        },
        table: async (number) => {
          asked.push(number);
          return tables[number]!;
        },
      },
    },
    signal<Configuration | undefined>(undefined),
  );
  await editor.load();
  asked = [];
  isOpen = true;
  const close = (): void => void (isOpen = false);
  await show(<EarlierTables editor={editor} extra={undefined} onClose={close} />);
}

const cells = (): string[][] => rowsOf('.earlier > tbody').filter((row) => row.length === 3);
const said = (): string => textOf(find('[data-testid=earlier]'));

beforeEach(async () => {
  await arrange();
  list = { ok: true, value: backups };
  tables = {
    3: { ok: true, value: table },
    2: { ok: true, value: shorter },
    1: { ok: false, reason: 'It is gone.' },
  };
  present = { ok: true, table };
  asked = [];
  until = Promise.resolve();
});
afterEach(clear);

describe('earlier tables', () => {
  const hold = (): void => {
    until = new Promise((done) => (go = done));
  };

  it('are listed with time, user and difference', async () => {
    hold();
    await open();
    expect(said()).toBe('Reading the list.');
    go();
    await settle();
    expect(asked).toEqual(['list', 3, 2, 1, 'present']);
    expect(textOf(find('dialog h2'))).toBe('Earlier tables: sequence');
    expect(textsOf('.earlier > thead th')).toEqual(['Replaced', 'Difference', 'Editor']);
    expect(textsOf('.earlier > tbody > tr > th')).toContain(name(2));
    const differences = [...document.querySelectorAll('.earlier > tbody > tr')].map((row) =>
      textOf(row.querySelector('summary') ?? row.querySelector('td')),
    );
    expect(differences).toEqual(['none', 'Runs of the whole table, 1 removed', 'It is gone.']);
    expect(textsOf('summary ~ p')).toEqual(['Runs of the whole table: 2 → 9']);
    const buttons = [...document.querySelectorAll<HTMLButtonElement>('.earlier button')];
    expect(buttons.map(({ disabled }) => disabled)).toEqual([false, false, true]);
    expect(textOf(buttons[1])).toBe(`Load into the editor (${name(2)})`);
  });

  it('have the number of differing rows', async () => {
    tables[3] = { ok: true, value: other };
    await open();
    await settle();
    expect(textsOf('summary')).toContain('1 changed, 1 added');
  });

  it('are loaded into the editor, and not sent', async () => {
    await open();
    await settle();
    await press(`Load into the editor (${name(2)})`);
    expect(isOpen).toBe(false);
    expect(editor.edited()).toEqual(shorter);
    expect(editor.base.value).toEqual(table);
    expect(editor.message.value?.text).toBe(
      `The table that was replaced on ${name(2)} is in the editor. Nothing has been sent yet.`,
    );
    editor.undo();
    expect(editor.said.value?.text).toBe(`Undone: loading of the earlier table (${name(2)}).`);
    expect(editor.edited()).toEqual(table);
  });

  it('ask before edits are lost', async () => {
    await open();
    await settle();
    editor.change(setCell(editor.draft.value!, 0, 'Stream', '2'), { what: 'Stream' });
    await press(`Load into the editor (${name(2)})`);
    expect(editor.review.value?.kind).toBe('discard');
  });

  it('may be none', async () => {
    list = { ok: true, value: [] };
    await open();
    await settle();
    expect(said()).toBe('No table has been replaced yet.');
    expect(textsOf('.earlier')).toEqual([]);
  });

  it('cannot be listed without the gateway, but can be requested again', async () => {
    list = { ok: false, reason: 'The web server does not answer.' };
    await open();
    await settle();
    expect(said()).toBe('The web server does not answer.Try again');
    expect(asked).toEqual(['list']);
    list = { ok: true, value: backups };
    await press('Try again');
    await settle();
    expect(said()).toBe('');
    expect(textsOf('.earlier > tbody > tr > th')).toHaveLength(3);
  });

  it('can be loaded when the present table cannot be read', async () => {
    await open();
    present = { ok: false, fault: { status: 503, text: 'Not reachable.', detail: '' } };
    await settle();
    expect(said()).toBe('The instrument’s present table could not be read. Not reachable.');
    expect(cells().map(([, difference]) => difference)).toEqual([
      'not known',
      'not known',
      'It is gone.',
    ]);
    await press(`Load into the editor (${name(2)})`);
    expect(editor.edited()).toEqual(shorter);
  });

  it('are no longer requested after the dialog is closed', async () => {
    hold();
    await open();
    await show(null);
    go();
    await settle();
    expect(asked).toEqual(['list']);
    await open();
    await press('Close');
    expect(isOpen).toBe(false);
  });
});
