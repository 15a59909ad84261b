// @vitest-environment happy-dom
import { useState } from 'preact/hooks';
import { afterEach, describe, expect, it } from 'vitest';
import { CellInput } from '../src/components/CellInput';
import { Grid } from '../src/components/Grid';
import { draftOf, problemsOfDraft, type Draft, type Layout, type Values } from '../src/table';
import { calibrationKind, sequenceKind } from '../src/tables';
import { load } from './documents';
import {
  button,
  choose,
  field,
  find,
  key,
  nameOf,
  press,
  rowsOf,
  show,
  textOf,
  textsOf,
  tick,
  type,
} from './dom';
import { clear } from './world';

const sequence = sequenceKind.fromReport(load('tests/system/documents/sequence/everyday.json'));
const layout = sequenceKind.layout(undefined);
const peaks = calibrationKind.layout(undefined);
const calibration = calibrationKind.fromReport(load('docs/schemas/examples/calibration.json'));

let draft: Draft;

function Table({ layout: one, first }: { layout: Layout; first: Draft }) {
  const [shown, setShown] = useState(first);
  draft = shown;
  return (
    <Grid
      caption="Sequence"
      layout={one}
      draft={shown}
      problems={problemsOfDraft(shown, one)}
      onChange={setShown}
    />
  );
}

const open = (first: Draft = draftOf(sequence), one: Layout = layout): Promise<void> => {
  draft = first;
  return show(<Table key={Math.random()} layout={one} first={first} />);
};
const streams = (): (string | undefined)[] => draft.rows.map(({ cells }) => cells.Stream);
const focused = (): string => nameOf(document.activeElement!);
const linesOf = (count: number): Draft =>
  draftOf({
    header: sequence.header,
    rows: Array.from({ length: count }, (_, n): Values => ({
      ...sequence.rows[0]!,
      Stream: n + 1,
    })),
  });

/** Focuses the cell, with the caret or a selection there. */
function at(name: string, start?: number, end = start): HTMLInputElement {
  const cell = field(name);
  cell.focus();
  if (start !== undefined) {
    cell.setSelectionRange(start, end!);
  }
  return cell;
}

afterEach(clear);

