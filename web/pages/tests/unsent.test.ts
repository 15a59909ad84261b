import { afterEach, beforeEach, describe, expect, it, vi } from 'vitest';
import type { Configuration } from '../src/documents';
import { calibrationEditor, keepUnsent, sequenceEditor } from '../src/editors';
import { configuration } from '../src/store';
import { setCell } from '../src/table';
import { sequenceKind } from '../src/tables';
import { keep, kept, placeOf } from '../src/unsent';
import { load } from './documents';
import { Gateway } from './gateway';

const one = load<Configuration>('docs/schemas/examples/configuration.json');
const other = { ...one, Inst_serial: one.Inst_serial + 1 };
const place = placeOf(sequenceKind, one);

let stored: Map<string, string>;
let stop: () => void;

const edit = (text: string): void =>
  sequenceEditor.change(
    setCell(sequenceEditor.draft.value!, 1, 'Stream', text),
    { what: 'Stream', place: { rowId: 1, key: 'Stream' } },
    true,
  );
const stream = (): string | undefined => sequenceEditor.draft.value?.rows[1]!.cells.Stream;

/** As if the page had been reloaded. */
function loadAgain(): void {
  stop();
  configuration.value = undefined;
  for (const editor of [sequenceEditor, calibrationEditor]) {
    editor.takeOver();
  }
  stop = keepUnsent();
}

beforeEach(() => {
  stored = new Map();
  vi.stubGlobal('sessionStorage', {
    getItem: (key: string) => stored.get(key) ?? null,
    setItem: (key: string, text: string) => stored.set(key, text),
    removeItem: (key: string) => stored.delete(key),
  });
  vi.stubGlobal('document', { hidden: true });
  new Gateway();
  stop = () => undefined;
  loadAgain();
});
afterEach(() => {
  stop();
  configuration.value = undefined;
  vi.unstubAllGlobals();
});

describe('unsent edits', () => {
  it('come back when the page is reloaded, with their base', async () => {
    configuration.value = one;
    await sequenceEditor.load();
    const { base, readAt } = sequenceEditor;
    const [table, time] = [base.value, readAt.value];
    expect([...stored.keys()]).toEqual([]);
    edit('3');
    expect([...stored.keys()]).toEqual([place]);
    loadAgain();
    expect(sequenceEditor.draft.value).toBeUndefined();
    configuration.value = one;
    expect([stream(), base.value, readAt.value]).toEqual(['3', table, time]);
    expect(sequenceEditor.message.value).toMatchObject({
      kind: 'good',
      text: 'The changes made here before the page was reloaded are still here. They have not been sent.',
    });
    expect(calibrationEditor.draft.value).toBeUndefined();
    edit('1');
    expect([...stored.keys()]).toEqual([]);
  });

  it('replace what was read before the instrument was identified', async () => {
    configuration.value = one;
    await sequenceEditor.load();
    edit('3');
    loadAgain();
    await sequenceEditor.load();
    expect(stream()).toBe('1');
    configuration.value = one;
    expect(stream()).toBe('3');
  });

  it('replace what was typed meanwhile, which undo restores', async () => {
    configuration.value = one;
    await sequenceEditor.load();
    edit('3');
    loadAgain();
    await sequenceEditor.load();
    edit('4');
    configuration.value = one;
    expect(stream()).toBe('3');
    sequenceEditor.undo();
    expect(sequenceEditor.said.value?.text).toBe('Undone: return to what was changed before.');
    expect(stream()).toBe('4');
  });

  it('of one instrument are not shown for another', async () => {
    configuration.value = one;
    await sequenceEditor.load();
    edit('3');
    const { value: count } = sequenceEditor.instruments;
    configuration.value = undefined;
    expect(stream()).toBe('3');
    configuration.value = other;
    expect(stream()).toBeUndefined();
    expect(sequenceEditor.undos.past.value).toEqual([]);
    expect(sequenceEditor.instruments.value).toBe(count + 1);
    await sequenceEditor.load();
    edit('4');
    expect(stored.size).toBe(2);
    configuration.value = one;
    expect(stream()).toBe('3');
    configuration.value = other;
    expect(stream()).toBe('4');
    // A different name is enough.
    configuration.value = { ...other, Inst_name: 'another' };
    expect(stream()).toBeUndefined();
  });

  it('stay when the same instrument answers again', async () => {
    configuration.value = one;
    await sequenceEditor.load();
    edit('3');
    const undos = sequenceEditor.undos.past.value;
    configuration.value = undefined;
    configuration.value = { ...one };
    expect(stream()).toBe('3');
    expect(sequenceEditor.undos.past.value).toBe(undos);
  });

  it('keep the table from before one was refused halfway', async () => {
    configuration.value = one;
    await sequenceEditor.load();
    sequenceEditor.before.value = sequenceEditor.base.value;
    expect(sequenceEditor.isDirty.value).toBe(false);
    loadAgain();
    configuration.value = one;
    expect(sequenceEditor.before.value).toEqual(sequenceEditor.base.value);
    sequenceEditor.before.value = undefined;
    expect(stored.size).toBe(0);
  });

  it('are not based on a table still being read from the previous instrument', async () => {
    configuration.value = one;
    const reading = sequenceEditor.load();
    configuration.value = other;
    await reading;
    expect(sequenceEditor.draft.value).toBeUndefined();
    expect(sequenceEditor.busy.value).toBe('');
  });

  it('are ignored if they are not tables', () => {
    const good = { base: { header: {}, rows: [] }, draft: { header: {}, rows: [] } };
    stored.set(place, JSON.stringify(good));
    expect(kept(place)).toEqual(good);
    for (const wrong of [
      '{',
      'null',
      '5',
      '{}',
      JSON.stringify({ ...good, draft: undefined }),
      JSON.stringify({ ...good, base: { rows: [] } }),
      JSON.stringify({ ...good, base: { header: null, rows: [] } }),
      JSON.stringify({ ...good, draft: { header: {}, rows: 3 } }),
    ]) {
      stored.set(place, wrong);
      expect(kept(place)).toBeUndefined();
    }
  });

  it('are lost in a browser that stores nothing, but nothing else is', () => {
    vi.stubGlobal('sessionStorage', undefined);
    const unsent = {
      base: { header: {}, rows: [] },
      draft: { header: {}, rows: [], nextId: 0 },
      readAt: 0,
    };
    expect(() => keep(place, unsent)).not.toThrow();
    expect(kept(place)).toBeUndefined();
  });
});
