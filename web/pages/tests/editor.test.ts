import { signal } from '@preact/signals';
import { describe, expect, it } from 'vitest';
import type { Configuration } from '../src/documents';
import { Editor } from '../src/editor';
import { setCell, type Table, type Values } from '../src/table';
import { calibrationKind, sequenceKind, type TableKind } from '../src/tables';
import { load } from './documents';

const fault = { status: 503, text: 'The instrument is not reachable.', detail: '' };

/** An instrument that keeps what it is sent. */
function build(kind: TableKind, document: object) {
  const world = {
    table: kind.fromReport(document),
    sent: [] as string[],
    isReachable: true,
    refusal: undefined as typeof fault | undefined,
    /** What the instrument makes of what it is sent. */
    keep: (sent: Table): Table => sent,
  };
  const editor = new Editor(
    kind,
    {
      read: async () =>
        world.isReachable ? { ok: true, table: world.table } : { ok: false, fault },
      send: async (file) => {
        world.sent.push(file);
        world.table = world.keep(kind.fromReport(JSON.parse(file) as object));
        return world.refusal ? { ok: false, fault: world.refusal } : { ok: true };
      },
      describe: ({ text }) => text,
    },
    signal<Configuration | undefined>(undefined),
  );
  const edit = (rowId: number, key: string, text: string): void => {
    editor.draft.value = setCell(editor.draft.value!, rowId, key, text);
  };
  /** What was being done, one after the other. */
  const steps: string[] = [];
  editor.busy.subscribe((what) => steps.push(what));
  return { editor, world, edit, steps };
}

const sequence = () => build(sequenceKind, load('docs/schemas/examples/sequence.json'));
const withStream = (table: Table, row: number, stream: number): Table => ({
  ...table,
  rows: table.rows.map((one: Values, n) => (n === row ? { ...one, Stream: stream } : one)),
});

