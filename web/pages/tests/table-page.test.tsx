// @vitest-environment happy-dom
import { signal } from '@preact/signals';
import { act } from 'preact/test-utils';
import { afterEach, beforeEach, describe, expect, it, vi } from 'vitest';
import type { Backup, Got } from '../src/backups';
import type { Configuration } from '../src/documents';
import { Editor, type Sent } from '../src/editor';
import { TablePage, type TablePicture } from '../src/pages/TablePage';
import type { Table } from '../src/table';
import { calibrationKind, sequenceKind, type TableKind } from '../src/tables';
import { load, statusWith } from './documents';
import {
  button,
  field,
  find,
  nameOf,
  press,
  reasonOf,
  rowsOf,
  settle,
  show,
  textOf,
  textsOf,
  tick,
  type,
} from './dom';
import { configuration, returns, samples } from '../src/store';
import { arrange, clear, setStatus } from './world';

const unreachable = { status: 503, text: 'The instrument is not reachable.', detail: '' };

/** The instrument's table, and its answers. */
class World {
  table: Table;
  sent: string[] = [];
  isReachable = true;
  /** Awaited before anything is read. */
  until: Promise<void> = Promise.resolve();
  list: () => Got<readonly Backup[]> = () => ({ ok: true, value: [] });
  backup: (number: number) => Got<Table> = () => ({ ok: false, reason: 'It is gone.' });
  send: (file: string) => Sent = (file) => {
    this.table = this.kind.fromReport(JSON.parse(file) as object);
    return { ok: true };
  };

  constructor(
    readonly kind: TableKind,
    document: object,
  ) {
    this.table = kind.fromReport(document);
  }

  editor(): Editor {
    return new Editor(
      this.kind,
      {
        read: async () => {
          await this.until;
          return this.isReachable
            ? { ok: true, table: this.table }
            : { ok: false, fault: unreachable };
        },
        send: async (file) => {
          this.sent.push(file);
          return this.send(file);
        },
        describe: ({ text }) => text,
        backups: {
          list: async () => this.list(),
          table: async (number) => this.backup(number),
        },
      },
      signal<Configuration | undefined>(undefined),
    );
  }
}

const everyday = load<object>('tests/system/documents/sequence/everyday.json');
const sequence = (): World => new World(sequenceKind, everyday);
/** Without the time of day. */
const message = (): string =>
  textOf(find('[data-testid=table-message]')).replace(/^\d\d:\d\d:\d\d /, '');
const state = (): string => textOf(find('p[role=status]')).replace(/ Read at \d\d:\d\d:\d\d\./, '');
const asked = (): string[] => textsOf('.dialog-body p');
const dialog = (): string => textOf(find('dialog h2'));

let world: World;
let editor: Editor;

async function open(one: World): Promise<void> {
  world = one;
  editor = world.editor();
  await show(<TablePage editor={editor} hint="How to move." />);
  await settle();
}

async function pressAndWait(name: string): Promise<void> {
  await press(name);
  await settle();
}

beforeEach(async () => void (await arrange()));
afterEach(clear);

