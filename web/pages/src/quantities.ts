// The quantities with a setpoint: their names, decimals, and what counts as reached.
import { channelKeys, type SetpointAndActual, type Status } from './documents';
import { deviationOf, type Deviation } from './format';

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
  label: string;
  deviation: Deviation;
}

/** Everything that has a setpoint in this status. */
export function controlledOf(status: Status): Controlled[] {
  const build = (
    label: string,
    pair: SetpointAndActual,
    { decimals, tolerance }: { decimals: number; tolerance: number },
  ): Controlled => ({ label, deviation: deviationOf(pair, tolerance, decimals) });
  const list = channelKeys.flatMap((key, index) => {
    const channel = status[key];
    return channel
      ? quantities.map((quantity) =>
          build(
            `Channel ${index + 1} ${quantity.short.toLowerCase()}`,
            channel[quantity.key],
            quantity,
          ),
        )
      : [];
  });
  return [...list, build(sampleLine.short, status.Sample_line_temp, sampleLine)];
}
