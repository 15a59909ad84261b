// Where to draw an actual value on a bar with its setpoint in the middle.
import type { SetpointAndActual } from './documents';

/** Distance from the setpoint, in tolerances, at which a bar ends. */
const farthest = 200;

/**
 * Maps a difference to the range from -1 to 1. The scale is logarithmic: half a degree is as easy to
 * see as a cold column.
 */
function placeOf(difference: number, tolerance: number): number {
  const part = Math.log1p(Math.abs(difference) / tolerance) / Math.log1p(farthest);
  return Math.sign(difference) * Math.min(1, part);
}

export interface Bar {
  /** The actual value, from -1 (far below the setpoint) to 1; undefined if a value is missing. */
  actual: number | undefined;
  /** Half the width of the range that counts as at setpoint. */
  band: number;
}

export function barOf({ Setpoint, Actual }: SetpointAndActual, tolerance: number): Bar {
  const hasBoth = typeof Setpoint === 'number' && typeof Actual === 'number';
  return {
    actual: hasBoth ? placeOf(Actual - Setpoint, tolerance) : undefined,
    band: placeOf(tolerance, tolerance),
  };
}