describe('the grid', () => {
  it('has a named cell for each value', async () => {
    await open();
    expect(textOf(find('caption'))).toBe('Sequence');
    expect(rowsOf('thead')).toEqual([
      ['Line', 'Type', 'Runs', 'Stream', 'Solution', 'Flush time', 'Row'],
    ]);
    expect(textsOf('tbody th')).toEqual(['1', '2', '3']);
    expect(find('table').className).toBe('grid stack');
    expect(field('Type, line 1').value).toBe('Calibration');
    expect(field('Runs, line 1').value).toBe('2');
    expect(field('Runs, line 1').inputMode).toBe('numeric');
    expect(field('Flush time, line 3').value).toBe('0.5');
    expect(field('Flush time, line 3').inputMode).toBe('decimal');
    expect(find('td:nth-of-type(2)').dataset.label).toBe('Runs');
    expect(textsOf('p, .problem')).toEqual([]);
    expect(textOf(button('Add line'))).toBe('Add line');
    expect(
      [...document.querySelectorAll('tr:nth-of-type(2) button')].map((one) => [
        nameOf(one),
        textOf(one),
      ]),
    ).toEqual([
      ['Move line 2 up', '↑'],
      ['Move line 2 down', '↓'],
      ['Duplicate line 2', 'Duplicate'],
      ['Delete line 2', 'Delete'],
    ]);
  });

  it('of peaks has amounts to edit, but no row tools', async () => {
    const rows = calibration.rows.slice(0, 2);
    await open(
      draftOf({ header: {}, rows: [...rows, { ...rows[0]!, ID: 9, Ret_time: '-' }] }),
      peaks,
    );
    expect(find('table').className).toBe('grid');
    expect(rowsOf('thead')).toEqual([
      ['Channel', 'Peak', 'Name', 'Amount, level 1', 'Retention time, s', 'Linear coefficient'],
    ]);
    expect(rowsOf('tbody')).toEqual([
      ['1', '1', 'Nitrogen', '', '25.2', '0.0000214'],
      ['1', '2', 'Methane', '', '28.2', '0.0000268'],
      ['1', '9', 'Nitrogen', '', 'not available', '0.0000214'],
    ]);
    expect(textsOf('td.text')).toEqual(['Nitrogen', 'Methane', 'Nitrogen']);
    expect(textsOf('td.number')).toHaveLength(12);
    expect(textsOf('button')).toEqual([]);
    expect(field('Amount, level 1, peak 2').value).toBe('84.95');
  });

  it('shows no insignificant digits', async () => {
    const row = { ...calibration.rows[0]!, Ret_time: 40.800000000000007, Linear: 123456.789 };
    await open(draftOf({ header: {}, rows: [row] }), peaks);
    expect(rowsOf('tbody')[0]!.slice(4)).toEqual(['40.8', '123457']);
  });

  it('says when it is empty', async () => {
    await open(draftOf({ header: {}, rows: [] }), peaks);
    expect(textsOf('p')).toEqual(['The instrument has no peaks.']);
  });

  it('keeps a type that is not one of the choices', async () => {
    await open(draftOf({ ...sequence, rows: [{ ...sequence.rows[0]!, Type: 'None' }] }));
    expect(textsOf('option')).toEqual(['None', 'Analysis', 'Calibration', 'Blank', 'Verification']);
    await open(draftOf({ ...sequence, rows: [sequence.rows[0]!] }));
    expect(textsOf('option')).toEqual(['Analysis', 'Calibration', 'Blank', 'Verification']);
  });

  it('accepts what is typed and chosen', async () => {
    await open();
    await type('Stream, line 2', '4');
    await choose('Type, line 3', 'Blank');
    expect(draft.rows.map(({ cells }) => [cells.Type, cells.Stream])).toEqual([
      ['Calibration', '4'],
      ['Analysis', '4'],
      ['Blank', '2'],
    ]);
  });

  it('shows the fault of a cell at that cell', async () => {
    await open();
    expect(field('Runs, line 2').getAttribute('aria-invalid')).toBe('false');
    expect(field('Runs, line 2').getAttribute('aria-describedby')).toBeNull();
    await type('Runs, line 2', 'many');
    expect(textsOf('.problem')).toEqual(['not a whole number']);
    expect(field('Runs, line 2').getAttribute('aria-invalid')).toBe('true');
    const id = field('Runs, line 2').getAttribute('aria-describedby')!;
    expect(textOf(document.getElementById(id))).toBe('not a whole number');
    expect(field('Runs, line 1').getAttribute('aria-invalid')).toBe('false');
    expect(field('Stream, line 2').getAttribute('aria-invalid')).toBe('false');
  });

  it('selects the whole text of the focused cell', async () => {
    await open();
    const cell = at('Flush time, line 1');
    expect([cell.selectionStart, cell.selectionEnd]).toEqual([0, 3]);
  });

  it('has a checkbox for flags', async () => {
    const texts: string[] = [];
    const column = layout.header[1]!;
    const box = (text: string) => (
      <CellInput column={column} text={text} label="Again" onInput={(one) => texts.push(one)} />
    );
    await show(box('false'));
    expect(field('Again').type).toBe('checkbox');
    expect(field('Again').checked).toBe(false);
    await tick('Again', true);
    await show(box('true'));
    expect(field('Again').checked).toBe(true);
    await tick('Again', false);
    expect(texts).toEqual(['true', 'false']);
  });
});

