// @vitest-environment happy-dom
import { signal } from '@preact/signals';
import { act } from 'preact/test-utils';
import { afterEach, beforeEach, describe, expect, it } from 'vitest';
import { SequencePicture } from '../src/components/SequencePicture';
import type { Configuration, Sequence, Status } from '../src/documents';
import { Editor } from '../src/editor';
import { sequence, sequenceFault } from '../src/sequence';
import { configuration } from '../src/store';
import { draftOf, setCell } from '../src/table';
import { sequenceKind } from '../src/tables';
import { load, statusWith } from './documents';
import { noBackups } from './backups';
import { factsOf, find, show, textOf, textsOf } from './dom';
import { arrange, clear, exampleConfiguration, setAge, setStatus } from './world';

const everyday = load<Sequence>('tests/system/documents/sequence/everyday.json');

let editor: Editor;

function Page({ focusedRow }: { focusedRow?: number | undefined }) {
  return (
    <>
      <SequencePicture editor={editor} focusedRow={focusedRow} />
      {editor.draft.value!.rows.map(({ id }) => (
        <input key={id} data-row={id} data-key="Type" />
      ))}
    </>
  );
}

async function open(document: Sequence = everyday, focusedRow?: number): Promise<void> {
  const instrument = {
    read: async () => ({ ok: true as const, table: sequenceKind.fromReport(document) }),
    send: async () => ({ ok: true as const }),
    describe: () => '',
    backups: noBackups,
  };
  editor = new Editor(sequenceKind, instrument, signal<Configuration | undefined>(undefined));
  editor.draft.value = draftOf(sequenceKind.fromReport(document));
  await show(null);
  await show(<Page focusedRow={focusedRow} />);
}

const type = (row: number | null, key: string, text: string): Promise<void> =>
  act(() => {
    editor.draft.value = setCell(editor.draft.value!, row, key, text);
  });
const running = (more: Partial<Status> = {}) =>
  setStatus(
    statusWith({
      Auto_state: 'Running Sequence',
      GC_state: 'Running 20s',
      Run_time: 20,
      Seq_line: 2,
      Line_replicate: 3,
      Seq_replicate: 1,
      ...more,
    }),
  );
const onInstrument = (document: Sequence | undefined): Promise<void> =>
  act(() => {
    sequence.value = document;
  });
const fact = (name: string): string => Object.fromEntries(factsOf('.lengths'))[name]!;
const notes = (): string => textOf(find('.notes'));
const captions = (): string[] => textsOf('.time-bar p');
const bars = (): Element[] => [...document.querySelectorAll('.time-bar')];
const labels = (bar = 0): string[] =>
  [...bars()[bar]!.querySelectorAll('[role=listitem] > *')].map((one) =>
    one.getAttribute('aria-label')!,
  );
const lineOf = (n: number): SVGElement =>
  find<SVGElement>(`[role=listitem]:nth-of-type(${n}) > .stretch`);
const positions = (): number[] =>
  [...document.querySelectorAll('[data-testid=position] line')].map((one) =>
    Number(one.getAttribute('x1')),
  );

beforeEach(async () => void (await arrange()));
afterEach(async () => {
  await clear();
  sequence.value = undefined;
  sequenceFault.value = undefined;
});

