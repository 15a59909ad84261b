import { describe, expect, it } from 'vitest';
import { barOf } from '../src/bars';

describe('a bar', () => {
  it('is at its middle at the setpoint', () => {
    expect(barOf({ Setpoint: 60, Actual: 60 }, 0.5).actual).toBe(0);
  });

  it('grows to both sides, up to its ends', () => {
    const at = (Actual: number): number => barOf({ Setpoint: 60, Actual }, 0.5).actual!;
    const places = [-200, -40, 20, 50, 59, 59.9, 60, 60.1, 61, 70, 160, 500].map(at);
    expect(places).toEqual([...places].sort((a, b) => a - b));
    expect(at(59)).toBeCloseTo(-at(61), 12);
    expect(at(160)).toBeCloseTo(1, 12);
    expect(at(500)).toBe(1);
    expect(at(-200)).toBe(-1);
  });

  it('shows the limits of its band', () => {
    const edge = barOf({ Setpoint: 180, Actual: 181 }, 1);
    expect(edge.actual).toBe(edge.band);
    expect(edge.band).toBeCloseTo(Math.log(2) / Math.log(201), 12);
    expect(barOf({ Setpoint: 180, Actual: 181.1 }, 1).actual).toBeGreaterThan(edge.band);
  });

  it.each([
    { Setpoint: '-', Actual: 60 },
    { Setpoint: 60, Actual: '-' },
    { Setpoint: '-', Actual: '-' },
  ] as const)('has no value for %j', (pair) => {
    expect(barOf(pair, 0.5).actual).toBeUndefined();
  });
});
