// @vitest-environment happy-dom
import { act } from 'preact/test-utils';
import { afterEach, beforeEach, describe, expect, it, vi } from 'vitest';
import type uPlot from 'uplot';
import { Chart } from '../src/components/Chart';
import { configuration, history, samples } from '../src/store';
import { measurementsOf } from '../src/history';
import type { Status } from '../src/documents';
import { load, statusWith } from './documents';
import { choose, field, find, rowsOf, show, textOf, textsOf } from './dom';
import { arrange, clear, exampleConfiguration } from './world';

/** The plots that were made; real drawing needs a browser. */
class Plot {
  static readonly all: Plot[] = [];
  isDestroyed = false;
  readonly sizes: unknown[] = [];

  constructor(
    readonly options: uPlot.Options,
    public data: uPlot.AlignedData,
    readonly place: Element,
  ) {
    Plot.all.push(this);
  }

  setData(data: uPlot.AlignedData): void {
    this.data = data;
  }

  setSize(size: unknown): void {
    this.sizes.push(size);
  }

  destroy(): void {
    this.isDestroyed = true;
  }
}
vi.mock('uplot', () => ({
  default: vi.fn((...given: ConstructorParameters<typeof Plot>) => new Plot(...given)),
}));

/** Called when an element changes its size. */
const observers = new Set<() => void>();
class Observer {
  constructor(private readonly tell: () => void) {}
  observe(element: Element): void {
    expect(element).toBe(find('.chart'));
    observers.add(this.tell);
  }
  disconnect(): void {
    observers.delete(this.tell);
  }
}

let query: EventTarget & { matches: boolean };
const plot = (): Plot => Plot.all.at(-1)!;
const lines = () => plot().options.series.slice(1);

async function sample(status = statusWith()): Promise<void> {
  history.add(1_700_000_000 + samples.value, measurementsOf(status));
  await act(() => {
    samples.value++;
  });
}

beforeEach(async () => {
  await arrange();
  vi.stubGlobal('ResizeObserver', Observer);
  query = Object.assign(new EventTarget(), { matches: false });
  vi.stubGlobal('matchMedia', (text: string) => {
    expect(text).toBe('screen and (prefers-color-scheme: dark)');
    return query;
  });
  const style = document.documentElement.style;
  style.setProperty('--dim', ' grey');
  style.setProperty('--line', 'silver');
  style.setProperty('--curve-1', 'blue');
  style.setProperty('--curve-2', 'red');
});
afterEach(clear);

