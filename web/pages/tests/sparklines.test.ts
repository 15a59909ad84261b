import { describe, expect, it } from 'vitest';
import { sparkOf } from '../src/sparklines';

/** Ends in the last of 120 steps of 5 seconds. */
const now = 10_004;

describe('a sparkline', () => {
  it('ends at the right edge when the last value is new', () => {
    const points = { times: [now - 10, now - 5, now], values: [60, 60.5, 60] };
    expect(sparkOf(points, now, 60, 0.5)).toEqual({
      path: 'M117 12L118 9.3L119 12',
      band: { top: 9.3, height: 5.4 },
    });
  });

  it('stays in place for five seconds, then moves by one step', () => {
    const points = { times: [9_990, 9_996], values: [60, 60] };
    const at = (time: number): string => sparkOf(points, time, 60, 0.5).path;
    expect(at(10_000)).toBe('M117 12L118 12');
    expect(at(10_004.9)).toBe('M117 12L118 12');
    expect(at(10_005)).toBe('M116 12L117 12');
  });

  it('leaves out values that are too old or in the future', () => {
    const times = [9_404, 9_405, 10_004, 10_005];
    const values = [60, 60, 60, 60];
    expect(sparkOf({ times, values }, now, 60, 0.5).path).toBe('M0 12h1M119 12h1');
  });

  it('shows the latest of the values that share a point', () => {
    const points = { times: [10_000, 10_001, 10_004], values: [62, 58, 60] };
    expect(sparkOf(points, now, 60, 0.5).path).toBe('M119 12h1');
  });

  it('is broken where there is no value or no sample', () => {
    const lines = (times: number[], values: (number | null)[]): number =>
      sparkOf({ times, values }, now, 60, 0.5).path.split('M').length - 1;
    expect(lines([9_900, 9_905, 9_910, 9_915], [60, 60, 60, 60])).toBe(1);
    expect(lines([9_900, 9_905, 9_910, 9_915], [60, null, 60, 60])).toBe(2);
    expect(lines([9_900, 9_905, 9_905.5, 9_906], [60, 60, null, 60])).toBe(2);
    expect(lines([9_900, 9_920], [60, 60])).toBe(1);
    expect(lines([9_900, 9_925], [60, 60])).toBe(2);
  });

  it('fills the height, with the setpoint', () => {
    const points = { times: [now - 5, now], values: [20, 60] };
    const { path, band } = sparkOf(points, now, 60, 0.5);
    // From 20 to 60.5, with a twentieth above and below.
    expect(path).toBe('M118 22.8L119 1.5');
    expect(band).toEqual({ top: 1.2, height: 1 });
  });

  it('needs neither setpoint nor values', () => {
    const none = { times: [], values: [] };
    expect(sparkOf(none, now, '-', 0.5)).toEqual({ path: '', band: undefined });
    expect(sparkOf(none, now, 60, 0.5)).toEqual({ path: '', band: { top: 9.3, height: 5.4 } });
    const points = { times: [now - 5, now], values: [60, 60] };
    expect(sparkOf(points, now, '-', 0.5)).toEqual({ path: 'M118 12L119 12', band: undefined });
  });
});