describe('the sequence over time', () => {
  it('shows each line with its runs and its duration', async () => {
    await open();
    expect(captions()).toEqual(['One pass through the table']);
    expect(labels()).toHaveLength(3);
    expect(labels()[0]).toBe(
      'Line 1: Calibration, stream 4, 2 runs, 6 min 00 s plus flushing, begins after 0 s',
    );
    expect(textsOf('.line-name')).toEqual([
      '1 Calibration',
      '2 Analysis, stream 1',
      '3 Analysis, stream 2',
    ]);
    expect([1, 2, 3].map((n) => lineOf(n).querySelectorAll('.run').length)).toEqual([2, 5, 3]);
    expect(factsOf('.lengths')).toEqual([
      ['One run', '3 min 00 s'],
      ['One pass', '10 runs, 30 min 00 s plus flushing'],
      ['Whole table', '2 passes, 20 runs, 1 h 00 min plus flushing'],
      ['Automation now', 'not under way'],
      ['Automation ends', '–'],
    ]);
    expect(notes()).toMatch(/^The unit of the flush times is not known: .* Thin: flushing/);
  });

  it('includes the flushing if its unit is named', async () => {
    await open();
    await act(() => {
      configuration.value = { ...exampleConfiguration, units: { flush_time: 'min' } };
    });
    expect(fact('Whole table')).toBe('2 passes, 20 runs, 1 h 06 min');
    expect(document.querySelectorAll('.flush')).toHaveLength(3);
    expect(document.querySelectorAll('.flush.unknown')).toHaveLength(0);
    expect(notes()).toMatch(/^Thin: flushing/);
  });

  it('follows typing', async () => {
    await open();
    await type(1, 'Repeat', '6');
    expect(fact('One pass')).toBe('11 runs, 33 min 00 s plus flushing');
    await type(1, 'Repeat', 'x');
    expect(fact('One pass')).toBe('not known yet');
    expect(notes()).toMatch(/^The number of runs is not valid in line 2: drawn as one run\./);
    await type(1, 'Repeat', '0');
    await type(2, 'Repeat', '0');
    expect(labels()).toHaveLength(1);
    expect(notes()).toMatch(/^Skipped, with 0 runs: lines 2, 3\./);
    await type(null, 'Continuous', 'true');
    expect(fact('Whole table')).toBe('no end: after the last line it starts again');
  });

  it('is shown when there is nothing to run, or nothing is known', async () => {
    await open({ ...everyday, rows: [{ ...everyday.rows![0]!, Repeat: 0 }] });
    expect(labels()).toEqual([]);
    expect(find('svg').getAttribute('role')).toBe('img');
    expect(fact('One pass')).toBe('0 runs, 0 s');
    await open();
    expect(find('svg').getAttribute('role')).toBe('list');
    await setStatus(undefined);
    expect(fact('One run')).toBe('not known');
    expect(fact('Automation now')).toBe('not known: there is no recent answer');
    expect(notes()).toMatch(/^How long a run takes is not known: the bar counts runs, not time\./);
    expect(textsOf('.axes text')).toEqual([]);
    await open({ ...everyday, total: 0, rows: [] });
    expect(textsOf('section')).toEqual([]);
  });

  it('draws runs as one when they are too many to be told apart', async () => {
    await open();
    await type(1, 'Repeat', '999');
    expect(lineOf(2).querySelectorAll('.run')).toHaveLength(1);
    expect(labels()[1]).toContain('999 runs');
    expect(textsOf('.line-name')).toEqual(['', '2 Analysis, stream 1', '']);
  });

  it('marks the focused line, and leads to its cells', async () => {
    await open(everyday, 1);
    expect([...document.querySelectorAll('.focused')]).toEqual([lineOf(2)]);
    expect(lineOf(2).getAttribute('aria-current')).toBe('true');
    expect(document.querySelectorAll('.frame')).toHaveLength(1);
    await act(() => {
      lineOf(3).dispatchEvent(new MouseEvent('click', { bubbles: true }));
    });
    expect(document.activeElement).toBe(find('input[data-row="2"]'));
    await act(() => lineOf(1).focus());
    await act(() => {
      const right = new KeyboardEvent('keydown', { key: 'ArrowRight', bubbles: true });
      document.activeElement!.dispatchEvent(right);
    });
    expect(document.activeElement).toBe(lineOf(2));
    await show(<Page />);
    expect(textsOf('.focused, .frame')).toEqual([]);
  });
});

describe('during an automation', () => {
  it('the bar shows its position', async () => {
    await open();
    await running();
    expect(fact('Automation now')).toBe('line 2, run 3, pass 1');
    expect(positions()).toEqual([]);
    await onInstrument(everyday);
    expect(fact('Automation now')).toBe('line 2, run 3 of 5, pass 1 of 2');
    expect(fact('Automation ends')).toMatch(/^not before \d/);
    const [third] = positions();
    await running({ Line_replicate: 4 });
    expect(positions()[0]! - third!).toBeCloseTo((180 / 1962) * (640 - 34));
    expect(captions()).toEqual(['One pass through the table']);
  });

  it('the bar does not show a position that is unknown', async () => {
    await open();
    await running();
    await onInstrument(everyday);
    await setAge(100);
    expect(positions()).toEqual([]);
    expect(fact('Automation now')).toBe('not known: there is no recent answer');
    await setAge(0);
    expect(positions()).toHaveLength(1);
    await running({ Seq_line: 0 });
    expect(positions()).toEqual([]);
    await running({ Seq_line: 7 });
    expect(positions()).toEqual([]);
    await onInstrument(undefined);
    await act(() => {
      sequenceFault.value = { status: 503, text: '', detail: '' };
    });
    expect(textsOf('section > p')[0]).toBe(
      'The instrument’s table could not be read: the bar does not show where it stands.',
    );
  });

  it('the edited table is shown apart from the one that is running', async () => {
    await open();
    await running();
    await onInstrument(everyday);
    await type(1, 'Repeat', '7');
    expect(captions()).toEqual([
      'One pass as edited here; the instrument runs another table',
      'One pass as the instrument runs it',
    ]);
    expect(labels(0)[1]).toContain('7 runs');
    expect(labels(1)[1]).toContain('5 runs');
    expect(bars().map((bar) => bar.querySelectorAll('[data-testid=position]').length)).toEqual([
      0, 1,
    ]);
    expect(bars()[1]!.querySelectorAll('[role=button]')).toHaveLength(0);
    expect(bars()[1]!.querySelectorAll('[role=img]')).toHaveLength(3);
    await type(1, 'Repeat', '5');
    expect(captions()).toEqual(['One pass through the table']);
  });

  it('a note says that the instrument has more lines than it reports', async () => {
    await open();
    await running();
    await onInstrument({ ...everyday, total: 25 });
    expect(textsOf('section > p')[0]).toBe(
      'The instrument’s table has 25 lines, of which it tells the first 3.',
    );
  });
});