describe('the page for a table', () => {
  it('reads the table when it is opened, and says so', async () => {
    let go = (): void => undefined;
    const one = sequence();
    one.until = new Promise((done) => (go = done));
    await open(one);
    expect(message()).toBe('Reading the table.');
    expect(textsOf('table, button')).toEqual([]);
    go();
    await settle();
    expect(message()).toBe('');
    expect(state()).toBe('As on the instrument when it was read.');
    expect(rowsOf('tbody')).toHaveLength(3);
    expect(textOf(find('caption'))).toBe('Sequence');
    expect(textsOf('p.dim')).toEqual(['How to move.']);
    expect(textsOf('.toolbar button')).toEqual([
      'Undo',
      'Redo',
      'Reload',
      'Import…',
      'Export',
      'Earlier tables…',
      'Compare and send…',
    ]);
    expect(find('.toolbar').getAttribute('aria-label')).toBe('Table');
    expect(button('Compare and send…').className).toBe('primary');
  });

  it('does not read the table again when the user returns to edits', async () => {
    await open(sequence());
    await type('Runs, line 1', '7');
    await show(null);
    world.isReachable = false;
    await show(<TablePage editor={editor} hint="" />);
    await settle();
    expect(field('Runs, line 1').value).toBe('7');
    expect(message()).toBe('');
    expect(state()).toBe('Changed here, not sent.');
  });

  it('reads the table when the instrument comes back, but not over edits', async () => {
    world.isReachable = false;
    await show(<TablePage editor={world.editor()} hint="" />);
    await settle();
    expect(message()).toBe('The instrument is not reachable.');
    // The instrument was away between two answers for the status.
    world.isReachable = true;
    await act(() => {
      samples.value++;
    });
    await settle();
    expect(message()).toBe('');
    expect(field('Runs, line 1').value).toBe('2');
    const change = async (count: number): Promise<void> => {
      world.table = { ...world.table, header: { ...world.table.header, Table_repeat: count } };
      await act(() => {
        samples.value++;
        returns.value++;
      });
      await settle();
    };
    await change(4);
    expect(field('Runs of the whole table').value).toBe('4');
    await type('Runs of the whole table', '7');
    await change(5);
    expect(field('Runs of the whole table').value).toBe('7');
    expect(state()).toBe('Changed here, not sent.');
  });

  it('does not read the table with every status', async () => {
    const editor = world.editor();
    const read = vi.spyOn(editor, 'load');
    await show(<TablePage editor={editor} hint="" />);
    await settle();
    await act(() => {
      samples.value++;
    });
    await settle();
    expect(read).toHaveBeenCalledTimes(1);
  });

  it('does not read the table during a question', async () => {
    const editor = world.editor();
    await show(<TablePage editor={editor} hint="" />);
    await settle();
    await press('Compare and send…');
    await settle();
    expect(dialog()).toMatch(/^Send/);
    await act(() => {
      returns.value++;
    });
    await settle();
    expect(dialog()).toMatch(/^Send/);
  });

  it('offers to try again when the table could not be read', async () => {
    const one = sequence();
    one.isReachable = false;
    await open(one);
    expect(message()).toBe('The instrument is not reachable.');
    expect(find('[data-testid=table-message] p').className).toBe('message bad');
    expect(textsOf('button')).toEqual(['Try again']);
    world.isReachable = true;
    await pressAndWait('Try again');
    expect(message()).toBe('');
    expect(rowsOf('tbody')).toHaveLength(3);
  });

  it('reads the table again on demand, and asks before edits are lost', async () => {
    await open(sequence());
    await type('Runs, line 1', '7');
    await pressAndWait('Discard and reload…');
    expect(dialog()).toBe('Discard the changes made here?');
    expect(asked()).toEqual([
      'This has not been sent to the instrument:',
      '“Undo” brings it back.',
    ]);
    expect(rowsOf('dialog tbody')).toEqual([
      ['~ changed', '1', 'Calibration', '2 → 7', '4', '1', '1.5'],
    ]);
    await pressAndWait('Cancel');
    expect(textsOf('dialog')).toEqual([]);
    expect(field('Runs, line 1').value).toBe('7');
    await pressAndWait('Discard and reload…');
    await pressAndWait('Discard and reload');
    expect(field('Runs, line 1').value).toBe('2');
    expect(textOf(button('Reload'))).toBe('Reload');
    await press('Undo');
    expect(field('Runs, line 1').value).toBe('7');
    expect(state()).toBe('Changed here, not sent. Undone: reading of the instrument’s table.');
    await press('Redo');
    await pressAndWait('Reload');
    expect(textsOf('dialog')).toEqual([]);
  });

  it('says when the table was read', async () => {
    vi.useFakeTimers({ toFake: ['Date'], now: new Date(2026, 10, 21, 14, 32, 7) });
    await open(sequence());
    expect(textOf(find('[data-testid=table-state]'))).toBe(
      'As on the instrument when it was read. Read at 14:32:07.',
    );
    world.isReachable = false;
    vi.setSystemTime(new Date(2026, 10, 21, 14, 40, 0));
    await pressAndWait('Reload');
    expect(textOf(find('[data-testid=table-message]'))).toBe(
      '14:40:00 The instrument is not reachable.',
    );
    expect(textOf(find('[data-testid=table-state]'))).toContain('Read at 14:32:07.');
    vi.useRealTimers();
  });

  it('sends nothing before the instrument is identified', async () => {
    await open(sequence());
    await act(() => void (configuration.value = undefined));
    expect(reasonOf('Compare and send…')).toBe(
      'The configuration of the instrument has not been read yet.',
    );
  });

  it('is disabled while something is under way', async () => {
    await open(sequence());
    expect(find<HTMLFieldSetElement>('fieldset').disabled).toBe(false);
    expect(button('Import…').disabled).toBe(false);
    let go = (): void => undefined;
    world.until = new Promise((done) => (go = done));
    await press('Reload');
    expect(message()).toBe('Reading the table.');
    expect(find('[data-testid=table-message] p').className).toBe('message waiting');
    expect(find<HTMLFieldSetElement>('fieldset').disabled).toBe(true);
    expect(button('Reload').disabled).toBe(true);
    expect(button('Import…').disabled).toBe(true);
    expect(reasonOf('Compare and send…')).toBe('Reading the table.');
    go();
    await settle();
    expect(reasonOf('Compare and send…')).toBe('');
    expect(button('Reload').disabled).toBe(false);
  });

  it('has the header above the rows', async () => {
    await open(sequence());
    expect(textsOf('.fields label')).toEqual([
      'Runs of the whole table',
      'Starts again after the last line',
    ]);
    await type('Runs of the whole table', '5');
    await tick('Starts again after the last line', true);
    expect(editor.draft.value?.header).toEqual({ Table_repeat: '5', Continuous: 'true' });
    expect(field('Starts again after the last line').checked).toBe(true);
    expect(state()).toBe('Changed here, not sent.');
  });

  it('reports faults, and neither sends nor exports them', async () => {
    await open(sequence());
    await type('Runs of the whole table', '-1');
    expect(textsOf('.fields .problem')).toEqual(['must be at least 0']);
    const header = field('Runs of the whole table');
    expect(textOf(document.getElementById(header.getAttribute('aria-describedby')!))).toBe(
      'must be at least 0',
    );
    expect(reasonOf('Compare and send…')).toBe('1 cell is not valid.');
    expect(button('Export').disabled).toBe(true);
    await type('Stream, line 1', 'x');
    expect(reasonOf('Compare and send…')).toBe('2 cells are not valid.');
    await type('Runs of the whole table', '1');
    expect(textsOf('.fields .problem')).toEqual([]);
    await type('Stream, line 1', '1');
    expect(reasonOf('Compare and send…')).toBe('');
    expect(button('Export').disabled).toBe(false);
  });
});

