import { describe, expect, it } from 'vitest';
import { statusWith } from './documents';
import {
  followAbortAfterRun,
  followAbortNow,
  followAlarmReset,
  followAutomation,
  followRun,
  followStream,
} from '../src/follow';
import { Following, type Said } from '../src/following';

const begin = new Date(2026, 2, 5, 14, 29, 0).getTime();
const ready = statusWith({ Last_counter: 1284, Total_run_time: 180, Curr_stream: 1 });
const running = statusWith({
  GC_state: 'Running 1s',
  Auto_state: 'Running - Single Run',
  Run_time: 1,
  Total_run_time: 180,
  Last_counter: 1284,
});
const broken = statusWith({
  GC_state: 'Recoverable Error',
  Error_code: 502,
  Error_str: 'Detector bridge out of balance',
});

/** What is said after a status so many seconds after the answer. */
function take(following: Following, status: typeof ready, seconds: number): Said {
  return following.take(status, begin + seconds * 1000);
}
const single = (): Following => new Following(followRun('single', 2, ready), ready, begin);

describe('what to wait for', () => {
  it.each([
    [
      followRun('single', 2, ready),
      ['Single run on stream 2', 'the run to begin', 'the run has begun', 'the run has not begun'],
      30,
      true,
    ],
    [
      followRun('calibration', 2, ready),
      [
        'Calibration on stream 2',
        'the calibration to begin',
        'the calibration has begun',
        'the calibration has not begun',
      ],
      30,
      true,
    ],
    [
      followAutomation(ready),
      [
        'Automation',
        'the automation to begin',
        'the automation has begun',
        'the automation has not begun',
      ],
      30,
      true,
    ],
    [
      followAbortNow(),
      [
        'Abort now',
        'the instrument to stop',
        'nothing is running',
        'the instrument has not stopped',
      ],
      30,
      false,
    ],
    [
      followAbortAfterRun(running),
      [
        'Stop after this run',
        'the present run to end',
        'the automation has ended, and no further run was counted',
        'the automation has not ended',
      ],
      239,
      false,
    ],
    [
      followStream(3),
      ['Stream 3', 'the valve to move', 'the current stream is 3', 'the current stream is not 3'],
      60,
      true,
    ],
    [
      followAlarmReset(),
      [
        'Reset of all alarms',
        'the alarms to go',
        'no alarm is active',
        'an alarm is still active, or has come back',
      ],
      10,
      false,
    ],
  ] as const)(
    '%#: its texts, its limit, and whether an error ends it',
    (follow, words, limit, ends) => {
      const { name, awaited, done, notDone, limitSeconds, endsWithError } = follow;
      expect([name, awaited, done(ready, ready), notDone]).toEqual(words);
      expect(limitSeconds).toBe(limit);
      expect(endsWithError).toBe(ends);
    },
  );

  it('has a minute for a stop after an overdue run, and an hour when the run is unknown', () => {
    const late = statusWith({ Run_time: 200, Total_run_time: 180 });
    expect(followAbortAfterRun(late).limitSeconds).toBe(60);
    expect(followAbortAfterRun(undefined).limitSeconds).toBe(3660);
    const undone = followAbortAfterRun(undefined).done(undefined, ready);
    expect(undone).toBe('the automation has ended, and no further run was counted');
  });

  it.each([
    [followAbortNow(), statusWith(), running],
    [followAbortNow(), statusWith(), statusWith({ Auto_state: 'Run Delay 3s' })],
    [followAbortAfterRun(running), statusWith(), running],
    [followStream(3), statusWith({ Curr_stream: 3 }), statusWith({ Curr_stream: 2 })],
    [followAlarmReset(), statusWith(), statusWith({ Alarm_overall: true })],
  ])('%#: holds while the status still shows it', (follow, yes, no) => {
    expect([follow.isMet(yes), follow.isMet(no)]).toEqual([true, false]);
    expect([follow.holds(yes), follow.holds(no)]).toEqual([true, false]);
  });

  it('holds for ever after a start, which has an end of its own', () => {
    expect(followAutomation(ready).holds(ready)).toBe(true);
  });
});

