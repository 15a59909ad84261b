// The last ten minutes of a value as a line without axes.
import type { Points } from './history';
import type { Real } from './documents';

export const sparkSeconds = 600;

/** Seconds that share a point: a line that is redrawn every second must not jitter. */
const stepSeconds = 5;
/** Steps without a value after which the line is broken. */
const longestGap = 4;

/** Size of the picture. */
export const sparkWidth = sparkSeconds / stepSeconds;
export const sparkHeight = 24;

/** The least span of the height, in tolerances, so that noise does not fill it. */
const leastTolerances = 8;

export interface Spark {
  /** The line as an SVG path. */
  path: string;
  /** Top and height of the range that counts as at setpoint; undefined without a setpoint. */
  band: { top: number; height: number } | undefined;
}

type Place = { x: number; value: number };

/** Stretches without a gap, with at most one point for each step: its latest. */
function stretchesOf({ times, values }: Points, begin: number): Place[][] {
  const stretches: Place[][] = [];
  let open: Place[] | undefined;
  times.forEach((time, index) => {
    const value = values[index] ?? null;
    const x = Math.floor((time - begin) / stepSeconds);
    const last = open?.at(-1);
    if (value === null) {
      open = undefined;
    } else if (x < 0 || x >= sparkWidth) {
      return;
    } else if (open && last?.x === x) {
      last.value = value;
    } else if (open && last && x - last.x <= longestGap) {
      open.push({ x, value });
    } else {
      open = [{ x, value }];
      stretches.push(open);
    }
  });
  return stretches;
}

/** `now` is in seconds; if the line ends before the right edge, values are missing. */
export function sparkOf(points: Points, now: number, setpoint: Real, tolerance: number): Spark {
  const begin = (Math.floor(now / stepSeconds) + 1) * stepSeconds - sparkSeconds;
  const stretches = stretchesOf(points, begin);
  const seen = stretches.flat().map(({ value }) => value);
  const shown =
    typeof setpoint === 'number' ? [...seen, setpoint - tolerance, setpoint + tolerance] : seen;
  if (shown.length === 0) {
    return { path: '', band: undefined };
  }
  const low = Math.min(...shown);
  const high = Math.max(...shown);
  const span = Math.max(high - low, leastTolerances * tolerance);
  const middle = (low + high) / 2;
  const tenths = (length: number): number => Math.round(length * 10) / 10;
  const y = (value: number): number =>
    tenths((0.5 - (0.9 * (value - middle)) / span) * sparkHeight);
  const draw = (stretch: readonly Place[]): string =>
    stretch.length === 1
      ? // A single point would be invisible.
        `M${stretch[0]!.x} ${y(stretch[0]!.value)}h1`
      : stretch.map(({ x, value }, index) => `${index === 0 ? 'M' : 'L'}${x} ${y(value)}`).join('');
  const top = typeof setpoint === 'number' ? y(setpoint + tolerance) : 0;
  return {
    path: stretches.map(draw).join(''),
    band:
      typeof setpoint === 'number'
        ? { top, height: Math.max(1, tenths(y(setpoint - tolerance) - top)) }
        : undefined,
  };
}
