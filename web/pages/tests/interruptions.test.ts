import { expect, test } from 'vitest';
import { describeInterruption } from '../src/interruptions';

const begun = (...command: string[]) => ({
  time: '2026-11-21T07:31:35Z',
  id: '5d1f0c2b9a7e4836',
  event: 'begun' as const,
  user: 'anna',
  address: '192.0.2.9',
  command,
});
const when = new Date('2026-11-21T07:31:35Z').toLocaleString();
const rest =
  'was interrupted. Whether the instrument has carried it out, or a part of it, is not known: look at the instrument and its tables.';

test.each([
  [['-R', 'single', '-v', '2'], 'Single run on stream 2'],
  [['-R', 'calib', '-v', '46'], 'Calibration on stream 46'],
  [['-R', 'auto'], 'Start of the automation'],
  [['-A', 'now'], 'Abort'],
  [['-A', 'auto'], 'Stop after the run'],
  [['-V', '3'], 'Switch to stream 3'],
  [['-M', '10'], 'Load of solution 10'],
  [['-P'], 'Reset of all alarms'],
  [['-Q'], 'Sequence table'],
  [['-C'], 'Calibration table'],
  [['-X', '1'], '-X 1'],
])('%j is described as %s', (command, name) => {
  expect(describeInterruption(begun(...command))).toBe(
    `${name}, given by anna on ${when}, ${rest}`,
  );
});

test('an invalid time is shown unchanged', () => {
  const text = describeInterruption({ ...begun('-P'), time: 'yesterday' });
  expect(text).toContain(' on yesterday, was');
});