describe('following a command', () => {
  it('waits for a run to begin, and reports it', () => {
    const following = single();
    expect(following.begin()).toEqual({
      kind: 'waiting',
      text: 'Single run on stream 2: accepted.',
    });
    expect(take(following, ready, 3)).toEqual({
      kind: 'waiting',
      text: 'Single run on stream 2: accepted. Waiting for the run to begin (state: Ready; automation: Idle).',
    });
    expect(following.isMet).toBe(false);
    expect(take(following, running, 4)).toEqual({
      kind: 'good',
      text: 'Single run on stream 2: the run has begun.',
    });
    expect([following.isMet, following.isOver]).toEqual([true, false]);
  });

  it('counts flushing as the beginning of a run', () => {
    expect(take(single(), statusWith({ GC_state: 'Flushing' }), 1).kind).toBe('good');
  });

  it('counts the state of the automation as the beginning of a calibration', () => {
    const begun = statusWith({ Auto_state: 'Running Calibration' });
    const calibration = (): Following =>
      new Following(followRun('calibration', 1, ready), ready, begin);
    expect(take(calibration(), begun, 1).kind).toBe('good');
    expect(take(calibration(), statusWith({ GC_state: 'Flushing' }), 1).kind).toBe('good');
    expect(take(calibration(), ready, 1).kind).toBe('waiting');
    expect(take(single(), begun, 1).kind).toBe('waiting');
  });

  it('reports an effect that did not come in time, and still sees it later', () => {
    const following = new Following(followRun('calibration', 4, ready), ready, begin);
    expect(take(following, ready, 30).kind).toBe('waiting');
    expect(take(following, ready, 31)).toEqual({
      kind: 'bad',
      text: 'Calibration on stream 4: accepted, but the calibration has not begun within 30 s (state: Ready; automation: Idle).',
    });
    expect(take(following, running, 32).text).toBe(
      'Calibration on stream 4: the calibration has begun.',
    );
    expect(following.isOver).toBe(false);
  });

  it('ends at some time', () => {
    const following = new Following(followStream(3), ready, begin);
    take(following, ready, 3600);
    expect(following.isOver).toBe(false);
    take(following, ready, 3601);
    expect([following.isOver, following.isMet]).toEqual([true, false]);
  });

  it('ends at some time without any answer', () => {
    const following = new Following(followStream(3), ready, begin);
    expect(following.miss(begin + 60_000)).toEqual({
      kind: 'waiting',
      text: 'Stream 3: accepted. Waiting for the valve to move, but there is no answer at present.',
    });
    expect(following.miss(begin + 61_000)).toEqual({
      kind: 'bad',
      text: 'Stream 3: accepted, but what became of it is not known: no answer has shown it within 60 s.',
    });
  });

  it('ends with a new error of the instrument, but not with an old one', () => {
    const following = new Following(followAutomation(ready), ready, begin);
    expect(take(following, broken, 1)).toEqual({
      kind: 'bad',
      text: 'Automation: the automation has not begun: Detector bridge out of balance (error 502).',
    });
    expect([following.isOver, following.isMet]).toEqual([true, false]);
    expect(take(new Following(followStream(3), broken, begin), broken, 1).kind).toBe('waiting');
    // If there was no status before the command, every error is new.
    const unknown = new Following(followStream(3), undefined, begin);
    expect(take(unknown, broken, 1).kind).toBe('bad');
  });

  it('allows the present run its time before the automation must have ended', () => {
    const following = new Following(followAbortAfterRun(running), running, begin);
    expect(take(following, running, 200).kind).toBe('waiting');
    expect(take(following, statusWith({ Last_counter: 1285 }), 201)).toEqual({
      kind: 'good',
      text: 'Stop after this run: ended after run 1285.',
    });
    expect([following.isOver, following.isMet]).toEqual([true, true]);
  });

  it('reports at which second an abort ended the run', () => {
    const following = new Following(followAbortNow(), running, begin);
    take(following, statusWith({ ...running, Run_time: 37 }), 1);
    const stopped = { GC_state: 'Stabilizing', Last_counter: 1284 };
    expect(take(following, statusWith(stopped), 2).text).toBe(
      'Abort now: the run was aborted at 37 s.',
    );
  });

  it.each([
    [statusWith({ GC_state: 'Flushing', Last_counter: 1284 }), 1284],
    [running, 1285],
    [undefined, 1284],
  ])('%#: claims no aborted run if there was none', (before, counter) => {
    const following = new Following(followAbortNow(), before, begin);
    const stopped = statusWith({ Last_counter: counter });
    expect(take(following, stopped, 2).text).toBe('Abort now: nothing is running.');
  });
});

