import { describe, expect, it } from 'vitest';
import {
  deviationOf,
  formatMoment,
  formatPosition,
  formatReal,
  formatSpan,
  formatTime,
} from '../src/format';

describe('a value', () => {
  it('has a fixed number of decimals and a real minus sign', () => {
    expect(formatReal(59.98, 2)).toBe('59.98');
    expect(formatReal(60, 2)).toBe('60.00');
    expect(formatReal(-0.843, 3)).toBe('−0.843');
  });

  it('is put into words if there is none', () => {
    expect(formatReal('-', 2)).toBe('not available');
    expect(formatReal(undefined, 2)).toBe('not available');
  });

  it.each([
    [0, '0 s'],
    [37.9, '37 s'],
    [59, '59 s'],
    [60, '1 min 00 s'],
    [119, '1 min 59 s'],
    [125, '2 min 05 s'],
    [3599, '59 min 59 s'],
    [3600, '1 h 00 min'],
    [3660, '1 h 01 min'],
    [3720, '1 h 02 min'],
    [7199, '1 h 59 min'],
    [86400, '24 h 00 min'],
    [-5, '0 s'],
  ])('%d seconds are %s', (seconds, text) => {
    expect(formatSpan(seconds)).toBe(text);
  });

  it.each([
    [0, 0, 0, 'not under way'],
    [2, 3, 1, 'line 2, run 3 of it, table pass 1'],
    [1, 0, 0, 'line 1, run 0 of it, table pass 0'],
    [0, 1, 0, 'line 0, run 1 of it, table pass 0'],
    [0, 0, 1, 'line 0, run 0 of it, table pass 1'],
  ])('describes the position in the sequence: %d, %d, %d', (line, replicate, table, text) => {
    expect(formatPosition(line, replicate, table)).toBe(text);
  });
});

describe('deviation', () => {
  it.each([
    [60, 59.98, 'good', 'at setpoint'],
    [60, 60.5, 'good', 'at setpoint'],
    [60, 59.5, 'good', 'at setpoint'],
    [60, 60.75, 'off', '0.75 above'],
    [60, 21.98, 'off', '38.02 below'],
  ])('setpoint %d, actual %d: %s, %s', (setpoint, actual, level, text) => {
    expect(deviationOf({ Setpoint: setpoint, Actual: actual }, 0.5, 2)).toEqual({ level, text });
  });

  it('is none without a value', () => {
    const expected = { level: 'none', text: 'not available' };
    expect(deviationOf({ Setpoint: '-', Actual: '-' }, 0.5, 2)).toEqual(expected);
    expect(deviationOf({ Setpoint: 60, Actual: '-' }, 0.5, 2)).toEqual(expected);
    expect(deviationOf({ Setpoint: '-', Actual: 60 }, 0.5, 2)).toEqual(expected);
  });
});

it('shows a time of day', () => {
  expect(formatTime(new Date(2026, 2, 5, 4, 3, 7).getTime())).toBe('04:03:07');
  expect(formatTime(new Date(2026, 2, 5, 14, 32, 50, 999).getTime())).toBe('14:32:50');
});

describe('a moment', () => {
  const present = new Date(2026, 10, 21, 23, 30);
  it.each([
    [new Date(2026, 10, 21, 0, 5), '00:05'],
    [new Date(2026, 10, 22, 0, 5), '00:05 on 22 November'],
    [new Date(2026, 0, 1, 12, 0), '12:00 on 1 January'],
    [new Date(2027, 11, 31, 12, 0), '12:00 on 31 December 2027'],
  ])('%s', (time, text) => {
    expect(formatMoment(time.getTime(), present.getTime())).toBe(text);
  });
});
