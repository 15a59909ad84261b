// @vitest-environment happy-dom
import { afterEach, beforeEach, describe, expect, it, vi } from 'vitest';
import { ActionButton } from '../src/components/ActionButton';
import { Confirm, Dialog } from '../src/components/Dialog';
import { DiffTable } from '../src/components/DiffTable';
import { Now } from '../src/components/Now';
import { Progress } from '../src/components/Progress';
import { SequenceLines } from '../src/components/SequenceLines';
import { diffTables, type RowChange } from '../src/diff';
import type { Sequence } from '../src/documents';
import { configuration } from '../src/store';
import type { Table } from '../src/table';
import { calibrationKind, sequenceKind } from '../src/tables';
import { load, statusWith } from './documents';
import { button, factsOf, find, press, reasonOf, rowsOf, show, textOf, textsOf } from './dom';
import { arrange, clear, exampleConfiguration, setAge, setStatus } from './world';

beforeEach(async () => void (await arrange()));
afterEach(clear);

describe('an action button', () => {
  it('acts when it is pressed', async () => {
    const act = vi.fn();
    await show(<ActionButton action="start-run" label="Start" kind="primary" onClick={act} />);
    expect(reasonOf('Start')).toBe('');
    expect(button('Start').getAttribute('aria-describedby')).toBeNull();
    expect(button('Start').className).toBe('primary');
    await press('Start');
    expect(act).toHaveBeenCalledTimes(1);
  });

  it('is disabled when the state forbids the action, and says why', async () => {
    await setStatus(statusWith({ GC_state: 'Not Ready' }));
    const act = vi.fn();
    await show(<ActionButton action="start-run" label="Start" reason="Not now." onClick={act} />);
    expect(reasonOf('Start')).toBe('A run starts only from Ready. The state is: Not Ready.');
    expect(button('Start').disabled).toBe(false);
    expect(button('Start').title).toBe('');
    expect(find('span').className).toBe('reason');
    await press('Start');
    expect(act).not.toHaveBeenCalled();
  });

  it('is disabled when the page has a further reason', async () => {
    const act = vi.fn();
    await show(<ActionButton action="start-run" label="Start" reason="Not now." onClick={act} />);
    expect(reasonOf('Start')).toBe('Not now.');
    await press('Start');
    expect(act).not.toHaveBeenCalled();
  });

  it('shows the reason as a tooltip where there is little room', async () => {
    await show(
      <ActionButton
        action="start-run"
        label="Start"
        reason="Not now."
        isCompact
        onClick={vi.fn()}
      />,
    );
    expect(button('Start').title).toBe('Not now.');
    expect(find('span').className).toBe('hidden');
    expect(reasonOf('Start')).toBe('Not now.');
  });

  it('is disabled as soon as the values are stale', async () => {
    await show(<ActionButton action="stream" label="Reset" onClick={vi.fn()} />);
    expect(reasonOf('Reset')).toBe('');
    await setAge(60);
    expect(reasonOf('Reset')).toMatch(/^The state of the instrument is not known/);
  });
});

describe('a dialog', () => {
  it('takes the focus to its first button, and is modal', async () => {
    const buttons = [<button>First</button>, <button>Second</button>];
    await show(
      <Dialog title="What now?" onClose={vi.fn()} actions={buttons}>
        <button>Inside</button>
      </Dialog>,
    );
    const dialog = find<HTMLDialogElement>('dialog');
    expect(dialog.open).toBe(true);
    expect(textOf(document.activeElement)).toBe('First');
    expect(textOf(document.getElementById(dialog.getAttribute('aria-labelledby')!))).toBe(
      'What now?',
    );
  });

  it('is closed when it is removed', async () => {
    const close = vi.spyOn(HTMLDialogElement.prototype, 'close');
    await show(
      <Dialog title="What now?" onClose={vi.fn()} actions={<button>Yes</button>}>
        Text
      </Dialog>,
    );
    expect(close).not.toHaveBeenCalled();
    await show(null);
    expect(close).toHaveBeenCalledTimes(1);
    close.mockRestore();
  });

  it('is not closed by Escape itself, but by its owner', async () => {
    const onClose = vi.fn();
    await show(
      <Dialog title="What now?" onClose={onClose} actions={<button>Yes</button>}>
        Text
      </Dialog>,
    );
    const event = new Event('cancel', { cancelable: true });
    find('dialog').dispatchEvent(event);
    expect(event.defaultPrevented).toBe(true);
    expect(onClose).toHaveBeenCalledTimes(1);
  });

  it('asks, with no first', async () => {
    const onYes = vi.fn();
    const onNo = vi.fn();
    const ask = (isDanger: boolean) => (
      <Confirm
        title="Reset?"
        yes="Reset"
        action="alarm-reset"
        isDanger={isDanger}
        onYes={onYes}
        onNo={onNo}
      >
        <p>Really.</p>
      </Confirm>
    );
    await show(ask(false));
    expect(textsOf('.actions button')).toEqual(['Cancel', 'Reset']);
    expect(textOf(find('.dialog-body'))).toBe('Really.');
    expect(button('Reset').className).toBe('primary');
    await press('Cancel');
    expect(onNo).toHaveBeenCalledTimes(1);
    expect(onYes).not.toHaveBeenCalled();
    await press('Reset');
    expect(onYes).toHaveBeenCalledTimes(1);
    find('dialog').dispatchEvent(new Event('cancel', { cancelable: true }));
    expect(onNo).toHaveBeenCalledTimes(2);
    await show(ask(true));
    expect(button('Reset').className).toBe('danger');
  });
});

