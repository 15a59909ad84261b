import { describe, expect, it } from 'vitest';
import { deviationOf, formatPosition, formatReal, formatSpan } from '../src/format';
import { controlledOf } from '../src/quantities';
import type { Status } from '../src/documents';
import { load, statusWith } from './documents';

describe('values', () => {
  it('has a fixed number of decimals and a real minus sign', () => {
    expect(formatReal(59.98, 2)).toBe('59.98');
    expect(formatReal(60, 2)).toBe('60.00');
    expect(formatReal(-0.843, 3)).toBe('−0.843');
  });

  it('says in words that there is none', () => {
    expect(formatReal('-', 2)).toBe('not available');
    expect(formatReal(undefined, 2)).toBe('not available');
  });

  it.each([
    [0, '0 s'],
    [37.9, '37 s'],
    [125, '2 min 05 s'],
    [3720, '1 h 02 min'],
    [-5, '0 s'],
  ])('%d seconds are %s', (seconds, text) => {
    expect(formatSpan(seconds)).toBe(text);
  });

  it('tells the position in the sequence', () => {
    expect(formatPosition(0, 0, 0)).toBe('not under way');
    expect(formatPosition(2, 3, 1)).toBe('line 2, run 3 of it, table pass 1');
  });
});

describe('deviation', () => {
  it.each([
    [60, 59.98, 'good', 'at setpoint'],
    [60, 60.5, 'good', 'at setpoint'],
    [60, 60.75, 'off', '0.75 above'],
    [60, 21.98, 'off', '38.02 below'],
  ])('setpoint %d, actual %d: %s, %s', (setpoint, actual, level, text) => {
    expect(deviationOf({ Setpoint: setpoint, Actual: actual }, 0.5, 2)).toEqual({ level, text });
  });

  it('is none without a value', () => {
    const expected = { level: 'none', text: 'not available' };
    expect(deviationOf({ Setpoint: '-', Actual: '-' }, 0.5, 2)).toEqual(expected);
    expect(deviationOf({ Setpoint: 60, Actual: '-' }, 0.5, 2)).toEqual(expected);
  });

  it('is listed for everything that has a setpoint', () => {
    const cold = controlledOf(load<Status>('tests/system/documents/warming-up.json'));
    const texts = cold.map(({ label, cells }) => [
      label,
      ...cells.map(({ actual, deviation }) => `${actual}, ${deviation.text}`),
    ]);
    expect(texts).toEqual([
      ['Channel 1', '21.98, 38.02 below', '21.97, 48.03 below', '0.1, 179.9 below'],
      ['Channel 2', '22.01, 52.99 below', '21.96, 58.04 below', '0.1, 149.9 below'],
      ['Sample line', '21.97, 43.03 below'],
    ]);
    const warm = controlledOf(statusWith()).flatMap(({ cells }) => cells);
    expect(warm).toHaveLength(7);
    expect(warm.every(({ deviation }) => deviation.level === 'good')).toBe(true);
    const without = { Setpoint: '-', Actual: '-' } as const;
    expect(controlledOf(statusWith({ Sample_line_temp: without }))).toHaveLength(2);
  });
});