describe('a picture beside the table', () => {
  it('is given the focused row', async () => {
    const rows: (number | undefined)[] = [];
    const Picture: TablePicture = ({ editor: one, focusedRow }) => {
      rows.push(focusedRow);
      return <p class="picture">{one.draft.value!.rows.length} lines</p>;
    };
    const world = sequence();
    const editor = world.editor();
    await show(<TablePage editor={editor} hint="" picture={Picture} />);
    await settle();
    expect(textsOf('.beside > .picture')).toEqual(['3 lines']);
    expect(rows.at(-1)).toBeUndefined();
    await act(() => field('Runs, line 2').focus());
    expect(rows.at(-1)).toBe(1);
    await act(() => field('Stream, line 3').focus());
    expect(rows.at(-1)).toBe(2);
    await press('Delete line 1');
    expect(rows.at(-1)).toBe(0);
    await act(() => button('Export').focus());
    expect(rows.at(-1)).toBeUndefined();
  });
});

describe('sending', () => {
  it('shows what would change, sends it, and reports success', async () => {
    await open(sequence());
    await type('Stream, line 2', '3');
    await pressAndWait('Compare and send…');
    expect(dialog()).toBe('Send the sequence?');
    expect(asked()).toEqual(['This changes on the instrument:', ...sequenceKind.effects]);
    expect(rowsOf('dialog tbody')).toEqual([
      ['~ changed', '2', 'Analysis', '5', '1 → 3', '0', '1'],
    ]);
    await pressAndWait('Send');
    expect(textsOf('dialog')).toEqual([]);
    expect(world.sent).toHaveLength(1);
    expect(message()).toBe('Sent, read back, and identical.');
    expect(find('[data-testid=table-message] p').className).toBe('message good');
    expect(state()).toBe('As on the instrument when it was read.');
  });

  it('can be cancelled', async () => {
    await open(sequence());
    await pressAndWait('Compare and send…');
    expect(asked()).toEqual([
      'The instrument already has this table. It would be written again.',
      'Every line gets the calibration flag, whether it had it before or not: no report shows that flag.',
      'The instrument clears its table and then stores the new one line by line. If it refuses a line, the lines before it are stored and the others are not; the previous table can be restored, except for the calibration flags.',
    ]);
    await press('Cancel');
    expect(textsOf('dialog')).toEqual([]);
    expect(world.sent).toEqual([]);
  });

  it('shows a change in the header alone', async () => {
    await open(sequence());
    await type('Runs of the whole table', '9');
    await pressAndWait('Compare and send…');
    expect(textsOf('.dialog-body p')).toEqual([
      'This changes on the instrument:',
      'Runs of the whole table: 2 → 9',
      ...sequenceKind.effects,
    ]);
  });

  it('of amounts says that all are cleared first', async () => {
    const peaks = load<object>('docs/schemas/examples/calibration.json');
    await open(new World(calibrationKind, peaks));
    await type('Amount, level 1, peak 2', '85');
    await pressAndWait('Compare and send…');
    expect(dialog()).toBe('Send the calibration?');
    expect(textsOf('.dialog-body p')).toEqual([
      'This changes on the instrument:',
      'The instrument clears all amounts first. The amounts of all peaks are sent.',
      'If it refuses an amount, the peaks before it have theirs, and the others stay cleared; the previous amounts can be restored.',
    ]);
  });

  it('waits until the state allows it', async () => {
    await open(sequence());
    await pressAndWait('Compare and send…');
    await setStatus(statusWith({ Auto_state: 'Run Delay 3s' }));
    const reason =
      'The instrument accepts tables only while nothing runs. The automation is: Run Delay 3s.';
    expect(reasonOf('Send')).toBe(reason);
    expect(reasonOf('Compare and send…')).toBe(reason);
    await press('Send');
    expect(world.sent).toEqual([]);
  });

  it('shows what the instrument has stored', async () => {
    await open(sequence());
    await type('Stream, line 2', '3');
    world.send = () => ({ ok: true });
    await pressAndWait('Compare and send…');
    await pressAndWait('Send');
    expect(textsOf('[data-testid=table-message] p').map((text) => text.slice(9))).toEqual([
      'The instrument accepted the table, but what it has now differs:',
    ]);
    expect(rowsOf('[data-testid=table-message] tbody')).toEqual([
      ['~ changed', '2', 'Analysis', '5', '3 → 1', '0', '1'],
    ]);
  });
});

