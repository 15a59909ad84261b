import { describe, expect, it } from 'vitest';
import { statusWith } from './documents';
import {
  followAbortAfterRun,
  followAbortNow,
  followAutomation,
  followRun,
  followSolution,
  followStream,
  judge,
  judgeUnanswered,
} from '../src/follow';

const ready = statusWith();
const running = statusWith({
  GC_state: 'Running 1s',
  Auto_state: 'Running - Single Run',
  Run_time: 1,
  Total_run_time: 180,
});

describe('a follow', () => {
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
        'the instrument has stopped',
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
        'the automation has ended',
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
      followSolution(4),
      [
        'Solution 4',
        'the instrument to take it up',
        'the instrument is taking it up; it is ready again when that is done',
        'nothing of it was seen',
      ],
      15,
      false,
    ],
  ] as const)(
    '%#: its words, its time, and whether an error ends it',
    (follow, words, limit, ends) => {
      const { name, awaited, done, notDone, limitSeconds, endsWithError } = follow;
      expect([name, awaited, done, notDone]).toEqual(words);
      expect(limitSeconds).toBe(limit);
      expect(endsWithError).toBe(ends);
    },
  );

  it('of the automation has a minute when the run is over its time', () => {
    const late = statusWith({ Run_time: 200, Total_run_time: 180 });
    expect(followAbortAfterRun(late).limitSeconds).toBe(60);
  });
});

describe('following a command', () => {
  it('waits for a run to begin, and says so when it did', () => {
    const follow = followRun('single', 2, ready);
    expect(judge(follow, ready, ready, 3)).toEqual({
      phase: 'waiting',
      text: 'Single run on stream 2: accepted. Waiting for the run to begin (state: Ready; automation: Idle).',
    });
    expect(judge(follow, ready, running, 4)).toEqual({
      phase: 'met',
      text: 'Single run on stream 2: the run has begun (state: Running; automation: Running - Single Run).',
    });
  });

  it('takes a flushing for the begin of a run, and a counted analysis too', () => {
    const follow = followRun('single', 1, ready);
    expect(judge(follow, ready, statusWith({ GC_state: 'Flushing' }), 1).phase).toBe('met');
    expect(judge(follow, ready, statusWith({ Last_counter: 1285 }), 1).phase).toBe('met');
  });

  it('takes the state of the automation for the begin of a calibration', () => {
    const begun = statusWith({ Auto_state: 'Running Calibration' });
    expect(judge(followRun('calibration', 1, ready), ready, begun, 1).phase).toBe('met');
    expect(judge(followRun('single', 1, ready), ready, begun, 1).phase).toBe('waiting');
    const flushing = statusWith({ GC_state: 'Flushing' });
    expect(judge(followRun('calibration', 1, ready), ready, flushing, 1).phase).toBe('met');
    expect(judge(followRun('calibration', 1, ready), ready, ready, 1).phase).toBe('waiting');
  });

  it('says when the effect did not come within its time', () => {
    const follow = followRun('calibration', 4, ready);
    expect(judge(follow, ready, ready, 30).phase).toBe('waiting');
    expect(judge(follow, ready, ready, 31)).toEqual({
      phase: 'late',
      text: 'Calibration on stream 4: accepted, but the calibration has not begun within 30 s (state: Ready; automation: Idle).',
    });
  });

  it('does not wait for ever for an instrument that does not answer', () => {
    const follow = followStream(3);
    expect(judgeUnanswered(follow, 60)).toEqual({
      phase: 'waiting',
      text: 'Stream 3: accepted. Waiting for the valve to move, but there is no answer at present.',
    });
    expect(judgeUnanswered(follow, 61)).toEqual({
      phase: 'late',
      text: 'Stream 3: accepted, but what became of it is not known: no answer has shown it within 60 s.',
    });
  });

  it('ends with a new error of the instrument, but not with an old one', () => {
    const broken = statusWith({
      GC_state: 'Recoverable Error',
      Error_code: 502,
      Error_str: 'Detector bridge out of balance',
    });
    const follow = followAutomation(ready);
    expect(judge(follow, ready, broken, 1)).toEqual({
      phase: 'failed',
      text: 'Automation: the automation has not begun: Detector bridge out of balance (error 502).',
    });
    expect(judge(followStream(3), broken, broken, 1).phase).toBe('waiting');
  });

  it('follows the automation by its own state', () => {
    const follow = followAutomation(ready);
    const flushing = statusWith({ Auto_state: 'Flushing Stream 60s' });
    expect(judge(follow, ready, flushing, 1).phase).toBe('met');
  });

  it('takes an abort for done when nothing runs', () => {
    const follow = followAbortNow();
    expect(judge(follow, running, running, 1).phase).toBe('waiting');
    const between = statusWith({ GC_state: 'Ready', Auto_state: 'Run Delay 3s' });
    expect(judge(follow, running, between, 1).phase).toBe('waiting');
    expect(judge(follow, running, statusWith({ GC_state: 'Stabilizing' }), 1).phase).toBe('met');
  });

  it('gives the present run its time before an automation must have ended', () => {
    const follow = followAbortAfterRun(running);
    expect(follow.limitSeconds).toBe(239);
    expect(judge(follow, running, running, 200).phase).toBe('waiting');
    expect(judge(follow, running, ready, 200).phase).toBe('met');
  });

  it('looks for the stream', () => {
    const follow = followStream(3);
    expect(judge(follow, ready, ready, 1).phase).toBe('waiting');
    expect(judge(follow, ready, statusWith({ Curr_stream: 3 }), 1).text).toBe(
      'Stream 3: the current stream is 3 (state: Ready; automation: Idle).',
    );
  });

  it('sees a solution only by the instrument being busy', () => {
    const follow = followSolution(4);
    expect(judge(follow, ready, statusWith({ GC_state: 'Not Ready' }), 1).phase).toBe('met');
    expect(judge(follow, ready, ready, 16).phase).toBe('late');
  });
});
