// Where an actual value lies between its setpoint and far away.
import type { SetpointAndActual } from './documents';

/** So many tolerances away is the end of a bar. */
const farthest = 200;

/**
 * Places a difference between -1 and 1. It is compressed: half a degree is as easy to see as the
 * way from the cold.
 */
function placeOf(difference: number, tolerance: number): number {
  const part = Math.log1p(Math.abs(difference) / tolerance) / Math.log1p(farthest);
  return Math.sign(difference) * Math.min(1, part);
}

export interface Bar {
  /** The actual value, from -1 far below the setpoint to 1 far above; undefined without a pair. */
  actual: number | undefined;
  /** Half the width of what counts as reached. */
  band: number;
}

export function barOf({ Setpoint, Actual }: SetpointAndActual, tolerance: number): Bar {
  const hasBoth = typeof Setpoint === 'number' && typeof Actual === 'number';
  return {
    actual: hasBoth ? placeOf(Actual - Setpoint, tolerance) : undefined,
    band: placeOf(tolerance, tolerance),
  };
}