describe('a command with an unknown outcome', () => {
  const doubt = 'The outcome of the command is not known.';
  const inDoubt = (): Following => new Following(followStream(3), ready, begin, doubt);

  it('is reported as such until the status shows its effect', () => {
    const following = inDoubt();
    expect(following.begin().text).toBe(`Stream 3: ${doubt}`);
    expect(following.miss(begin).text).toBe(
      `Stream 3: ${doubt} Waiting for the valve to move, but there is no answer at present.`,
    );
    expect(following.miss(begin + 61_000).text).toBe(
      'Stream 3: what became of it is not known: no answer has shown it within 60 s.',
    );
    expect(take(following, statusWith({ Curr_stream: 3 }), 62).text).toBe(
      'Stream 3: the current stream is 3.',
    );
  });

  it('is not reported as accepted when its effect does not come', () => {
    expect(take(inDoubt(), ready, 61).text).toBe(
      `Stream 3: ${doubt} By the status the current stream is not 3 within 60 s (state: Ready; automation: Idle).`,
    );
  });
});

describe('a run that has begun', () => {
  const sight = (seconds: number): typeof ready =>
    statusWith({ ...running, GC_state: `Running ${seconds}s`, Run_time: seconds });

  /** A single run last seen a second before its end. */
  function begun(lastSecond = 179): Following {
    const following = single();
    take(following, sight(1), 1);
    take(following, sight(lastSecond), lastSecond);
    return following;
  }

  it('is followed to its end', () => {
    const following = begun();
    expect(take(following, statusWith({ Last_counter: 1285 }), 180)).toEqual({
      kind: 'good',
      text: 'Run 1285 ended at 14:32 after 3 min 00 s, stream 2.',
    });
    expect([following.isOver, following.isMet]).toEqual([true, true]);
  });

  it('may end before the next status', () => {
    expect(take(single(), statusWith({ Last_counter: 1285, Total_run_time: 2 }), 2).text).toBe(
      'Run 1285 ended at 14:29 after 3 min 00 s, stream 2.',
    );
  });

  it('is waited for until its number is known', () => {
    const following = begun();
    const over = statusWith({ Last_counter: 1284 });
    expect(take(following, over, 180)).toEqual({
      kind: 'waiting',
      text: 'Single run on stream 2: is over. Waiting for its number.',
    });
    expect(take(following, over, 182.9).kind).toBe('waiting');
    expect(take(following, statusWith({ Last_counter: 1285 }), 183).text).toMatch(/^Run 1285/);
  });

  it('may have been aborted at its end if it has no number', () => {
    const following = begun();
    const over = statusWith({ Last_counter: 1284 });
    take(following, over, 180);
    expect(take(following, over, 183)).toEqual({
      kind: 'bad',
      text: 'The run on stream 2 ended at 14:32, and no analysis was counted: it may have been aborted.',
    });
  });

  it('was aborted if it ends early without a number', () => {
    const following = begun(37);
    const over = statusWith({ Last_counter: 1284 });
    take(following, over, 38);
    expect(take(following, over, 41)).toEqual({
      kind: 'bad',
      text: 'The run on stream 2 was aborted at 37 s, 14:29.',
    });
  });

  it('continues if it only seemed to be over', () => {
    const following = begun(37);
    take(following, statusWith({ Last_counter: 1284 }), 38);
    expect(take(following, sight(39), 39).text).toBe('Single run on stream 2: the run has begun.');
    take(following, statusWith({ Last_counter: 1284 }), 100);
    expect(following.isOver).toBe(false);
  });

  it('ends with an error', () => {
    const following = begun(37);
    take(following, broken, 38);
    expect(take(following, broken, 41)).toEqual({
      kind: 'bad',
      text: 'The run on stream 2 ended at 14:29 with an error: Detector bridge out of balance (error 502).',
    });
  });

  it('has an unknown outcome without an answer, and an unknown time of its end', () => {
    const following = begun(37);
    expect(following.miss(begin + 60_000)).toEqual({
      kind: 'waiting',
      text: 'Single run on stream 2: under way when the instrument answered last. What becomes of it is not known at present: there is no answer.',
    });
    expect(take(following, statusWith({ Last_counter: 1285 }), 37 + 20.1 * 10).text).toBe(
      'Run 1285 was over when the instrument was seen again at 14:32 after 3 min 00 s, stream 2.',
    );
  });
});

