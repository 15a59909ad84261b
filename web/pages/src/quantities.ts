// The quantities with a setpoint: their names, decimals, and what counts as reached.
import { channelKeys, type SetpointAndActual, type Status } from './documents';
import { deviationOf, formatReal, type Deviation } from './format';

export interface Quantity {
  key: 'Column_temp' | 'Injector_temp' | 'Column_press';
  label: string;
  /** For where there is little room. */
  short: string;
  decimals: number;
  /** In the instrument's own unit: half a degree, one kilopascal. */
  tolerance: number;
}

export const quantities: readonly Quantity[] = [
  {
    key: 'Column_temp',
    label: 'Column temperature',
    short: 'Column temp.',
    decimals: 2,
    tolerance: 0.5,
  },
  {
    key: 'Injector_temp',
    label: 'Injector temperature',
    short: 'Injector temp.',
    decimals: 2,
    tolerance: 0.5,
  },
  { key: 'Column_press', label: 'Column pressure', short: 'Pressure', decimals: 1, tolerance: 1 },
];

export const sampleLine = {
  label: 'Sample line temperature',
  short: 'Sample line temp.',
  decimals: 2,
  tolerance: 1,
} as const;

export interface Controlled {
  actual: string;
  deviation: Deviation;
}

export interface ControlledRow {
  label: string;
  /** In the order of `quantities`; of the sample line the first only. */
  cells: Controlled[];
}

/** Everything that has a setpoint in this status, a row for each channel. */
export function controlledOf(status: Status): ControlledRow[] {
  const build = (
    pair: SetpointAndActual,
    { decimals, tolerance }: { decimals: number; tolerance: number },
  ): Controlled => ({
    actual: formatReal(pair.Actual, decimals),
    deviation: deviationOf(pair, tolerance, decimals),
  });
  const rows = channelKeys.flatMap((key, index) => {
    const channel = status[key];
    if (!channel) {
      return [];
    }
    const cells = quantities.map((quantity) => build(channel[quantity.key], quantity));
    return [{ label: `Channel ${index + 1}`, cells }];
  });
  const { Sample_line_temp: line } = status;
  return line.Setpoint === '-' && line.Actual === '-'
    ? rows
    : [...rows, { label: 'Sample line', cells: [build(line, sampleLine)] }];
}