describe('a table that has changed on the instrument', () => {
  const changed = (): void => {
    world.table = {
      ...world.table,
      rows: world.table.rows.map((row, n) => (n === 2 ? { ...row, Stream: 4 } : row)),
    };
  };

  beforeEach(async () => {
    await open(sequence());
    await type('Runs, line 1', '9');
    changed();
    await pressAndWait('Compare and send…');
  });

  it('is shown, and nothing is sent', async () => {
    expect(dialog()).toBe('The instrument’s table has changed');
    expect(textsOf('.dialog-body p')).toEqual([
      'Nothing was sent. Since the table was loaded here, it has changed on the instrument:',
    ]);
    expect(rowsOf('dialog tbody')).toEqual([
      ['~ changed', '3', 'Analysis', '3', '2 → 4', '0', '0.5'],
    ]);
    expect(textsOf('dialog button')).toEqual([
      'Cancel',
      'Load the instrument’s table',
      'Keep my table and compare again',
    ]);
    await press('Cancel');
    expect(textsOf('dialog')).toEqual([]);
    expect(field('Runs, line 1').value).toBe('9');
  });

  it('can be loaded', async () => {
    await pressAndWait('Load the instrument’s table');
    expect(textsOf('dialog')).toEqual([]);
    expect(field('Runs, line 1').value).toBe('2');
    expect(field('Stream, line 3').value).toBe('4');
  });

  it('can be replaced after another review', async () => {
    await pressAndWait('Keep my table and compare again');
    expect(dialog()).toBe('Send the sequence?');
    expect(rowsOf('dialog tbody').map(([, line]) => line)).toEqual(['1', '3']);
  });
});