describe('a calibration that has begun', () => {
  const during = statusWith({
    GC_state: 'Running 5s',
    Auto_state: 'Running Calibration',
    Last_counter: 1284,
  });
  function end(counter: number): Said {
    const following = new Following(followRun('calibration', 1, ready), ready, begin);
    take(following, during, 1);
    take(following, { ...during, Last_counter: counter }, 359);
    const over = statusWith({ Last_counter: counter });
    take(following, over, 360);
    return take(following, over, 363);
  }

  it('ends with its runs', () => {
    expect(end(1286)).toEqual({
      kind: 'good',
      text: 'The calibration on stream 1 ended at 14:35: runs 1285 to 1286.',
    });
  });

  it('reports when there were fewer', () => {
    expect(end(1285)).toEqual({
      kind: 'bad',
      text: 'The calibration on stream 1 ended at 14:35 after 1 of 2 runs: it may have been aborted.',
    });
  });

  it('ends with an error', () => {
    const following = new Following(followRun('calibration', 1, ready), ready, begin);
    take(following, during, 59);
    take(following, { ...broken, Last_counter: 1285 }, 60);
    expect(take(following, { ...broken, Last_counter: 1285 }, 64).text).toBe(
      'The calibration on stream 1 ended at 14:30 with an error: Detector bridge out of balance (error 502).',
    );
  });
});

describe('an automation that has begun', () => {
  const during = (counter: number, elapsed: number): typeof ready =>
    statusWith({
      GC_state: 'Running 5s',
      Auto_state: 'Running - Automation',
      Run_time: elapsed,
      Total_run_time: 180,
      Last_counter: counter,
    });
  function end(last: typeof ready, over: typeof ready): Said {
    const following = new Following(followAutomation(ready), ready, begin);
    expect(take(following, last, 60).text).toBe('Automation: the automation has begun.');
    take(following, over, 61);
    return take(following, over, 64);
  }

  it.each([
    [during(1286, 179), 1287, 'good', 'runs 1285 to 1287.'],
    [during(1284, 179), 1285, 'good', 'run 1285.'],
    [during(1284, 179), 1284, 'bad', 'no run was counted.'],
    [during(1286, 37), 1286, 'bad', 'runs 1285 to 1286; the run after that was aborted at 37 s.'],
    // Its clock may be three seconds late, and the last status a second old.
    [during(1286, 176), 1286, 'good', 'runs 1285 to 1286.'],
    [
      during(1286, 175),
      1286,
      'bad',
      'runs 1285 to 1286; the run after that was aborted at 2 min 55 s.',
    ],
  ])('%#: ends with its runs', (last, counter, kind, runs) => {
    expect(end(last, statusWith({ Last_counter: counter }))).toEqual({
      kind,
      text: `The automation ended at 14:30: ${runs}`,
    });
  });

  it('ends with an error', () => {
    expect(end(during(1284, 5), broken).text).toBe(
      'The automation ended at 14:30 with an error: Detector bridge out of balance (error 502).',
    );
  });

  it('does not end with an error that was there before', () => {
    const following = new Following(followAutomation(broken), broken, begin);
    take(following, during(1284, 179), 1);
    expect(take(following, { ...broken, Last_counter: 1285 }, 2).text).toMatch(/: run/);
  });
});
