import { signal } from '@preact/signals';
import { describe, expect, it } from 'vitest';
import type { Configuration } from '../src/documents';
import { Editor } from '../src/editor';
import { setCell, type Table, type Values } from '../src/table';
import { calibrationKind, sequenceKind, type TableKind } from '../src/tables';
import { load } from './documents';

const fault = { status: 503, text: 'The instrument is not reachable.', detail: '' };

/** An instrument that keeps what is sent to it. */
function build(kind: TableKind, document: object) {
  const world = {
    table: kind.fromReport(document),
    sent: [] as string[],
    asked: [] as number[],
    isReachable: true,
    refusal: undefined as typeof fault | undefined,
    /** What the gateway keeps, by number, the latest first. */
    backups: [] as [number: number, table: Table][],
    backupFault: '',
    /** What the instrument makes of a table that is sent. */
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
      backups: {
        list: async () =>
          world.backupFault
            ? { ok: false, reason: world.backupFault }
            : {
                ok: true,
                value: world.backups.map(([number]) => ({ number, time: '', user: 'anna' })),
              },
        table: async (number) => {
          world.asked.push(number);
          const [, table] = world.backups.find(([one]) => one === number)!;
          return table.rows.length > 0 ? { ok: true, value: table } : { ok: false, reason: 'gone' };
        },
      },
    },
    signal<Configuration | undefined>(undefined),
  );
  const edit = (rowId: number, key: string, text: string): void => {
    const place = { rowId, key };
    editor.change(setCell(editor.draft.value!, rowId, key, text), { what: key, place }, true);
  };
  /** The operations, one after the other. */
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
  it('has nothing to show before it has loaded a table', async () => {
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

  it('says what it is doing', async () => {
    const { editor, steps } = sequence();
    await editor.load();
    expect(steps.splice(0)).toEqual(['', 'Reading the table', '']);
    await editor.prepare();
    expect(steps.splice(0)).toEqual(['Comparing with the instrument', '']);
    await editor.send();
    expect(steps).toEqual([
      'Checking whether the table has changed',
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
    expect(editor.message.value).toMatchObject({
      kind: 'bad',
      text: 'The instrument is not reachable.',
    });
    expect(editor.draft.value?.rows[0]?.cells.Repeat).toBe('9');
    world.isReachable = true;
    await editor.load();
    expect(editor.message.value).toBeUndefined();
    expect(editor.draft.value?.rows[0]?.cells.Repeat).toBe('2');
  });

  it('finds the faults of the cells', async () => {
    const { editor, edit } = sequence();
    await editor.load();
    expect(editor.problems.value).toEqual([]);
    edit(0, 'Repeat', 'many');
    expect(editor.problems.value).toEqual([
      { rowId: 0, key: 'Repeat', text: 'not a whole number' },
    ]);
  });

  it('sends no file that the gateway does not accept', async () => {
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
        expect(editor.message.value).toMatchObject({
          kind: 'bad',
          text: 'The table has 65537 octets; the gateway accepts 65536. Nothing was sent.',
        });
      }
    }
  });

  it('says when the instrument has the table although it refused it', async () => {
    const { editor, world, edit } = sequence();
    await editor.load();
    edit(1, 'Stream', '3');
    world.refusal = { status: 409, text: 'The instrument refused.', detail: '' };
    await editor.send();
    expect(editor.message.value).toMatchObject({
      kind: 'bad',
      text: 'The instrument refused. Even so the instrument now has the table.',
    });
    world.keep = (sent) => {
      world.isReachable = false;
      return sent;
    };
    await editor.send();
    expect(editor.message.value).toMatchObject({
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
    expect(editor.message.value).toMatchObject({
      kind: 'good',
      text: 'Sent, read back, and identical.',
    });
    expect(editor.isDirty.value).toBe(false);
    expect(editor.busy.value).toBe('');
  });

  it('does not compare when the instrument cannot be reached, and keeps the edits', async () => {
    const { editor, world, edit } = sequence();
    await editor.load();
    edit(0, 'Repeat', '9');
    world.isReachable = false;
    await editor.prepare();
    expect(editor.review.value).toBeUndefined();
    expect(editor.message.value).toMatchObject({
      kind: 'bad',
      text: 'The instrument is not reachable.',
    });
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

  it('refuses to send when the table changes during the review', async () => {
    const { editor, world, edit } = sequence();
    await editor.load();
    edit(0, 'Repeat', '9');
    await editor.prepare();
    world.table = withStream(world.table, 2, 4);
    await editor.send();
    expect(editor.review.value?.kind).toBe('conflict');
    expect(world.sent).toEqual([]);
  });

  it('continues with its own table on request', async () => {
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

  it('shows what the instrument has stored if it differs', async () => {
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

  it('shows what a refused download left behind, and keeps the edits', async () => {
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

  it('imports a file without sending it, or says why it did not', async () => {
    const { editor, world } = sequence();
    await editor.load();
    const octets = (text: string) => new TextEncoder().encode(text).buffer as ArrayBuffer;
    editor.import('mine.json', octets('{"Table_repeat": 4, "total": 1, "rows": [{"Stream": 2}]}'));
    expect(editor.draft.value?.header.Table_repeat).toBe('4');
    expect(editor.message.value).toMatchObject({
      kind: 'good',
      text: 'mine.json was read. Nothing has been sent yet.',
    });
    expect(editor.isDirty.value).toBe(true);
    expect(world.sent).toEqual([]);
    editor.import('other.json', octets('{"total": 1}'));
    expect(editor.message.value).toMatchObject({
      kind: 'bad',
      text: 'other.json was not read. Table_repeat: is missing.',
    });
    expect(editor.draft.value?.header.Table_repeat).toBe('4');
  });

  it('asks before edits are lost, but not when there are none', async () => {
    const { editor, world, edit } = sequence();
    await editor.load();
    const file = '{"Table_repeat": 4, "total": 1, "rows": [{"Stream": 2}]}';
    const octets = new TextEncoder().encode(file).buffer as ArrayBuffer;
    editor.import('mine.json', octets);
    expect(editor.review.value).toBeUndefined();
    editor.import('mine.json', octets);
    expect(editor.review.value).toMatchObject({
      kind: 'discard',
      title: 'Replace the changes made here?',
      yes: 'Replace',
    });
    expect(editor.review.value?.diff.rows).not.toEqual([]);
    expect(editor.undos.past.value.map(({ what }) => what)).toEqual(['import of mine.json']);
    const asked = editor.review.value!;
    if (asked.kind === 'discard') {
      asked.go();
    }
    expect(editor.review.value).toBeUndefined();
    expect(editor.undos.past.value).toHaveLength(2);
    expect(editor.message.value?.text).toBe('mine.json was read. Nothing has been sent yet.');
    edit(0, 'Stream', '3');
    // The message no longer applies to the edited table.
    expect(editor.message.value).toBeUndefined();
    editor.reload();
    expect(editor.review.value).toMatchObject({ kind: 'discard', yes: 'Discard and reload' });
    world.table = withStream(world.table, 0, 1);
    await editor.load();
    editor.reload();
    expect(editor.review.value).toBeUndefined();
  });

  it('says when the table is as before, and when the instrument may still be at work', async () => {
    const { editor, world, edit } = sequence();
    await editor.load();
    const { table } = world;
    edit(1, 'Stream', '3');
    world.keep = () => table;
    world.refusal = { status: 401, text: 'You are not signed in.', detail: '' };
    await editor.send();
    expect(editor.message.value?.text).toBe(
      'You are not signed in. The instrument’s table is as it was before.',
    );
    expect(editor.message.value?.diff).toBeUndefined();
    expect(editor.before.value).toBeUndefined();
    const wait = ' It may still be at work: read the table again in a few minutes.';
    world.refusal = { status: 0, text: 'No answer came.', detail: '' };
    await editor.send();
    expect(editor.message.value?.text).toContain(`is as it was before.${wait}`);
    world.refusal = { ...fault, text: 'Not known.', isUnknown: true } as typeof fault;
    world.keep = (sent) => sent;
    await editor.send();
    expect(editor.message.value?.text).toBe(
      `Not known. Even so the instrument now has the table.${wait}`,
    );
  });
});

describe('a table that was refused halfway', () => {
  const half = async () => {
    const made = sequence();
    const { editor, world, edit } = made;
    await editor.load();
    const before = world.table;
    edit(2, 'Stream', '46');
    world.refusal = { status: 409, text: 'The instrument refused.', detail: '' };
    world.keep = (sent) => ({ ...sent, rows: sent.rows.slice(0, 2) });
    await editor.send();
    world.refusal = undefined;
    world.keep = (sent) => sent;
    expect(editor.before.value).toEqual(before);
    return { ...made, before };
  };

  it('can be replaced by the earlier one from the backups', async () => {
    const { editor, world, before, steps } = await half();
    const newer = withStream(before, 0, 1);
    world.backups = [
      [9, newer],
      [8, { header: {}, rows: [] }],
      [7, before],
      [6, before],
    ];
    steps.splice(0);
    await editor.prepareRestore();
    expect(steps.slice(0, 2)).toEqual(['Looking for the earlier table', '']);
    expect(world.asked).toEqual([9, 8, 7]);
    const review = editor.review.value!;
    expect(review.kind === 'send' && review.wanted).toEqual({ goal: 'restore', table: before });
    expect(review.diff.rows.map(({ kind }) => kind)).toEqual(['added']);
    await editor.send({ goal: 'restore', table: before });
    expect(world.table).toEqual(before);
    expect(editor.message.value).toMatchObject({
      kind: 'good',
      text: 'The previous table is on the instrument again: sent, read back, and identical.',
    });
    expect(editor.before.value).toBeUndefined();
    // The edits are still there.
    expect(editor.draft.value?.rows[2]?.cells.Stream).toBe('46');
    expect(editor.isDirty.value).toBe(true);
  });

  it('is replaced by the table read here when the backup is gone', async () => {
    const { editor, before } = await half();
    await editor.prepareRestore();
    const review = editor.review.value!;
    expect(review.kind === 'send' && review.wanted.table).toEqual(before);
  });

  it('cannot be replaced while the gateway does not answer', async () => {
    const { editor, world } = await half();
    world.backupFault = 'The web server does not answer.';
    await editor.prepareRestore();
    expect(editor.review.value).toBeUndefined();
    expect(editor.busy.value).toBe('');
    expect(editor.message.value).toMatchObject({
      kind: 'bad',
      text: 'The earlier tables could not be read. The web server does not answer.',
    });
    expect(editor.before.value).toBeDefined();
  });

  it('is not replaced when the table has changed since then', async () => {
    const { editor, world, before } = await half();
    world.table = withStream(before, 1, 4);
    await editor.prepareRestore();
    const review = editor.review.value!;
    expect(review.kind).toBe('conflict');
    if (review.kind === 'conflict') {
      await editor.keepEdits(review.theirs, review.wanted);
    }
    expect(editor.review.value).toMatchObject({ kind: 'send', wanted: { goal: 'restore' } });
  });

  it('leaves the first earlier table when restoring is refused halfway too', async () => {
    const { editor, world, before } = await half();
    world.refusal = { status: 409, text: 'The instrument refused.', detail: '' };
    world.keep = (sent) => ({ ...sent, rows: sent.rows.slice(0, 1) });
    await editor.send();
    expect(editor.before.value).toEqual(before);
  });

  it('is forgotten when the instrument turns out to have one of the two', async () => {
    const one = await half();
    one.world.table = one.before;
    await one.editor.load();
    expect(one.editor.before.value).toBeUndefined();
    const two = await half();
    two.world.table = two.editor.edited();
    await two.editor.load();
    expect(two.editor.before.value).toBeUndefined();
    const neither = await half();
    await neither.editor.load();
    expect(neither.editor.before.value).toEqual(neither.before);
  });

  it('is assumed when the table could not be read back', async () => {
    const { editor, world, edit } = sequence();
    await editor.load();
    const before = world.table;
    edit(2, 'Stream', '3');
    world.refusal = { status: 504, text: 'No answer.', detail: '' };
    world.keep = (sent) => {
      world.isReachable = false;
      return sent;
    };
    await editor.send();
    expect(editor.before.value).toEqual(before);
    expect(editor.message.value?.text).toBe(
      'No answer. It could not be read back: The instrument is not reachable.',
    );
  });

  it('is not looked for on another instrument', async () => {
    const { editor } = await half();
    const looking = editor.prepareRestore();
    editor.takeOver();
    await looking;
    expect([editor.review.value, editor.message.value, editor.busy.value]).toEqual([
      undefined,
      undefined,
      '',
    ]);
    await editor.prepareRestore();
    expect(editor.busy.value).toBe('');
  });
});