describe('the tools of a row', () => {
  it('move it, and keep the focus', async () => {
    await open(linesOf(4));
    await press('Move line 3 up');
    expect(streams()).toEqual(['1', '3', '2', '4']);
    expect(focused()).toBe('Move line 2 up');
    await press('Move line 2 up');
    expect(streams()).toEqual(['3', '1', '2', '4']);
    // It cannot move any further up.
    expect(focused()).toBe('Move line 1 down');
    await press('Move line 1 down');
    expect(streams()).toEqual(['1', '3', '2', '4']);
    expect(focused()).toBe('Move line 2 down');
    await press('Move line 2 down');
    await press('Move line 3 down');
    expect(streams()).toEqual(['1', '2', '4', '3']);
    expect(focused()).toBe('Move line 4 up');
  });

  it('are disabled at the ends', async () => {
    await open();
    const off = (): string[] =>
      [...document.querySelectorAll<HTMLButtonElement>('button:disabled')].map(nameOf);
    expect(off()).toEqual(['Move line 1 up', 'Move line 3 down']);
    await open(linesOf(1));
    expect(off()).toEqual(['Move line 1 up', 'Move line 1 down', 'Delete line 1']);
    await open(linesOf(2));
    expect(off()).toEqual(['Move line 1 up', 'Move line 2 down']);
    await open(linesOf(20));
    expect(off().filter((name) => name.startsWith('Duplicate'))).toHaveLength(20);
    expect(off()).toContain('Add line');
    await open(linesOf(19));
    expect(off()).toEqual(['Move line 1 up', 'Move line 19 down']);
  });

  it('duplicate it, and focus the copy', async () => {
    await open();
    await press('Duplicate line 2');
    expect(streams()).toEqual(['4', '1', '1', '2']);
    expect(focused()).toBe('Type, line 3');
  });

  it('add a line, and focus it', async () => {
    await open();
    await press('Add line');
    expect(streams()).toEqual(['4', '1', '2', '1']);
    expect(focused()).toBe('Type, line 4');
  });

  it('delete it, and focus the next one, or the previous one', async () => {
    await open(linesOf(4));
    await press('Delete line 2');
    expect(streams()).toEqual(['1', '3', '4']);
    expect(focused()).toBe('Delete line 2');
    await press('Delete line 3');
    expect(streams()).toEqual(['1', '3']);
    expect(focused()).toBe('Delete line 2');
    // The last one cannot be deleted.
    await press('Delete line 1');
    expect(streams()).toEqual(['3']);
    expect(focused()).toBe('Type, line 1');
  });
});

