import { describe, expect, it } from 'vitest';
import { choicesOf, summaryOf, timeSpan, valueSpan } from '../src/curves';
import { statusWith } from './documents';

const none = { Setpoint: '-', Actual: '-' } as const;

describe('curves', () => {
  const choices = choicesOf(statusWith());

  it('exist for each quantity, for all channels together and for each', () => {
    expect(choices.map(({ label, decimals, unit }) => [label, decimals, unit])).toEqual([
      ['Column temperature, all channels', 2, 'temperature'],
      ['Column temperature, channel 1', 2, 'temperature'],
      ['Column temperature, channel 2', 2, 'temperature'],
      ['Injector temperature, all channels', 2, 'temperature'],
      ['Injector temperature, channel 1', 2, 'temperature'],
      ['Injector temperature, channel 2', 2, 'temperature'],
      ['Column pressure, all channels', 1, 'pressure'],
      ['Column pressure, channel 1', 1, 'pressure'],
      ['Column pressure, channel 2', 1, 'pressure'],
      ['Auto zero, all channels', 3, 'auto_zero'],
      ['Sample line temperature', 2, 'temperature'],
      ['Ambient temperature', 0, 'temperature'],
      ['Ambient pressure', 2, 'ambient_pressure'],
    ]);
  });

  it('come from the history', () => {
    const told = Object.fromEntries(
      choices.map(({ label, curves }) => [
        label,
        curves.map(
          ({ name, label: curve, isSetpoint }) => `${curve}: ${name}${isSetpoint ? ', set' : ''}`,
        ),
      ]),
    );
    expect(told['Column temperature, all channels']).toEqual([
      'Channel 1: Channel1.Column_temp.Actual',
      'Channel 2: Channel2.Column_temp.Actual',
    ]);
    expect(told['Column pressure, channel 2']).toEqual([
      'Actual: Channel2.Column_press.Actual',
      'Setpoint: Channel2.Column_press.Setpoint, set',
    ]);
    expect(told['Auto zero, all channels']).toEqual([
      'Channel 1: Channel1.Auto_zero',
      'Channel 2: Channel2.Auto_zero',
    ]);
    expect(told['Sample line temperature']).toEqual([
      'Actual: Sample_line_temp.Actual',
      'Setpoint: Sample_line_temp.Setpoint, set',
    ]);
    expect(told['Ambient temperature']).toEqual(['Ambient: Ambient_temp']);
    expect(told['Ambient pressure']).toEqual(['Ambient: Ambient_press']);
  });

  it('exist only for installed parts', () => {
    const { Channel1, ...bare } = statusWith({ Sample_line_temp: none });
    expect(Channel1).toBeDefined();
    expect(choicesOf(bare).map(({ label }) => label)).toEqual([
      'Column temperature, all channels',
      'Column temperature, channel 2',
      'Injector temperature, all channels',
      'Injector temperature, channel 2',
      'Column pressure, all channels',
      'Column pressure, channel 2',
      'Auto zero, all channels',
      'Ambient temperature',
      'Ambient pressure',
    ]);
  });
});

describe('the time axis', () => {
  it.each([
    [[], 5000, [4940, 5000]],
    [[100], 5000, [40, 100]],
    [[100, 130], 5000, [70, 130]],
    [[100, 160], 5000, [100, 160]],
    [[100, 3700], 5000, [100, 3700]],
  ])('of samples at %j', (times, now, span) => {
    expect(timeSpan(times, now)).toEqual(span);
  });
});

describe('the value axis', () => {
  it.each([
    [null, null, 2, [0, 1]],
    [null, 5, 2, [0, 1]],
    [5, null, 2, [0, 1]],
    // A margin of a tenth above and below.
    [20, 60, 2, [16, 64]],
    [0, 1000, 0, [-100, 1100]],
    // Steady values get a minimum span by their decimals.
    [60, 60, 2, [59.5, 60.5]],
    [60, 60.5, 2, [59.75, 60.75]],
    [180, 180, 1, [175, 185]],
    [23, 23, 0, [18, 28]],
    [1.25, 1.25, 3, [1.2, 1.3]],
  ])('from %j to %j with %d decimals', (low, high, decimals, [from, to]) => {
    const span = valueSpan(low, high, decimals);
    expect(span[0]).toBeCloseTo(from!, 9);
    expect(span[1]).toBeCloseTo(to!, 9);
  });
});

describe('a curve in numbers', () => {
  it.each([
    [[3, 1, 2], 2, 1, 3],
    [[3, null, 2, null], '-', 2, 3],
    [[null, 0], 0, 0, 0],
    [[null], '-', '-', '-'],
    [[], '-', '-', '-'],
  ] as const)('%j: last %j, lowest %j, highest %j', (values, last, lowest, highest) => {
    const times = values.map((_, n) => n);
    expect(summaryOf({ times, values: [...values] })).toEqual({ last, lowest, highest });
  });
});
