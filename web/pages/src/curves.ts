// The curves available for an instrument, and the spans of their axes.
import { channelKeys, type Real, type Status, type Units } from './documents';
import type { Points } from './history';
import { quantities, sampleLine } from './quantities';

export interface Curve {
  /** Name in the history. */
  name: string;
  label: string;
  isSetpoint: boolean;
}

export interface Choice {
  label: string;
  decimals: number;
  unit: keyof Units;
  curves: Curve[];
}

/** The choices for an instrument with the channels in this status. */
export function choicesOf(status: Status): Choice[] {
  const installed = channelKeys
    .map((key, index) => ({ key, label: `Channel ${index + 1}` }))
    .filter(({ key }) => status[key]);
  const pair = (name: string): Curve[] => [
    { name: `${name}.Actual`, label: 'Actual', isSetpoint: false },
    { name: `${name}.Setpoint`, label: 'Setpoint', isSetpoint: true },
  ];
  const single = (name: string, label: string): Curve[] => [{ name, label, isSetpoint: false }];
  return [
    ...quantities.flatMap(({ key: quantity, label, decimals, unit }) => [
      {
        label: `${label}, all channels`,
        decimals,
        unit,
        curves: installed.flatMap(({ key, label: name }) =>
          single(`${key}.${quantity}.Actual`, name),
        ),
      },
      ...installed.map(({ key, label: name }) => ({
        label: `${label}, ${name.toLowerCase()}`,
        decimals,
        unit,
        curves: pair(`${key}.${quantity}`),
      })),
    ]),
    {
      label: 'Auto zero, all channels',
      decimals: 3,
      unit: 'auto_zero',
      curves: installed.flatMap(({ key, label }) => single(`${key}.Auto_zero`, label)),
    },
    ...(status.Sample_line_temp.Setpoint === '-'
      ? []
      : [
          {
            label: sampleLine.label,
            decimals: sampleLine.decimals,
            unit: sampleLine.unit,
            curves: pair('Sample_line_temp'),
          },
        ]),
    {
      label: 'Ambient temperature',
      decimals: 0,
      unit: 'temperature',
      curves: single('Ambient_temp', 'Ambient'),
    },
    {
      label: 'Ambient pressure',
      decimals: 2,
      unit: 'ambient_pressure',
      curves: single('Ambient_press', 'Ambient'),
    },
  ];
}

/** The shortest span of the time axis. */
const leastSeconds = 60;

/** The span of the time axis; without samples it ends now. */
export function timeSpan(times: ArrayLike<number>, now: number): [number, number] {
  const last = times[times.length - 1] ?? now;
  return [Math.min(times[0] ?? last, last - leastSeconds), last];
}

/** The span of the value axis, with margins; it is never so small that noise fills it. */
export function valueSpan(
  low: number | null,
  high: number | null,
  decimals: number,
): [number, number] {
  if (low === null || high === null) {
    return [0, 1];
  }
  const least = Math.min(10, 100 * 10 ** -decimals);
  const room = Math.max((high - low) * 0.1, (least - (high - low)) / 2);
  return [low - room, high + room];
}

export interface Summary {
  last: Real;
  lowest: Real;
  highest: Real;
}

/** Summarizes a curve in three numbers. */
export function summaryOf({ values }: Points): Summary {
  const known = values.filter((value) => value !== null);
  return known.length === 0
    ? { last: '-', lowest: '-', highest: '-' }
    : { last: values.at(-1) ?? '-', lowest: Math.min(...known), highest: Math.max(...known) };
}
