import { describe, expect, it } from 'vitest';
import {
  decadesOf,
  heightOf,
  marksOf,
  placeNames,
  shortened,
  timeAxisOf,
  widthOf,
  zeroGap,
} from '../src/sticks';

describe('the scale of amounts', () => {
  it('is the same for all usual amounts', () => {
    const usual = { low: -2, high: 2 };
    expect(decadesOf([])).toEqual(usual);
    expect(decadesOf([0, undefined, 100, 0.01, 5])).toEqual(usual);
  });

  it('includes all amounts', () => {
    expect(decadesOf([0.0005, 250])).toEqual({ low: -4, high: 3 });
    expect(decadesOf([0.001])).toEqual({ low: -3, high: 2 });
    expect(decadesOf([1000])).toEqual({ low: -2, high: 3 });
  });

  it('keeps zero apart, and has room for the smallest amount', () => {
    const scale = { low: -2, high: 2 };
    expect(heightOf(0, scale)).toBe(0);
    expect(heightOf(0.01, scale)).toBeCloseTo(zeroGap);
    expect(heightOf(1, scale)).toBeCloseTo(zeroGap + (1 - zeroGap) / 2);
    expect(heightOf(100, scale)).toBeCloseTo(1);
  });

  it('has a mark for every decade, or for some of them if there are many', () => {
    expect(marksOf({ low: -2, high: 2 })).toEqual([0.01, 0.1, 1, 10, 100]);
    expect(marksOf({ low: -4, high: 2 })).toHaveLength(7);
    expect(marksOf({ low: -5, high: 2 })).toEqual([0.00001, 0.001, 0.1, 10]);
  });
});

describe('the axis of retention times', () => {
  it('begins at zero and has round marks', () => {
    expect(timeAxisOf([25.2, 157.2], 5)).toEqual({
      begin: 0,
      end: 200,
      marks: [0, 50, 100, 150, 200],
    });
    expect(timeAxisOf([3], 5).marks).toEqual([0, 1, 2, 3]);
    expect(timeAxisOf([7], 5).marks).toEqual([0, 2, 4, 6, 8]);
    expect(timeAxisOf([0.35], 5).marks).toEqual([0, 0.1, 0.2, 0.3, 0.4]);
    expect(timeAxisOf([45], 5).marks).toEqual([0, 10, 20, 30, 40, 50]);
    expect(timeAxisOf([51], 5).marks).toEqual([0, 20, 40, 60]);
  });

  it('exists for no time, for a single time at zero, and for times below it', () => {
    expect(timeAxisOf([], 5)).toMatchObject({ begin: 0, end: 1 });
    expect(timeAxisOf([0], 5)).toMatchObject({ begin: 0, end: 1 });
    expect(timeAxisOf([1e-300], 5)).toMatchObject({ begin: 0, end: 1 });
    expect(timeAxisOf([-3, 8], 5).marks).toEqual([-5, 0, 5, 10]);
    expect(timeAxisOf([1e300], 5).marks).toHaveLength(6);
  });
});

describe('names', () => {
  const room = { distance: 10, from: 0, to: 100, farthest: 30 };
  const place = (...at: number[]) =>
    placeNames(
      at.map((one) => ({ at: one, weight: 1 })),
      room,
    );

  it('stand where they belong if there is room', () => {
    expect(place(20, 40, 90)).toEqual([20, 40, 90]);
    expect(place()).toEqual([]);
  });

  it('move apart equally to both sides', () => {
    expect(place(50, 52)).toEqual([46, 56]);
    expect(place(50, 50, 50)).toEqual([40, 50, 60]);
    expect(place(20, 50, 51, 80)).toEqual([20, 45.5, 55.5, 80]);
    // Names that are moved may meet others.
    expect(place(40, 51, 52)).toEqual([37.666666666666664, 47.666666666666664, 57.666666666666664]);
  });

  it('stay within the picture', () => {
    expect(place(0, 2)).toEqual([0, 10]);
    expect(place(99, 100)).toEqual([90, 100]);
  });

  it('keep the order in time, whatever their order in the table', () => {
    expect(place(52, 50)).toEqual([56, 46]);
  });

  it('are left out where they would be too far away, starting with the smallest amount', () => {
    const wishes = Array.from({ length: 9 }, (_, n) => ({ at: 50, weight: n }));
    const places = placeNames(wishes, room);
    expect(places.slice(0, 2)).toEqual([undefined, undefined]);
    expect(places.slice(2)).toEqual([20, 30, 40, 50, 60, 70, 80]);
    const first = wishes.map((wish, n) => (n === 0 ? { ...wish, weight: Infinity } : wish));
    expect(placeNames(first, room)[0]).toBe(20);
  });

  it('are left out if there is no room at all', () => {
    const narrow = { distance: 10, from: 0, to: 25, farthest: 1000 };
    const wishes = [1, 2, 3, 4].map((weight) => ({ at: weight, weight }));
    expect(placeNames(wishes, narrow)).toEqual([undefined, 0, 10, 20]);
  });

  it('never overlap', () => {
    const wishes = Array.from({ length: 100 }, (_, n) => ({
      at: ((n * 37) % 100) * 0.9 + (n % 7),
      weight: (n * 13) % 11,
    }));
    const places = placeNames(wishes, { distance: 3, from: 0, to: 100, farthest: 9 });
    const placed = places.filter((one) => one !== undefined).sort((a, b) => a - b);
    expect(placed.length).toBeGreaterThan(20);
    for (let n = 1; n < placed.length; n++) {
      expect(placed[n]! - placed[n - 1]!).toBeGreaterThan(3 - 1e-9);
    }
    wishes.forEach(({ at }, n) => {
      expect(Math.abs((places[n] ?? at) - at)).toBeLessThanOrEqual(9);
    });
  });

  it('are shortened if they are too long', () => {
    expect(shortened('Methane', 7)).toBe('Methane');
    expect(shortened('Methane', 6)).toBe('Metha…');
    expect(shortened('Carbon dioxide', 8)).toBe('Carbon…');
    expect(shortened('', 5)).toBe('');
    expect(shortened('正己烷', 6)).toBe('正己烷');
    expect(shortened('正己烷', 5)).toBe('正己…');
    expect([widthOf('正n'), widthOf('한'), widthOf('e\u0301')]).toEqual([3, 2, 2]);
  });
});