describe('files', () => {
  const pick = async (file?: File): Promise<HTMLInputElement> => {
    const input = field('File to import');
    Object.defineProperty(input, 'files', { value: file ? [file] : [], configurable: true });
    let value = 'C:\\fakepath\\mine.json';
    Object.defineProperty(input, 'value', {
      get: () => value,
      set: (text: string) => (value = text),
      configurable: true,
    });
    await act(async () => void input.dispatchEvent(new Event('change', { bubbles: true })));
    return input;
  };

  it('are chosen in the browser', async () => {
    await open(sequence());
    const clicked = vi.fn();
    field('File to import').addEventListener('click', clicked);
    await press('Import…');
    expect(clicked).toHaveBeenCalledTimes(1);
    expect(field('File to import').accept).toBe('.json,application/json');
  });

  it('are read into the table, but not sent', async () => {
    await open(sequence());
    const text = '{"Table_repeat": 4, "total": 1, "rows": [{"Stream": 2}]}';
    const input = await pick(new File([text], 'mine.json'));
    // The browser reads the file asynchronously.
    await vi.waitFor(
      () => expect(message()).toBe('mine.json was read. Nothing has been sent yet.'),
      60_000,
    );
    expect(field('Stream, line 1').value).toBe('2');
    expect(rowsOf('tbody')).toHaveLength(1);
    expect(world.sent).toEqual([]);
    // The same file can be chosen again.
    expect(input.value).toBe('');
  });

  it('may not be chosen after all', async () => {
    await open(sequence());
    await pick();
    await settle();
    expect(message()).toBe('');
  });

  it('are saved under the name of the table', async () => {
    await open(sequence());
    await type('Runs of the whole table', '8');
    const blobs: Blob[] = [];
    vi.spyOn(URL, 'createObjectURL').mockImplementation((blob) => {
      blobs.push(blob as Blob);
      return 'blob:1';
    });
    const revoke = vi.spyOn(URL, 'revokeObjectURL').mockImplementation(() => undefined);
    const saved: string[][] = [];
    vi.spyOn(HTMLAnchorElement.prototype, 'click').mockImplementation(function (
      this: HTMLAnchorElement,
    ) {
      expect(revoke).not.toHaveBeenCalled();
      saved.push([this.href, this.download]);
    });
    await press('Export');
    expect(saved).toEqual([['blob:1', 'sequence.json']]);
    expect(revoke).toHaveBeenCalledWith('blob:1');
    expect(blobs.map((blob) => blob.type)).toEqual(['application/json']);
    expect(JSON.parse(await blobs[0]!.text())).toEqual({ ...everyday, Table_repeat: 8 });
    vi.restoreAllMocks();
  });
});

