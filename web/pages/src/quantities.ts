// The quantities with a setpoint: their names, decimals and tolerances.
import { channelKeys, type SetpointAndActual, type Status, type Units } from './documents';
import { deviationOf, formatReal, type Deviation } from './format';

/** How a value is shown with its setpoint. */
export interface Measure {
  decimals: number;
  /** In the instrument's own unit: half a degree, one kilopascal. */
  tolerance: number;
  unit: keyof Units;
}

export interface Quantity extends Measure {
  key: 'Column_temp' | 'Injector_temp' | 'Column_press';
  label: string;
  /** For use where there is little room. */
  short: string;
}

export const quantities: readonly Quantity[] = [
  {
    key: 'Column_temp',
    label: 'Column temperature',
    short: 'Column temp.',
    decimals: 2,
    tolerance: 0.5,
    unit: 'temperature',
  },
  {
    key: 'Injector_temp',
    label: 'Injector temperature',
    short: 'Injector temp.',
    decimals: 2,
    tolerance: 0.5,
    unit: 'temperature',
  },
  {
    key: 'Column_press',
    label: 'Column pressure',
    short: 'Pressure',
    decimals: 1,
    tolerance: 1,
    unit: 'pressure',
  },
];

export const sampleLine = {
  label: 'Sample line temperature',
  short: 'Sample line temp.',
  decimals: 2,
  tolerance: 1,
  unit: 'temperature',
} as const;

export interface Controlled {
  actual: string;
  deviation: Deviation;
  pair: SetpointAndActual;
  measure: Measure;
  /** Name of the actual value in the history. */
  name: string;
}

/** Name in the history of the actual value at a place such as `Channel1.Column_temp`. */
export function seriesOf(place: string): string {
  return `${place}.Actual`;
}

export interface ControlledRow {
  label: string;
  /** In the order of `quantities`; the sample line has only one. */
  cells: Controlled[];
}

/** Everything with a setpoint in this status: a row for each channel and for the sample line. */
export function controlledOf(status: Status): ControlledRow[] {
  const build = (pair: SetpointAndActual, measure: Measure, place: string): Controlled => ({
    actual: formatReal(pair.Actual, measure.decimals),
    deviation: deviationOf(pair, measure.tolerance, measure.decimals),
    pair,
    measure,
    name: seriesOf(place),
  });
  const rows = channelKeys.flatMap((key, index) => {
    const channel = status[key];
    if (!channel) {
      return [];
    }
    const cells = quantities.map((quantity) =>
      build(channel[quantity.key], quantity, `${key}.${quantity.key}`),
    );
    return [{ label: `Channel ${index + 1}`, cells }];
  });
  const { Sample_line_temp: line } = status;
  return line.Setpoint === '-' && line.Actual === '-'
    ? rows
    : [...rows, { label: 'Sample line', cells: [build(line, sampleLine, 'Sample_line_temp')] }];
}