describe('differences', () => {
  const layout = sequenceKind.layout(undefined);
  const line = { Type: 'Analysis', Repeat: 1, Stream: 1, Slot: 0, Flush_time: 0.5 };
  const before: Table = {
    header: { Table_repeat: 1, Continuous: false },
    rows: [line, { ...line, Stream: 2 }, { ...line, Stream: 3 }],
  };

  it('are shown with the old and the new value', async () => {
    const after: Table = {
      header: { Table_repeat: 4, Continuous: true },
      rows: [
        { ...line, Repeat: 7 },
        { ...line, Stream: 3 },
        { ...line, Type: 'Blank', Slot: 5 },
      ],
    };
    await show(<DiffTable diff={diffTables(before, after, layout)} layout={layout} />);
    expect(textsOf('p')).toEqual([
      'Runs of the whole table: 1 → 4',
      'Starts again after the last line: no → yes',
    ]);
    expect(textsOf('p del')).toEqual(['1', 'no']);
    expect(textsOf('p ins')).toEqual(['4', 'yes']);
    expect(rowsOf('table')).toEqual([
      ['Change', 'Line', 'Type', 'Runs', 'Stream', 'Solution', 'Flush time'],
      ['~ changed', '1', 'Analysis', '1 → 7', '1', '0', '0.5'],
      ['− removed', '2', 'Analysis', '1', '2', '0', '0.5'],
      ['+ added', '3', 'Blank', '1', '1', '5', '0.5'],
    ]);
    expect([...document.querySelectorAll('tbody tr')].map(({ className }) => className)).toEqual([
      'changed',
      'removed',
      'added',
    ]);
    expect(textsOf('td del')).toEqual(['1']);
  });

  it('have no table if only the header differs', async () => {
    const after = { ...before, header: { Table_repeat: 2, Continuous: false } };
    await show(<DiffTable diff={diffTables(before, after, layout)} layout={layout} />);
    expect(textsOf('p')).toEqual(['Runs of the whole table: 1 → 2']);
    expect(textsOf('table')).toEqual([]);
  });

  it('are shown empty for a missing value', async () => {
    const after = { ...before, header: { Continuous: false } };
    await show(<DiffTable diff={diffTables(before, after, layout)} layout={layout} />);
    expect(textsOf('p')).toEqual(['Runs of the whole table: 1 →']);
  });

  it('can have an additional column', async () => {
    const after = { ...before, rows: [{ ...line, Repeat: 7 }] };
    const extra = { label: 'Factor', of: ({ kind }: RowChange) => `so ${kind}` };
    const diff = diffTables(before, after, layout);
    await show(<DiffTable diff={diff} layout={layout} extra={extra} />);
    expect(rowsOf('table').map((row) => row.at(-1))).toEqual([
      'Factor',
      'so changed',
      'so removed',
      'so removed',
    ]);
  });

  it('have no column for what the instrument computes', async () => {
    const peaks = calibrationKind.layout(undefined);
    const table = calibrationKind.fromReport(load('docs/schemas/examples/calibration.json'));
    const cleared = { header: {}, rows: [{ ...table.rows[0]!, Level_amt: 0 }] };
    const one = { header: {}, rows: [table.rows[0]!] };
    await show(<DiffTable diff={diffTables(one, cleared, peaks)} layout={peaks} />);
    expect(rowsOf('table')).toEqual([
      ['Change', 'Line', 'Channel', 'Peak', 'Name', 'Amount, level 1'],
      ['~ changed', '1', '1', '1', 'Nitrogen', '4 → 0'],
    ]);
    expect(textsOf('td.text')).toEqual(['Nitrogen']);
  });
});