describe('undo keys', () => {
  const isTaken = async (name: string, more: KeyboardEventInit): Promise<boolean> => {
    const event = new KeyboardEvent('keydown', {
      key: name,
      bubbles: true,
      cancelable: true,
      ...more,
    });
    await act(() => void document.body.dispatchEvent(event));
    return event.defaultPrevented;
  };
  const runs = (): string => field('Runs, line 1').value;

  it.each<[string, KeyboardEventInit, string, KeyboardEventInit]>([
    ['z', { ctrlKey: true }, 'y', { ctrlKey: true }],
    ['z', { metaKey: true }, 'Z', { metaKey: true, shiftKey: true }],
    ['Z', { ctrlKey: true }, 'z', { ctrlKey: true, shiftKey: true }],
    // Another script: the position on the keyboard counts.
    ['я', { ctrlKey: true, code: 'KeyZ' }, 'н', { ctrlKey: true, code: 'KeyY' }],
  ])('%s %j undoes, %s %j redoes', async (undo, undoMore, redo, redoMore) => {
    await open(sequence());
    await type('Runs, line 1', '7');
    expect(await isTaken(undo, undoMore)).toBe(true);
    expect(runs()).toBe('2');
    expect(nameOf(document.activeElement!)).toBe('Runs, line 1');
    expect(state()).toBe('As on the instrument when it was read. Undone: Runs, line 1.');
    expect(await isTaken(redo, redoMore)).toBe(true);
    expect(runs()).toBe('7');
    expect(state()).toBe('Changed here, not sent. Redone: Runs, line 1.');
  });

  it.each<[string, KeyboardEventInit]>([
    ['z', {}],
    ['y', {}],
    ['x', { ctrlKey: true }],
    ['z', { ctrlKey: true, altKey: true }],
    ['y', { ctrlKey: true, shiftKey: true }],
    // On this layout, x is in the place of z.
    ['x', { ctrlKey: true, code: 'KeyZ' }],
  ])('%s %j does neither', async (name, more) => {
    await open(sequence());
    await type('Runs, line 1', '7');
    expect(await isTaken(name, more)).toBe(false);
    expect(runs()).toBe('7');
  });

  it('are ignored during a question or an operation, and on other pages', async () => {
    await open(sequence());
    await type('Runs, line 1', '7');
    await press('Discard and reload…');
    expect(await isTaken('z', { ctrlKey: true })).toBe(false);
    await press('Cancel');
    world.until = new Promise(() => undefined);
    await press('Compare and send…');
    expect(await isTaken('z', { ctrlKey: true })).toBe(true);
    expect(runs()).toBe('7');
    await show(null);
    expect(await isTaken('z', { ctrlKey: true })).toBe(false);
  });

  it.each([
    ['historyUndo', true, '2'],
    ['historyRedo', true, '7'],
    ['insertText', false, '7'],
  ])('also work from a menu: %s', async (inputType, isOurs, expected) => {
    await open(sequence());
    await type('Runs, line 1', '7');
    const event = new InputEvent('beforeinput', { inputType, bubbles: true, cancelable: true });
    await act(() => void field('Runs, line 1').dispatchEvent(event));
    expect(event.defaultPrevented).toBe(isOurs);
    expect(runs()).toBe(expected);
  });
});

describe('undo', () => {
  it('announces the same text twice, and says what it would undo', async () => {
    await open(sequence());
    expect(button('Undo').disabled).toBe(true);
    expect(button('Redo').disabled).toBe(true);
    await press('Delete line 1');
    await press('Delete line 1');
    expect(button('Undo').title).toBe('deletion of line 1');
    await press('Undo');
    const first = find('[data-testid=table-state] > span:last-child');
    expect(textOf(first)).toBe('Undone: deletion of line 1.');
    expect(nameOf(document.activeElement!)).toBe('Type, line 1');
    await press('Undo');
    const second = find('[data-testid=table-state] > span:last-child');
    expect(textOf(second)).toBe('Undone: deletion of line 1.');
    expect(second).not.toBe(first);
    expect(button('Undo').disabled).toBe(true);
    expect(button('Redo').disabled).toBe(false);
  });

  it.each([
    ['Move line 1 down', 'move of line 1 down', 'Type, line 1'],
    ['Move line 2 up', 'move of line 2 up', 'Type, line 2'],
    ['Duplicate line 2', 'duplicate of line 2', 'Type, line 3'],
    ['Add line', 'new line', 'Type, line 3'],
    ['Delete line 3', 'deletion of line 3', 'Type, line 3'],
  ])('of %s', async (name, what, focused) => {
    await open(sequence());
    await press(name);
    await press('Undo');
    expect(state()).toBe(`As on the instrument when it was read. Undone: ${what}.`);
    expect(nameOf(document.activeElement!)).toBe(focused);
  });

  it('moves the focus to a header field', async () => {
    await open(sequence());
    await type('Runs of the whole table', '5');
    await press('Undo');
    expect(nameOf(document.activeElement!)).toBe('Runs of the whole table');
    expect(state()).toContain('Undone: Runs of the whole table.');
  });

  it('treats typing in a cell after leaving it as another step', async () => {
    await open(sequence());
    await act(() => field('Flush time, line 1').focus());
    await type('Flush time, line 1', '2,5');
    await act(() => field('Runs of the whole table').focus());
    expect(field('Flush time, line 1').value).toBe('2.5');
    await type('Runs of the whole table', '4');
    await act(() => field('Flush time, line 1').focus());
    expect(editor.undos.past.value).toHaveLength(2);
    await type('Flush time, line 1', '3');
    await press('Undo');
    expect(field('Flush time, line 1').value).toBe('2.5');
  });
});

