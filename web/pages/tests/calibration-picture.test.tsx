// @vitest-environment happy-dom
import { signal } from '@preact/signals';
import { act } from 'preact/test-utils';
import { afterEach, beforeEach, describe, expect, it } from 'vitest';
import { CalibrationPicture } from '../src/components/CalibrationPicture';
import type { Configuration, Units } from '../src/documents';
import { Editor } from '../src/editor';
import { draftOf, setCell, type Values } from '../src/table';
import { calibrationKind } from '../src/tables';
import { configuration } from '../src/store';
import { noBackups } from './backups';
import { load } from './documents';
import { factsOf, find, show, textOf, textsOf } from './dom';
import { arrange, clear, exampleConfiguration } from './world';

const table = calibrationKind.fromReport(load('docs/schemas/examples/calibration.json'));

let editor: Editor;

function editorOf(rows: readonly Values[]): Editor {
  const instrument = {
    read: async () => ({ ok: true as const, table }),
    send: async () => ({ ok: true as const }),
    describe: () => '',
    backups: noBackups,
  };
  const made = new Editor(
    calibrationKind,
    instrument,
    signal<Configuration | undefined>(undefined),
  );
  made.draft.value = draftOf({ header: {}, rows });
  return made;
}

/** The table as the page shows it, with a cell in each row that can have the focus. */
function Page({ focusedRow }: { focusedRow?: number | undefined }) {
  return (
    <>
      <CalibrationPicture editor={editor} focusedRow={focusedRow} />
      {editor.draft.value!.rows.map(({ id }) => (
        <input key={id} data-row={id} data-key="Level_amt" />
      ))}
    </>
  );
}

async function open(rows: readonly Values[] = table.rows, focusedRow?: number): Promise<void> {
  editor = editorOf(rows);
  await show(<Page focusedRow={focusedRow} />);
}

const type = (row: number, text: string): Promise<void> =>
  act(() => {
    editor.draft.value = setCell(editor.draft.value!, row, 'Level_amt', text);
  });
const named = (units: Units): Promise<void> =>
  act(() => {
    configuration.value = { ...exampleConfiguration, units };
  });
const sums = (): Record<string, string> => Object.fromEntries(factsOf('.sums')) as never;
const readout = (): string => textOf(find('.readout'));
const labels = (channel: number): string[] =>
  [...document.querySelectorAll(`[aria-label="Peaks of channel ${channel}"] [role=button]`)].map(
    (one) => one.getAttribute('aria-label')!,
  );
const stick = (row: number): SVGElement => find<SVGElement>(`[data-peak="${row}"]`);
const number = (row: number, selector: string, name: string): number =>
  Number(stick(row).querySelector(selector)!.getAttribute(name));
const cell = (row: number): HTMLElement => find(`input[data-row="${row}"]`);
const change = (row: number, changes: Values): Values[] =>
  table.rows.map((one, n) => (n === row ? { ...one, ...changes } : one));

beforeEach(async () => void (await arrange()));
afterEach(clear);

describe('sums of the amounts', () => {
  it('follow typing', async () => {
    await open();
    expect(sums()).toEqual({
      'Sum of channel 1': '96.45',
      'Sum of channel 2': '3.60',
      'Sum of all': '100.05',
      'Compared with 100': '0.05 above',
    });
    await type(4, '2.45');
    expect(sums()).toEqual({
      'Sum of channel 1': '96.45',
      'Sum of channel 2': '3.55',
      'Sum of all': '100.00',
      'Compared with 100': 'exactly that',
    });
    await type(4, '2.');
    expect(sums()['Compared with 100']).toBe('0.45 below');
  });

  it('are unknown while a cell holds no number', async () => {
    await open();
    await type(4, '2.x');
    expect(sums()).toEqual({
      'Sum of channel 1': '96.45',
      'Sum of channel 2': 'not known yet',
      'Sum of all': 'not known yet',
      'Compared with 100': 'not known yet',
    });
  });

  it('have the unit that the owner has named, and are compared with its whole', async () => {
    await open();
    await named({ amount: '%' });
    expect(sums()['Sum of all']).toBe('100.05 %');
    expect(sums()['Compared with 100 %']).toBe('0.05 above');
    await named({ amount: 'mg/m³' });
    expect(Object.keys(sums())).toEqual(['Sum of channel 1', 'Sum of channel 2', 'Sum of all']);
  });
});