describe('the progress of a run', () => {
  const bar = () => find('[role=progressbar]');
  const width = () => find('.progress-bar > div').style.width;

  it('is shown', async () => {
    await show(
      <Progress
        status={statusWith({ GC_state: 'Running 45s', Run_time: 45, Total_run_time: 180 })}
      />,
    );
    expect(textOf(document.body)).toBe('45 s of 3 min 00 s');
    expect(bar().getAttribute('aria-label')).toBe('Run');
    expect(bar().getAttribute('aria-valuemin')).toBe('0');
    expect(bar().getAttribute('aria-valuemax')).toBe('180');
    expect(bar().getAttribute('aria-valuenow')).toBe('45');
    expect(bar().getAttribute('aria-valuetext')).toBe('45 s of 3 min 00 s');
    expect(width()).toBe('25%');
  });

  it.each([
    [200, 180, '100%', '200'],
    [-5, 180, '0%', '180'],
    [3, 0, '0%', '3'],
    [1, 1, '100%', '1'],
  ])('with %d s of %d s fills %s', async (elapsed, total, part, most) => {
    const status = statusWith({
      GC_state: 'Running',
      Run_time: elapsed,
      Total_run_time: total,
    });
    await show(<Progress status={status} />);
    expect(width()).toBe(part);
    expect(bar().getAttribute('aria-valuemax')).toBe(most);
  });

  it('is not shown while the instrument does something else', async () => {
    await show(<Progress status={statusWith({ GC_state: 'Flushing' })} />);
    expect(textOf(document.body)).toBe('no run');
    expect(document.querySelector('[role=progressbar]')).toBeNull();
  });

  it('is shown beside the state and the stream', async () => {
    await show(<Now status={statusWith({ Curr_stream: 3 })} />);
    expect(factsOf('dl')).toEqual([
      ['State', 'Ready'],
      ['Stream', '3'],
      ['Run', 'no run'],
    ]);
  });
});

describe('the lines of a sequence', () => {
  const sequence = load<Sequence>('tests/system/documents/sequence/everyday.json');

  it('show the unit of flush times, if the owner has named it', async () => {
    await arrange();
    configuration.value = { ...exampleConfiguration, units: { flush_time: 'min' } };
    await show(<SequenceLines sequence={sequence} />);
    expect(rowsOf('table')[0]!.at(-1)).toBe('Flush time, min');
  });

  it('are shown as they are run', async () => {
    await show(<SequenceLines sequence={sequence} />);
    expect(textsOf('p')).toEqual(['The table is run 2 times.']);
    expect(rowsOf('table')).toEqual([
      ['Line', 'Type', 'Runs', 'Stream', 'Solution', 'Flush time'],
      ['1', 'Calibration', '2', '4', '1', '1.50'],
      ['2', 'Analysis', '5', '1', '0', '1.00'],
      ['3', 'Analysis', '3', '2', '0', '0.50'],
    ]);
  });

  it.each([
    [{ Table_repeat: 1 }, 'The table is run once.'],
    [{ Table_repeat: 0 }, 'The table is run 0 times.'],
    [{ Table_repeat: 1, Continuous: true }, 'The table is run repeatedly until it is stopped.'],
  ])('%j: %s', async (header, text) => {
    await show(<SequenceLines sequence={{ ...sequence, ...header }} />);
    expect(textsOf('p')).toEqual([text]);
  });

  it('may be none', async () => {
    await show(<SequenceLines sequence={{ Table_repeat: 1, total: 3 }} />);
    expect(textsOf('p')).toEqual(['The table is run once.', 'The sequence has no lines.']);
    expect(textsOf('table')).toEqual([]);
  });

  it('may be more than are shown', async () => {
    await show(<SequenceLines sequence={{ ...sequence, total: 30 }} />);
    expect(textsOf('p')).toEqual([
      'The table is run 2 times.',
      'The instrument has 30 lines; the first 3 are shown.',
    ]);
    await show(<SequenceLines sequence={{ ...sequence, total: 2, rows: [{}] }} />);
    expect(textsOf('p')[1]).toBe('The instrument has 2 lines; the first 1 are shown.');
  });
});