describe('the chart', () => {
  it('offers every curve, and shows the first', async () => {
    await show(<Chart status={statusWith()} />);
    expect(textOf(find('h2'))).toBe('Last hour');
    expect(field('Quantity').value).toBe('Column temperature, all channels');
    expect(textsOf('option')).toHaveLength(13);
    expect(find('.chart').getAttribute('aria-label')).toBe(
      'Curve: Column temperature, all channels',
    );
    expect(lines().map(({ label, stroke, width, dash }) => [label, stroke, width, dash])).toEqual([
      ['Channel 1', 'blue', 2, []],
      ['Channel 2', 'red', 2, [10, 4]],
    ]);
    expect(plot().place).toBe(find('.chart'));
    expect(textsOf('p')).toEqual(['Kept in this browser tab while it is open.']);
  });

  it('shows what has been measured, and continues with each sample', async () => {
    await show(<Chart status={statusWith()} />);
    await sample();
    const before = plot();
    expect(before.data.map((column) => column.length)).toEqual([1, 1, 1]);
    await sample(
      statusWith({
        Channel1: { ...statusWith().Channel1!, Column_temp: { Setpoint: 60, Actual: 61.5 } },
      }),
    );
    expect(plot()).toBe(before);
    expect(plot().data[1]).toEqual([59.98, 61.5]);
    expect(plot().data[2]).toEqual([75.01, 75.01]);
    expect(plot().data[0]).toEqual(history.points('').times);
    expect(textOf(find('caption'))).toBe('Column temperature, all channels in numbers');
    expect(rowsOf('table')).toEqual([
      ['Curve', 'Now', 'Lowest', 'Highest'],
      ['Channel 1', '61.50', '59.98', '61.50'],
      ['Channel 2', '75.01', '75.01', '75.01'],
    ]);
  });

  it('shows the unit, if the owner has named it', async () => {
    configuration.value = { ...exampleConfiguration, units: { pressure: 'kPa' } };
    await show(<Chart status={statusWith()} />);
    expect(rowsOf('table')[0]![1]).toBe('Now');
    await choose('Quantity', 'Column pressure, channel 2');
    expect(rowsOf('table')[0]![1]).toBe('Now, kPa');
    expect(find('.chart').getAttribute('aria-label')).toBe(
      'Curve: Column pressure, channel 2, kPa',
    );
    expect(textOf(find('.section-head'))).toMatch(/ kPa$/);
  });

  it('shows another curve on demand, with its setpoint', async () => {
    await show(<Chart status={statusWith()} />);
    const before = plot();
    await choose('Quantity', 'Column pressure, channel 2');
    expect(before.isDestroyed).toBe(true);
    expect(plot()).not.toBe(before);
    expect(observers.size).toBe(1);
    expect(lines().map(({ label, stroke, width, dash }) => [label, stroke, width, dash])).toEqual([
      ['Actual', 'blue', 2, []],
      ['Setpoint', 'grey', 1, [4, 4]],
    ]);
    expect(rowsOf('table')[2]![0]).toBe('Setpoint');
    expect(plot().data).toHaveLength(3);
    expect(
      [...document.querySelectorAll('line')].map((line) => [
        line.getAttribute('class'),
        line.getAttribute('stroke-dasharray'),
      ]),
    ).toEqual([
      ['curve-1', ''],
      ['curve-setpoint', '4 4'],
    ]);
  });

  it('returns to the first when the chosen one no longer exists', async () => {
    await show(<Chart status={statusWith()} />);
    await choose('Quantity', 'Column pressure, channel 2');
    const { Channel2, ...fewer } = statusWith();
    expect(Channel2).toBeDefined();
    await show(<Chart status={fewer} />);
    expect(field('Quantity').value).toBe('Column temperature, all channels');
    expect(lines()).toHaveLength(1);
  });

  it('is redrawn when there is another channel', async () => {
    const { Channel2, ...fewer } = statusWith();
    expect(Channel2).toBeDefined();
    await show(<Chart status={fewer} />);
    expect(lines()).toHaveLength(1);
    await show(<Chart status={statusWith()} />);
    expect(lines()).toHaveLength(2);
  });

  it('is redrawn in other colours', async () => {
    await show(<Chart status={statusWith()} />);
    const before = plot();
    query.matches = true;
    await act(async () => void query.dispatchEvent(new Event('change')));
    expect(before.isDestroyed).toBe(true);
    expect(plot()).not.toBe(before);
    await show(null);
    const last = plot();
    query.matches = false;
    await act(async () => void query.dispatchEvent(new Event('change')));
    expect(plot()).toBe(last);
  });

  it('is as wide as its element, with a fixed height', async () => {
    await show(<Chart status={statusWith()} />);
    expect(plot().options.width).toBe(0);
    Object.defineProperty(find('.chart'), 'clientWidth', { value: 640 });
    for (const tell of observers) {
      tell();
    }
    expect(plot().sizes).toEqual([{ width: 640, height: plot().options.height }]);
    await show(null);
    expect(observers.size).toBe(0);
    expect(plot().isDestroyed).toBe(true);
  });

  it('has axes that fit the values', async () => {
    await show(<Chart status={statusWith()} />);
    const { scales, axes } = plot().options;
    const span = (scales!.x!.range as (self: unknown) => unknown)({ data: [[100, 110]] });
    expect(span).toEqual([50, 110]);
    const values = (scales!.y!.range as (self: unknown, low: number, high: number) => unknown)(
      undefined,
      60,
      60,
    );
    expect(values).toEqual([59.5, 60.5]);
    const texts = axes![1]!.values as (self: unknown, splits: number[]) => string[];
    expect(texts(undefined, [59.900000000000006, 60, 0.1 + 0.2])).toEqual(['59.9', '60', '0.3']);
  });

  it('is drawn in the colours of the page, without a cursor', async () => {
    await show(<Chart status={statusWith()} />);
    const { width, height, legend, cursor, axes, series } = plot().options;
    expect([width, height]).toEqual([0, 240]);
    expect([legend, cursor]).toEqual([{ show: false }, { show: false }]);
    const axis = {
      stroke: 'grey',
      grid: { stroke: 'silver', width: 1 },
      ticks: { stroke: 'silver', width: 1 },
    };
    expect(axes).toEqual([
      {
        ...axis,
        space: 90,
        incrs: [10, 30, 60, 120, 300, 600, 900, 1800],
        values: [[1, '{HH}:{mm}:{ss}']],
      },
      { ...axis, size: 64, values: expect.any(Function) as unknown },
    ]);
    expect(series[0]).toEqual({});
    expect(lines().map(({ points }) => points)).toEqual([{ show: false }, { show: false }]);
  });

  it('distinguishes four channels without colours', async () => {
    const four = load<Status>('tests/system/documents/four-channel.json');
    await show(<Chart status={four} />);
    const dashes = [[], [10, 4], [3, 3], [12, 3, 3, 3]];
    expect(lines().map(({ dash }) => dash)).toEqual(dashes);
    expect(
      [...document.querySelectorAll('line')].map((line) => [
        line.getAttribute('class'),
        line.getAttribute('stroke-dasharray'),
      ]),
    ).toEqual([
      ['curve-1', ''],
      ['curve-2', '10 4'],
      ['curve-3', '3 3'],
      ['curve-4', '12 3 3 3'],
    ]);
    expect(find('svg').getAttribute('aria-hidden')).toBe('true');
    expect(find('.chart').getAttribute('role')).toBe('img');
  });
});
