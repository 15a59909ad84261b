// @vitest-environment happy-dom
import { act } from 'preact/test-utils';
import { afterEach, beforeEach, describe, expect, it } from 'vitest';
import { Bar, Sparkline } from '../src/components/Gauges';
import { history, now, samples } from '../src/store';
import { find, show } from './dom';
import { arrange, clear } from './world';

beforeEach(async () => void (await arrange()));
afterEach(clear);

/** Left edge and width of each rectangle. */
const rectangles = (): (number | string)[][] =>
  [...document.querySelectorAll('rect')].map((rect) => [
    rect.getAttribute('class')!,
    Number(rect.getAttribute('x')),
    Number(Number(rect.getAttribute('width')).toFixed(2)),
  ]);

describe('a bar', () => {
  it('is grey at the setpoint, with the marker in the band', async () => {
    await show(<Bar pair={{ Setpoint: 60, Actual: 60 }} tolerance={0.5} />);
    expect(rectangles()).toEqual([
      ['gauge-ground', 0, 100],
      ['gauge-band', expect.closeTo(43.465, 2), 13.07],
      ['gauge-near', 50, 0],
      ['gauge-near', 48, 4],
    ]);
    expect(find('svg').getAttribute('aria-hidden')).toBe('true');
  });

  it('is coloured outside the band, and reaches its ends', async () => {
    await show(<Bar pair={{ Setpoint: 60, Actual: -500 }} tolerance={0.5} />);
    expect(rectangles().slice(2)).toEqual([
      ['gauge-far', 0, 50],
      ['gauge-far', 0, 4],
    ]);
    await show(<Bar pair={{ Setpoint: 60, Actual: 500 }} tolerance={0.5} />);
    expect(rectangles().slice(2)).toEqual([
      ['gauge-far', 50, 50],
      ['gauge-far', 96, 4],
    ]);
    await show(<Bar pair={{ Setpoint: 60, Actual: 60.5 }} tolerance={0.5} />);
    expect(rectangles().map(([name]) => name)).not.toContain('gauge-far');
  });

  it('has no marker if a value is missing', async () => {
    await show(<Bar pair={{ Setpoint: '-', Actual: 60 }} tolerance={0.5} />);
    expect(rectangles().map(([name]) => name)).toEqual(['gauge-ground', 'gauge-band']);
  });
});

describe('a sparkline', () => {
  it('grows with each sample, and moves with time', async () => {
    // Later than everything that other tests have added.
    const begin = Math.ceil(Date.now() / 5000) * 5 + 100_000;
    const path = (): string | null => find('path').getAttribute('d');
    const add = (seconds: number): Promise<void> =>
      act(() => {
        now.value = (begin + seconds) * 1000;
        history.add(begin + seconds, new Map([['A', 60]]));
        samples.value++;
      });
    await show(<Sparkline name="A" pair={{ Setpoint: 60, Actual: 60 }} tolerance={0.5} />);
    await add(0);
    expect(path()).toBe('M119 12h1');
    await add(5);
    expect(path()).toBe('M118 12L119 12');
    await act(() => {
      now.value = (begin + 55) * 1000;
    });
    expect(path()).toBe('M108 12L109 12');
    expect(find('rect').getAttribute('height')).toBe('5.4');
    await show(<Sparkline name="A" pair={{ Setpoint: '-', Actual: 60 }} tolerance={0.5} />);
    expect(document.querySelectorAll('rect')).toHaveLength(0);
  });
});