describe('editor', () => {
  it('has nothing to show before it has loaded', async () => {
    const { editor } = sequence();
    expect(editor.busy.value).toBe('');
    expect(editor.problems.value).toEqual([]);
    expect(editor.isDirty.value).toBe(false);
    editor.import('mine.json', new TextEncoder().encode('{}').buffer as ArrayBuffer);
    expect(editor.draft.value).toBeUndefined();
    expect(editor.message.value).toBeUndefined();
    const { editor: loaded } = sequence();
    await loaded.load();
    editor.draft.value = loaded.draft.value;
    expect(editor.isDirty.value).toBe(false);
    loaded.draft.value = undefined;
    expect(loaded.isDirty.value).toBe(false);
  });

  it('says what it does', async () => {
    const { editor, steps } = sequence();
    await editor.load();
    expect(steps.splice(0)).toEqual(['', 'Reading the table', '']);
    await editor.prepare();
    expect(steps.splice(0)).toEqual(['Comparing with the instrument', '']);
    await editor.send();
    expect(steps).toEqual([
      'Looking whether the table has changed',
      '',
      'Sending the table',
      'Reading the table back',
      '',
    ]);
  });

  it('keeps what it has when it cannot load', async () => {
    const { editor, world, edit } = sequence();
    await editor.load();
    edit(0, 'Repeat', '9');
    world.isReachable = false;
    await editor.load();
    expect(editor.message.value).toEqual({ kind: 'bad', text: 'The instrument is not reachable.' });
    expect(editor.draft.value?.rows[0]?.cells.Repeat).toBe('9');
    world.isReachable = true;
    await editor.load();
    expect(editor.message.value).toBeUndefined();
    expect(editor.draft.value?.rows[0]?.cells.Repeat).toBe('2');
  });

  it('finds what is wrong with the cells', async () => {
    const { editor, edit } = sequence();
    await editor.load();
    expect(editor.problems.value).toEqual([]);
    edit(0, 'Repeat', 'many');
    expect(editor.problems.value).toEqual([
      { rowId: 0, key: 'Repeat', text: 'not a whole number' },
    ]);
  });

  it('sends no file that the gateway does not take', async () => {
    for (const [size, count] of [
      [65536, 1],
      [65537, 0],
    ] as const) {
      const { editor, world } = build(
        { ...sequenceKind, toFile: (table) => sequenceKind.toFile(table).padEnd(size) },
        load('docs/schemas/examples/sequence.json'),
      );
      await editor.load();
      await editor.send();
      expect(world.sent).toHaveLength(count);
      if (count === 0) {
        expect(editor.message.value).toEqual({
          kind: 'bad',
          text: 'The table has 65537 octets; the gateway takes 65536. Nothing was sent.',
        });
      }
    }
  });

  it('says when the instrument has the table although it refused', async () => {
    const { editor, world, edit } = sequence();
    await editor.load();
    edit(1, 'Stream', '3');
    world.refusal = { status: 409, text: 'The instrument refused.', detail: '' };
    await editor.send();
    expect(editor.message.value).toEqual({
      kind: 'bad',
      text: 'The instrument refused. Even so the instrument now has the table.',
    });
    world.keep = (sent) => {
      world.isReachable = false;
      return sent;
    };
    await editor.send();
    expect(editor.message.value).toEqual({
      kind: 'bad',
      text: 'The instrument refused. It could not be read back: The instrument is not reachable.',
    });
  });

  it('exports what is shown', async () => {
    const { editor, edit } = sequence();
    await editor.load();
    edit(0, 'Repeat', '9');
    expect((JSON.parse(editor.exported()) as { rows: Values[] }).rows[0]!.Repeat).toBe(9);
  });

  it('loads, compares, sends, and reads back', async () => {
    const { editor, world, edit } = sequence();
    await editor.load();
    expect(editor.isDirty.value).toBe(false);
    edit(1, 'Stream', '3');
    expect(editor.isDirty.value).toBe(true);

    await editor.prepare();
    expect(editor.review.value?.kind).toBe('send');
    expect(editor.review.value?.diff.rows.map(({ kind, keys }) => [kind, keys])).toEqual([
      ['changed', ['Stream']],
    ]);
    expect(world.sent).toEqual([]);

    await editor.send();
    expect(JSON.parse(world.sent[0]!).rows[1]).toEqual({
      Type: 'Analysis',
      Repeat: 5,
      Stream: 3,
      Slot: 0,
      Flush_time: 1,
    });
    expect(editor.message.value).toEqual({ kind: 'good', text: 'Sent, read back, and the same.' });
    expect(editor.isDirty.value).toBe(false);
    expect(editor.busy.value).toBe('');
  });

  it('does not compare when the instrument is not reached, and keeps what was edited', async () => {
    const { editor, world, edit } = sequence();
    await editor.load();
    edit(0, 'Repeat', '9');
    world.isReachable = false;
    await editor.prepare();
    expect(editor.review.value).toBeUndefined();
    expect(editor.message.value).toEqual({ kind: 'bad', text: 'The instrument is not reachable.' });
    expect(editor.draft.value?.rows[0]?.cells.Repeat).toBe('9');
  });

  it('refuses to send when the table has changed since it was loaded', async () => {
    const { editor, world, edit } = sequence();
    await editor.load();
    edit(0, 'Repeat', '9');
    world.table = withStream(world.table, 2, 4);
    await editor.prepare();
    expect(editor.review.value?.kind).toBe('conflict');
    expect(
      editor.review.value?.diff.rows.map(({ placeAfter, keys }) => [placeAfter, keys]),
    ).toEqual([[3, ['Stream']]]);
    expect(world.sent).toEqual([]);
  });

  it('refuses to send when the table changes while the person reads the differences', async () => {
    const { editor, world, edit } = sequence();
    await editor.load();
    edit(0, 'Repeat', '9');
    await editor.prepare();
    world.table = withStream(world.table, 2, 4);
    await editor.send();
    expect(editor.review.value?.kind).toBe('conflict');
    expect(world.sent).toEqual([]);
  });

  it('goes on with its own table when the person says so', async () => {
    const { editor, world, edit } = sequence();
    await editor.load();
    edit(0, 'Repeat', '9');
    world.table = withStream(world.table, 2, 4);
    await editor.prepare();
    await editor.keepEdits(world.table);
    expect(editor.review.value?.kind).toBe('send');
    expect(
      editor.review.value?.diff.rows.map(({ placeAfter, keys }) => [placeAfter, keys]),
    ).toEqual([
      [1, ['Repeat']],
      [3, ['Stream']],
    ]);
    await editor.send();
    expect(JSON.parse(world.sent[0]!).rows[2].Stream).toBe(2);
  });

  it('says what the instrument made of the table when it is not the same', async () => {
    const { editor, world, edit } = sequence();
    await editor.load();
    edit(1, 'Stream', '3');
    world.keep = (sent) => withStream(sent, 1, 1);
    await editor.send();
    const message = editor.message.value!;
    expect(message.kind).toBe('bad');
    expect(message.text).toBe('The instrument accepted the table, but what it has now differs:');
    expect(message.diff?.rows.map(({ before, after }) => [before?.Stream, after?.Stream])).toEqual([
      [3, 1],
    ]);
    expect(editor.draft.value?.rows[1]?.cells.Stream).toBe('3');
  });

  it('says what a refused download left behind, and keeps what was edited', async () => {
    const { editor, world, edit } = sequence();
    await editor.load();
    edit(2, 'Stream', '46');
    world.refusal = { status: 409, text: 'The instrument refused.', detail: '' };
    world.keep = (sent) => ({ ...sent, rows: sent.rows.slice(0, 2) });
    await editor.send();
    const message = editor.message.value!;
    expect(message.kind).toBe('bad');
    expect(message.text).toBe(
      'The instrument refused. The instrument does not have the table as it was sent. What it has differs:',
    );
    expect(message.diff?.rows.map(({ kind, placeBefore }) => [kind, placeBefore])).toEqual([
      ['removed', 3],
    ]);
    expect(editor.isDirty.value).toBe(true);
    expect(editor.draft.value?.rows.length).toBe(3);
  });

  it('says when the table could not be read back', async () => {
    const { editor, world, edit } = sequence();
    await editor.load();
    edit(1, 'Stream', '3');
    world.keep = (sent) => {
      world.isReachable = false;
      return sent;
    };
    await editor.send();
    expect(editor.message.value?.text).toBe(
      'The instrument accepted the table. It could not be read back: The instrument is not reachable.',
    );
  });

  it('sends every peak of a calibration, whichever was changed', async () => {
    const { editor, world, edit } = build(
      calibrationKind,
      load('docs/schemas/examples/calibration.json'),
    );
    await editor.load();
    edit(1, 'Level_amt', '85.1');
    await editor.send();
    const rows = (JSON.parse(world.sent[0]!) as { total: number; rows: Values[] }).rows;
    expect(rows.map(({ Level_amt }) => Level_amt)).toEqual([
      4, 85.1, 1.5, 6, 2.5, 0.4, 0.4, 0.05, 0.1, 0.1, 0.05,
    ]);
    expect(editor.message.value?.kind).toBe('good');
  });

  it('imports a file without sending it, and says why it did not', async () => {
    const { editor, world } = sequence();
    await editor.load();
    const octets = (text: string) => new TextEncoder().encode(text).buffer as ArrayBuffer;
    editor.import('mine.json', octets('{"Table_repeat": 4, "total": 1, "rows": [{"Stream": 2}]}'));
    expect(editor.draft.value?.header.Table_repeat).toBe('4');
    expect(editor.message.value).toEqual({
      kind: 'good',
      text: 'mine.json was read. Nothing has been sent yet.',
    });
    expect(editor.isDirty.value).toBe(true);
    expect(world.sent).toEqual([]);
    editor.import('other.json', octets('{"total": 1}'));
    expect(editor.message.value).toEqual({
      kind: 'bad',
      text: 'other.json was not read. Table_repeat: is missing.',
    });
    expect(editor.draft.value?.header.Table_repeat).toBe('4');
  });
});
