import { describe, expect, it } from 'vitest';
import type { Real } from '../src/documents';
import { History, measurementsOf } from '../src/history';
import { statusWith } from './documents';

const sample = (value: Real): Map<string, Real> => new Map([['a', value]]);

describe('history', () => {
  it('returns samples in order, with null for values that are not available', () => {
    const history = new History(10);
    history.add(100, sample(1));
    history.add(101, sample('-'));
    history.add(102, sample(3));
    expect(history.points('a')).toEqual({ times: [100, 101, 102], values: [1, null, 3] });
  });

  it('has no values of a series before it appeared, or of one that never did', () => {
    const history = new History(10);
    history.add(1, sample(1));
    history.add(2, new Map([['b', 5]]));
    expect(history.points('b').values).toEqual([null, 5]);
    expect(history.points('a').values).toEqual([1, null]);
    expect(history.points('c').values).toEqual([null, null]);
  });

  it('returns only samples from a given time on, even past the end of the ring', () => {
    const history = new History(5);
    for (const time of [1, 2, 3, 4, 5, 6, 7]) {
      history.add(time, sample(time === 6 ? '-' : time));
    }
    expect(history.recent('a', 5)).toEqual({ times: [5, 6, 7], values: [5, null, 7] });
    expect(history.recent('a', 0).times).toEqual([3, 4, 5, 6, 7]);
    expect(history.recent('a', 8)).toEqual({ times: [], values: [] });
    expect(history.recent('b', 7)).toEqual({ times: [7], values: [null] });
  });

  it('drops samples older than an hour', () => {
    const history = new History(4000);
    for (let second = 0; second <= 4000; second++) {
      history.add(second, sample(second));
    }
    const { times, values } = history.points('a');
    expect(times.length).toBe(3601);
    expect(times[0]).toBe(400);
    expect(values.at(-1)).toBe(4000);
  });

  it('keeps the newest samples when it is full', () => {
    const history = new History(3);
    for (let second = 1; second <= 5; second++) {
      history.add(second, sample(second * 10));
    }
    expect(history.points('a')).toEqual({ times: [3, 4, 5], values: [30, 40, 50] });
  });

  it('drops samples in the future after the clock was set back', () => {
    const history = new History(6);
    for (const time of [1, 2, 3, 4]) {
      history.add(time, sample(time));
    }
    history.add(2.5, sample(9));
    expect(history.points('a')).toEqual({ times: [1, 2, 2.5], values: [1, 2, 9] });
    history.add(3, sample(10));
    history.add(-100, sample(11));
    history.add(-99, sample(12));
    expect(history.points('a')).toEqual({ times: [-100, -99], values: [11, 12] });
  });

  it('overwrites every series, whether it is in the sample or not', () => {
    const history = new History(2);
    history.add(1, sample(1));
    history.add(2, sample(2));
    history.add(3, new Map());
    expect(history.points('a').values).toEqual([2, null]);
  });

  it('breaks the curve where there were no samples for a while', () => {
    const history = new History(10);
    history.add(0, sample(1));
    history.add(20, sample(2));
    history.add(60, sample(3));
    expect(history.points('a')).toEqual({ times: [0, 20, 40, 60], values: [1, 2, null, 3] });
    history.add(81, sample(4));
    expect(history.points('a').times).toEqual([0, 20, 40, 60, 70.5, 81]);
  });
});

describe('measurements', () => {
  it('have names for installed channels only', () => {
    const { Channel1, ...fewer } = statusWith();
    expect(Channel1).toBeDefined();
    expect(Object.fromEntries(measurementsOf(fewer))).toEqual({
      Ambient_temp: 23,
      Ambient_press: 101.32,
      'Sample_line_temp.Setpoint': 65,
      'Sample_line_temp.Actual': 64.97,
      'Channel2.Column_temp.Setpoint': 75,
      'Channel2.Column_temp.Actual': 75.01,
      'Channel2.Column_press.Setpoint': 150,
      'Channel2.Column_press.Actual': 150.1,
      'Channel2.Injector_temp.Setpoint': 80,
      'Channel2.Injector_temp.Actual': 79.96,
      'Channel2.Auto_zero': -0.843,
    });
    expect(measurementsOf(statusWith()).size).toBe(18);
  });

  it('continues where the page before it ended', () => {
    const before = new History(10);
    before.add(1000, new Map([['a', 1]]));
    before.add(
      1005,
      new Map<string, number | '-'>([
        ['a', '-'],
        ['b', 7],
      ]),
    );
    const after = new History(10);
    after.restore(before.save(), 1006);
    after.add(1010, new Map([['b', 8]]));
    expect(after.points('a')).toEqual({ times: [1000, 1005, 1010], values: [1, null, null] });
    expect(after.points('b').values).toEqual([null, 7, 8]);
    const exact = new History(10);
    exact.restore(before.save(), 1005);
    expect(exact.points('a').times).toEqual([1000]);
    const early = new History(10);
    early.restore(before.save(), 1004);
    expect(early.points('a').times).toEqual([1000]);
  });

  it.each(['', '{', '[]', '{"times": 3}'])('restores nothing from %j', (text) => {
    const history = new History(10);
    history.restore(text, 1000);
    expect(history.points('a').times).toEqual([]);
  });
});