describe('keys', () => {
  it('move up and down', async () => {
    await open();
    at('Runs, line 1');
    expect(await key('Enter')).toBe(true);
    expect(focused()).toBe('Runs, line 2');
    expect(await key('ArrowDown')).toBe(true);
    expect(focused()).toBe('Runs, line 3');
    expect(await key('ArrowDown')).toBe(false);
    expect(await key('Enter')).toBe(false);
    expect(focused()).toBe('Runs, line 3');
    expect(await key('ArrowUp')).toBe(true);
    expect(focused()).toBe('Runs, line 2');
    expect(await key('Enter', { shiftKey: true })).toBe(true);
    expect(focused()).toBe('Runs, line 1');
    expect(await key('ArrowUp')).toBe(false);
  });

  it('move left and right, past cells that cannot be edited', async () => {
    await open();
    at('Runs, line 2', 0, 1);
    expect(await key('ArrowRight')).toBe(true);
    expect(focused()).toBe('Stream, line 2');
    expect(await key('ArrowLeft')).toBe(true);
    expect(await key('ArrowLeft')).toBe(true);
    expect(focused()).toBe('Type, line 2');
    at('Flush time, line 2');
    expect(await key('ArrowRight')).toBe(false);
    expect(focused()).toBe('Flush time, line 2');
  });

  it.each([
    ['ArrowLeft', 0, 0, 'Solution'],
    ['ArrowLeft', 1, 1, 'Flush time'],
    ['ArrowLeft', 3, 3, 'Flush time'],
    ['ArrowLeft', 0, 1, 'Flush time'],
    ['ArrowLeft', 0, 3, 'Solution'],
    ['ArrowLeft', 1, 3, 'Flush time'],
  ])('%s with the caret from %d to %d of 3', async (name, start, end, column) => {
    await open();
    at('Flush time, line 1', start, end);
    const isTaken = await key(name);
    expect(focused()).toBe(`${column}, line 1`);
    expect(isTaken).toBe(column === 'Solution');
  });

  it.each([
    [0, 0, false],
    [1, 1, false],
    [2, 2, true],
    [0, 2, true],
    [0, 1, false],
    [1, 2, false],
  ])(
    'ArrowRight with the caret from %d to %d of 2 leaves the cell: %j',
    async (start, end, leaves) => {
      await open(draftOf({ ...sequence, rows: [{ ...sequence.rows[0]!, Repeat: 12 }] }));
      at('Runs, line 1', start, end);
      expect(await key('ArrowRight')).toBe(leaves);
      expect(focused()).toBe(leaves ? 'Stream, line 1' : 'Runs, line 1');
    },
  );

  it('choose up and down in a list, and leave it to the left and right', async () => {
    await open();
    at('Type, line 2');
    expect(await key('ArrowDown')).toBe(false);
    expect(focused()).toBe('Type, line 2');
    // A list would handle this as a choice.
    expect(await key('ArrowLeft')).toBe(true);
    expect(focused()).toBe('Type, line 2');
    expect(await key('ArrowRight')).toBe(true);
    expect(focused()).toBe('Runs, line 2');
    at('Type, line 2');
    expect(await key('Enter')).toBe(true);
    expect(focused()).toBe('Type, line 3');
  });

  it('move the line with Alt', async () => {
    await open();
    at('Runs, line 1');
    expect(await key('ArrowDown', { altKey: true })).toBe(true);
    expect(streams()).toEqual(['1', '4', '2']);
    expect(focused()).toBe('Runs, line 2');
    expect(await key('ArrowUp', { altKey: true })).toBe(true);
    expect(streams()).toEqual(['4', '1', '2']);
    expect(await key('ArrowUp', { altKey: true })).toBe(true);
    expect(streams()).toEqual(['4', '1', '2']);
    expect(await key('ArrowRight', { altKey: true })).toBe(false);
    expect(await key('Enter', { altKey: true })).toBe(false);
    expect(focused()).toBe('Runs, line 1');
    button('Delete line 1').focus();
    expect(await key('ArrowDown', { altKey: true })).toBe(true);
    expect(streams()).toEqual(['1', '4', '2']);
    expect(focused()).toBe('Delete line 2');
  });

  it('do not move peaks', async () => {
    await open(draftOf(calibration), peaks);
    at('Amount, level 1, peak 1');
    expect(await key('ArrowDown', { altKey: true })).toBe(false);
    expect(draft.rows[0]!.cells.ID).toBe('1');
    expect(await key('ArrowDown')).toBe(true);
    expect(focused()).toBe('Amount, level 1, peak 2');
    expect(await key('ArrowRight')).toBe(false);
    expect(await key('ArrowLeft')).toBe(false);
  });

  it.each([{ ctrlKey: true }, { metaKey: true }])(
    'are left to the browser with %j',
    async (modifiers) => {
      await open();
      at('Runs, line 1');
      expect(await key('ArrowDown', modifiers)).toBe(false);
      expect(await key('Enter', modifiers)).toBe(false);
      expect(focused()).toBe('Runs, line 1');
    },
  );

  it('do what they do elsewhere on buttons and in texts', async () => {
    await open();
    button('Delete line 1').focus();
    expect(await key('Enter')).toBe(false);
    expect(await key('ArrowDown')).toBe(false);
    expect(await key('ArrowRight')).toBe(false);
    button('Duplicate line 1').focus();
    expect(await key('ArrowDown', { altKey: true })).toBe(false);
    expect(streams()).toEqual(['4', '1', '2']);
    at('Runs, line 1');
    expect(await key('x')).toBe(false);
    expect(focused()).toBe('Runs, line 1');
  });
});
