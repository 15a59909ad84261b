import { describe, expect, it } from 'vitest';
import type { SetpointAndActual, Status } from '../src/documents';
import { controlledOf, quantities, sampleLine } from '../src/quantities';
import { load, statusWith } from './documents';

const channel = statusWith().Channel1!;

/** How a quantity of channel 1, or of the sample line, is shown with these values. */
function deviation(key: string, Setpoint: number, Actual: number): string {
  const pair: SetpointAndActual = { Setpoint, Actual };
  const status =
    key === 'Sample_line_temp'
      ? statusWith({ Sample_line_temp: pair })
      : statusWith({ Channel1: { ...channel, [key]: pair } });
  const rows = controlledOf(status);
  const place = quantities.findIndex((quantity) => quantity.key === key);
  const cell = place < 0 ? rows.at(-1)!.cells[0]! : rows[0]!.cells[place]!;
  return `${cell.actual}, ${cell.deviation.text}`;
}

describe('quantities', () => {
  it('have these names', () => {
    expect(quantities.map(({ label }) => label)).toEqual([
      'Column temperature',
      'Injector temperature',
      'Column pressure',
    ]);
    expect([...quantities, sampleLine].map(({ short }) => short)).toEqual([
      'Column temp.',
      'Injector temp.',
      'Pressure',
      'Sample line temp.',
    ]);
    expect(sampleLine.label).toBe('Sample line temperature');
  });

  it.each([
    ['Column_temp', 60, 60.5, '60.50, at setpoint'],
    ['Column_temp', 60, 59.5, '59.50, at setpoint'],
    ['Column_temp', 60, 60.51, '60.51, 0.51 above'],
    ['Injector_temp', 70, 70.5, '70.50, at setpoint'],
    ['Injector_temp', 70, 69.49, '69.49, 0.51 below'],
    ['Column_press', 180, 181, '181.0, at setpoint'],
    ['Column_press', 180, 179, '179.0, at setpoint'],
    ['Column_press', 180, 181.2, '181.2, 1.2 above'],
    ['Sample_line_temp', 65, 66, '66.00, at setpoint'],
    ['Sample_line_temp', 65, 63.99, '63.99, 1.01 below'],
  ])('%s of %d, actual %d: %s', (key, setpoint, actual, text) => {
    expect(deviation(key, setpoint, actual)).toBe(text);
  });

  it('are listed if they have a setpoint', () => {
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
  });

  it.each([
    ['-', '-', 2],
    ['-', 65, 3],
    [65, '-', 3],
  ] as const)(
    'of a sample line with setpoint %j and actual %j: %d rows',
    (Setpoint, Actual, count) => {
      const rows = controlledOf(statusWith({ Sample_line_temp: { Setpoint, Actual } }));
      expect(rows).toHaveLength(count);
    },
  );
});