describe('the faults of a table', () => {
  it('are listed in one place, each leading to its cell', async () => {
    await open(sequence());
    expect(textsOf('.problems')).toEqual([]);
    await type('Flush time, line 2', 'x');
    await type('Runs of the whole table', '');
    expect(textsOf('.problems h2')).toEqual(['Not right (2)']);
    expect(textsOf('.problems button')).toEqual([
      'Runs of the whole table: empty',
      'Flush time, line 2: not a number',
    ]);
    await press('Flush time, line 2: not a number');
    expect(nameOf(document.activeElement!)).toBe('Flush time, line 2');
    await press('Show errors');
    expect(nameOf(document.activeElement!)).toBe('Runs of the whole table');
  });
});

describe('a refusal halfway', () => {
  beforeEach(async () => {
    await open(sequence());
    await type('Stream, line 3', '3');
    const { table } = world;
    world.send = () => {
      world.table = { ...table, rows: table.rows.slice(0, 2) };
      return { ok: false, fault: { status: 409, text: 'The instrument refused.', detail: '' } };
    };
    expect(textsOf('[data-testid=table-message] button')).toEqual([]);
    await pressAndWait('Compare and send…');
    await pressAndWait('Send');
  });

  it('can be reversed by restoring the earlier table', async () => {
    expect(message()).toContain('The instrument does not have the table as it was sent.');
    expect(message()).toContain('A table was not taken as a whole');
    await pressAndWait('Restore the previous table…');
    expect(dialog()).toBe('Restore the sequence?');
    expect(asked()).toEqual([
      'This changes on the instrument:',
      'The changes made here are kept, and not sent.',
      ...sequenceKind.effects,
    ]);
    world.send = (file) => {
      world.table = sequenceKind.fromReport(JSON.parse(file) as object);
      return { ok: true };
    };
    await pressAndWait('Restore');
    expect(message()).toBe(
      'The previous table is on the instrument again: sent, read back, and identical.',
    );
    expect(textsOf('[data-testid=table-message] button')).toEqual([]);
    expect(field('Stream, line 3').value).toBe('3');
  });

  it('is not reversed over changes made elsewhere', async () => {
    world.table = { ...world.table, rows: world.table.rows.slice(0, 1) };
    await pressAndWait('Restore the previous table…');
    expect(textsOf('dialog button')).toEqual([
      'Cancel',
      'Load the instrument’s table',
      'Compare again',
    ]);
    await pressAndWait('Compare again');
    expect(dialog()).toBe('Restore the sequence?');
  });

  it('waits for the operation under way', async () => {
    world.until = new Promise(() => undefined);
    await press('Discard and reload…');
    await press('Discard and reload');
    expect(button('Restore the previous table…').disabled).toBe(true);
  });
});

it('reports unusual values', async () => {
  await open(sequence());
  await type('Runs, line 1', '1200');
  await type('Runs of the whole table', '1000');
  await pressAndWait('Compare and send…');
  expect(asked()).toContain(
    'More than usual, and perhaps refused by the instrument: Runs of the whole table: 1000; Runs, line 1: 1200.',
  );
});
