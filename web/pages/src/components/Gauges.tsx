// A value against its setpoint, and its last ten minutes; screen readers read the numbers instead.
import { barOf } from '../bars';
import type { SetpointAndActual } from '../documents';
import { sparkHeight, sparkOf, sparkSeconds, sparkWidth } from '../sparklines';
import { history, now, samples } from '../store';

/** Half of the bar's width and its height, in the picture's units. */
const half = 50;
const height = 10;

export function Bar({ pair, tolerance }: { pair: SetpointAndActual; tolerance: number }) {
  const { actual, band } = barOf(pair, tolerance);
  return (
    <svg
      class="bar-gauge"
      viewBox={`0 0 ${2 * half} ${height}`}
      preserveAspectRatio="none"
      aria-hidden="true"
    >
      <rect class="gauge-ground" width={2 * half} height={height} />
      <rect class="gauge-band" x={half - half * band} width={2 * half * band} height={height} />
      {actual !== undefined && (
        <>
          <rect
            class={Math.abs(actual) > band ? 'gauge-far' : 'gauge-near'}
            x={half + half * Math.min(0, actual)}
            width={half * Math.abs(actual)}
            y={height * 0.3}
            height={height * 0.4}
          />
          <rect
            class={Math.abs(actual) > band ? 'gauge-far' : 'gauge-near'}
            x={half + half * 0.96 * actual - 2}
            width={4}
            height={height}
          />
        </>
      )}
    </svg>
  );
}

export function Sparkline(props: { name: string; pair: SetpointAndActual; tolerance: number }) {
  const { name, pair, tolerance } = props;
  // The history is not a signal itself.
  void samples.value;
  const seconds = now.value / 1000;
  const points = history.recent(name, seconds - sparkSeconds);
  const { path, band } = sparkOf(points, seconds, pair.Setpoint, tolerance);
  return (
    <svg
      class="sparkline"
      viewBox={`0 0 ${sparkWidth} ${sparkHeight}`}
      preserveAspectRatio="none"
      aria-hidden="true"
    >
      {band && <rect class="gauge-band" y={band.top} width={sparkWidth} height={band.height} />}
      <path d={path} vector-effect="non-scaling-stroke" />
    </svg>
  );
}