describe('a stick chromatogram', () => {
  it('lists the peaks of each channel in order of time', async () => {
    await open(change(0, { Ret_time: 30 }));
    expect(labels(1)).toEqual([
      'Methane: retention time 28.2, amount 84.95',
      'Nitrogen: retention time 30, amount 4',
      'Carbon dioxide: retention time 40.8, amount 1.5',
      'Ethane: retention time 58.8, amount 6',
    ]);
    expect(labels(2)).toHaveLength(7);
    expect(textsOf('h3')).toEqual(['Channel 1', 'Channel 2']);
    await named({ amount: '%', retention_time: 's' });
    expect(labels(1)[0]).toBe('Methane: retention time 28.2\u00a0s, amount 84.95\u00a0%');
    expect(textsOf('.axes > text')).toContain('Retention time, s');
  });

  it('has the same axes for all channels', async () => {
    await open(change(4, { Ret_time: 28.2, Level_amt: 84.95 }));
    for (const [selector, name] of [
      ['line', 'x1'],
      ['line', 'x2'],
      ['line', 'y2'],
      ['circle', 'cx'],
    ] as const) {
      expect(number(4, selector, name), name).toBe(number(1, selector, name));
    }
    expect(number(10, 'line', 'x1')).toBeGreaterThan(number(9, 'line', 'x1'));
  });

  it('shows small amounts, and zero on the line', async () => {
    await open(change(1, { Level_amt: 0 }));
    const floor = number(0, 'line', 'y1');
    expect(number(1, 'line', 'y2')).toBe(floor);
    expect(stick(1).querySelector('circle.none')).not.toBeNull();
    expect(floor - number(7, 'line', 'y2')).toBeGreaterThan(20);
    expect(stick(7).querySelector('circle.none')).toBeNull();
    expect(number(0, 'line', 'y2')).toBeLessThan(number(7, 'line', 'y2'));
  });

  it('shows a question mark for an amount that is not known yet', async () => {
    await open();
    await type(1, '');
    expect(textOf(stick(1).querySelector('.mark'))).toBe('?');
    expect(stick(1).querySelector('line, circle')).toBeNull();
    expect(labels(1)[1]).toBe('Methane: retention time 28.2, amount not known yet');
  });

  it('does not draw peaks without a retention time, and says so', async () => {
    await open(change(1, { Ret_time: '-' }));
    expect(labels(1)).toHaveLength(3);
    expect(textsOf('section section p')).toEqual(['Without a retention time, not drawn: Methane.']);
    expect(sums()['Sum of all']).toBe('100.05');
    const none = table.rows.map((row) => ({ ...row, Ret_time: '-' }));
    await open(none, 1);
    expect(textsOf('svg')).toEqual([]);
    expect(readout()).toBe('Methane: no retention time, amount 84.95');
  });

  it('names peaks with the same time, and gives access to both', async () => {
    await open(change(0, { Ret_time: 28.2 }));
    expect(textsOf('section section p')).toEqual([
      'At the same retention time: Nitrogen, Methane.',
    ]);
    const [shorter, taller] = [0, 1].map((row) => {
      const y = number(row, '.reach', 'y');
      return { y, end: y + number(row, '.reach', 'height') };
    });
    expect(taller!.end).toBe(shorter!.y);
    expect(taller!.y).toBeLessThan(shorter!.y);
    const placeOf = (row: number) => stick(row).querySelector('.name')!.getAttribute('transform');
    expect(placeOf(0)).not.toBe(placeOf(1));
  });

  it('names as many of a hundred peaks as there is room for, and counts the others', async () => {
    const rows = Array.from({ length: 100 }, (_, n) => ({
      ...table.rows[0]!,
      ID: n + 1,
      PkName: `Peak number ${n + 1}`,
      Ret_time: 100 + n,
      Level_amt: n === 40 ? 9 : 1,
    }));
    await open(rows, 60);
    const shown = textsOf('.name');
    expect(labels(1)).toHaveLength(100);
    expect(shown.length).toBeGreaterThan(10);
    expect(shown).toContain('Peak number 41');
    expect(shown).toContain('Peak number 61');
    expect(textsOf('.axes > text').at(-1)).toBe(`${100 - shown.length} names have no room`);
    expect(document.querySelector('.crowded')).not.toBeNull();
  });

  it('shows the names of all peaks if there is room', async () => {
    await open();
    expect(textsOf('.name').sort()).toEqual(table.rows.map(({ PkName }) => PkName).sort());
    expect(textsOf('.axes > text').filter((text) => text.includes('room'))).toEqual([]);
    expect(document.querySelector('.crowded')).toBeNull();
  });

  it('is not shown without peaks', async () => {
    await open([]);
    expect(textsOf('section')).toEqual([]);
  });
});

describe('the focus', () => {
  it('is shown in the picture when it is in the table', async () => {
    await open();
    expect(readout()).toBe('No peak is selected.');
    await show(<Page focusedRow={2} />);
    expect(readout()).toBe('Carbon dioxide: retention time 40.8, amount 1.5');
    expect([...document.querySelectorAll('.focused')]).toEqual([stick(2)]);
    expect(stick(2).getAttribute('aria-current')).toBe('true');
    expect(stick(2).querySelector('.pointer')).not.toBeNull();
    await show(<Page />);
    expect(textsOf('.focused, .pointer, [aria-current]')).toEqual([]);
  });

  it('moves to the cell of a stick', async () => {
    await open();
    await act(() => {
      stick(7).dispatchEvent(new MouseEvent('click', { bubbles: true }));
    });
    expect(document.activeElement).toBe(cell(7));
  });

  it('moves between sticks with the arrow keys, and to the cell with Enter', async () => {
    await open(change(0, { Ret_time: 30 }));
    const press = (key: string) =>
      act(() => {
        const event = new KeyboardEvent('keydown', { key, bubbles: true, cancelable: true });
        document.activeElement!.dispatchEvent(event);
        return void expect(event.defaultPrevented).toBe(key !== 'ArrowUp' && isMoving);
      });
    let isMoving = true;
    const stops = () =>
      [...document.querySelectorAll('[aria-label="Peaks of channel 1"] [tabindex="0"]')].map(
        (one) => Number((one as SVGElement).dataset.peak),
      );
    expect(stops()).toEqual([1]);
    await act(() => stick(1).focus());
    expect(readout()).toBe('Methane: retention time 28.2, amount 84.95');
    await press('ArrowRight');
    expect(document.activeElement).toBe(stick(0));
    expect(stops()).toEqual([0]);
    expect(readout()).toBe('Nitrogen: retention time 30, amount 4');
    await press('ArrowRight');
    await press('ArrowRight');
    isMoving = false;
    await press('ArrowRight');
    await press('ArrowUp');
    expect(document.activeElement).toBe(stick(3));
    isMoving = true;
    await press('ArrowLeft');
    expect(document.activeElement).toBe(stick(2));
    await press('Enter');
    expect(document.activeElement).toBe(cell(2));
    expect(readout()).toBe('No peak is selected.');
    await act(() => stick(2).focus());
    await press(' ');
    expect(document.activeElement).toBe(cell(2));
  });
});
