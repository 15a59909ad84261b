// @vitest-environment happy-dom
import { act } from 'preact/test-utils';
import { afterEach, beforeEach, describe, expect, it } from 'vitest';
import { ExpectedEnd } from '../src/components/ExpectedEnd';
import type { Sequence, Status } from '../src/documents';
import { expectedAutomationEnd, expectedRunEnd } from '../src/expected';
import { sequence } from '../src/sequence';
import { configuration, now, status, statusTime } from '../src/store';
import { load, statusWith } from './documents';
import { factsOf, show } from './dom';
import { arrange, clear, exampleConfiguration } from './world';

const example = load<Sequence>('docs/schemas/examples/sequence.json');
const begin = new Date(2026, 2, 5, 14, 30, 7).getTime();
const running = statusWith({
  GC_state: 'Running 37s',
  Run_time: 37,
  Auto_state: 'Running Sequence',
  Seq_line: 2,
  Line_replicate: 4,
  Seq_replicate: 2,
});
const after = (seconds: number): number => begin + seconds * 1000;

/** A status that was read so many milliseconds later. */
function take(next: Status, milliseconds: number): Promise<void> {
  return act(() => {
    statusTime.value = begin + milliseconds;
    now.value = begin + milliseconds;
    status.value = next;
  });
}

beforeEach(async () => {
  await arrange();
  sequence.value = example;
  await take(statusWith(), 0);
});
afterEach(async () => {
  await clear();
  sequence.value = undefined;
});

describe('the expected end', () => {
  it('is none while nothing runs, and without a status', async () => {
    await show(
      <dl>
        <ExpectedEnd />
      </dl>,
    );
    const none = [
      ['Run ends', '–'],
      ['Automation ends', '–'],
    ];
    expect(factsOf('dl')).toEqual(none);
    await act(() => (status.value = undefined) as undefined);
    expect(factsOf('dl')).toEqual(none);
  });

  it('is a time of day, or the reason why it is not exact', async () => {
    await show(
      <dl>
        <ExpectedEnd />
      </dl>,
    );
    await take(running, 0);
    expect(factsOf('dl')).toEqual([
      ['Run ends', '14:32'],
      [
        'Automation ends',
        'not before 14:44 (the unit of the flush times is not known; delays between runs are not known)',
      ],
    ]);
    configuration.value = { ...exampleConfiguration, units: { flush_time: 'min' } };
    await take(running, 0);
    expect(factsOf('dl')[1]![1]).toBe('not before 14:45 (delays between runs are not known)');
  });

  it('has no reasons where there is no room', async () => {
    await show(
      <dl>
        <ExpectedEnd isBrief />
      </dl>,
    );
    await take(running, 0);
    expect(factsOf('dl')[1]![1]).toBe('not before 14:44');
  });

  it('does not jitter with the seconds, but follows longer changes', async () => {
    await take(running, 0);
    expect(expectedRunEnd.value).toEqual({ kind: 'at', time: after(143) });
    await take({ ...running, Run_time: 38 }, 3900);
    expect(expectedRunEnd.value).toEqual({ kind: 'at', time: after(143) });
    await take({ ...running, Run_time: 42 }, 2100);
    expect(expectedRunEnd.value).toEqual({ kind: 'at', time: after(143) });
    await take({ ...running, Run_time: 42 }, 8000);
    expect(expectedRunEnd.value).toEqual({ kind: 'at', time: after(146) });
  });

  it('distinguishes an exact end from an earliest one, however close they are', async () => {
    await take({ ...running, Seq_line: 3, Line_replicate: 3 }, 0);
    expect(expectedAutomationEnd.value.kind).toBe('at');
    await act(() => {
      sequence.value = { ...example, total: 4 };
    });
    expect(expectedAutomationEnd.value).toMatchObject({ kind: 'not-before', time: after(143) });
  });
});
