// The peaks of a channel as sticks, with their retention times, amounts and names.
import { shortNumber, type CalibratedPeak } from '../peaks';
import { heightOf, marksOf, placeNames, shortened, type Decades, type TimeAxis } from '../sticks';
import { useRoving } from './useRoving';
import { useWidth } from './useWidth';

/** Lengths in pixels. */
const names = { letter: 7.2, most: 20, distance: 14, farthest: 45 };
const plot = { left: 48, right: 14, height: 120, above: 8 };
/** Room below the line, for times and their label. */
const foot = 38;
/** Width of the area in which a stick can be clicked. */
const reach = 12;
/** With more sticks than this, they are drawn thin. */
const crowd = 40;

export type TimedPeak = CalibratedPeak & { time: number };

export function hasTime(peak: CalibratedPeak): peak is TimedPeak {
  return peak.time !== undefined;
}

interface Props {
  channel: string;
  peaks: readonly TimedPeak[];
  decades: Decades;
  axis: TimeAxis;
  /** Width of the longest name, in letters. */
  longestName: number;
  timeLabel: string;
  describe: (peak: CalibratedPeak) => string;
  focusedRow: number | undefined;
  onChoose: (peak: CalibratedPeak) => void;
  /** Called with the peak that has the focus, or undefined when none has. */
  onReach: (peak: CalibratedPeak | undefined) => void;
}

export function Sticks(props: Props) {
  const {
    channel,
    peaks,
    longestName,
    decades,
    axis,
    timeLabel,
    describe,
    focusedRow,
    onChoose,
    onReach,
  } = props;
  const [place, width] = useWidth<HTMLDivElement>();
  const head = Math.round(16 + Math.min(names.most, longestName) * names.letter);
  const floor = head + plot.height;
  const total = floor + foot;
  const right = width - plot.right;
  const xOf = (time: number): number =>
    plot.left + ((time - axis.begin) / (axis.end - axis.begin)) * (right - plot.left);
  const yOf = (amount: number): number =>
    floor - heightOf(amount, decades) * (plot.height - plot.above);
  const topOf = ({ amount }: CalibratedPeak): number =>
    amount === undefined ? floor - 14 : yOf(amount);

  const ordered = [...peaks].sort((a, b) => a.time - b.time || a.index - b.index);
  const places = placeNames(
    ordered.map(({ time, amount = 0, index }) => ({
      at: xOf(time),
      weight: index === focusedRow ? Infinity : amount,
    })),
    { ...names, from: plot.left + 2, to: right },
  );
  const isCrowded = peaks.length > crowd;
  const unnamed = places.filter((one) => one === undefined).length;

  /** How far down a stick can be clicked: to the top of a shorter one close to it. */
  const reachedTo = (peak: TimedPeak): number =>
    Math.min(
      floor + 6,
      ...ordered
        .filter(({ time }) => Math.abs(xOf(time) - xOf(peak.time)) < reach)
        .map((other) => topOf(other) - 8)
        .filter((end) => end > topOf(peak) - 8),
    );

  const stop = useRoving(
    ordered.length,
    (n) => onChoose(ordered[n]!),
    (n) => onReach(n === undefined ? undefined : ordered[n]),
  );

  const stick = (peak: TimedPeak, n: number) => {
    const x = xOf(peak.time);
    const top = topOf(peak);
    const nameAt = places[n];
    const isFocused = peak.index === focusedRow;
    const isUnknown = peak.amount === undefined;
    return (
      <g key={peak.rowId} role="listitem">
        <g
          role="button"
          class={`stick${isFocused ? ' focused' : ''}${isUnknown ? ' unknown' : ''}`}
          data-peak={peak.rowId}
          aria-label={describe(peak)}
          aria-current={isFocused ? 'true' : undefined}
          {...stop(n)}
        >
          <title>{describe(peak)}</title>
          <rect
            class="reach"
            x={x - reach / 2}
            y={top - 8}
            width={reach}
            height={reachedTo(peak) - top + 8}
          />
          {isUnknown ? (
            <text class="mark" x={x} y={floor - 4} text-anchor="middle">
              ?
            </text>
          ) : (
            <>
              <line x1={x} y1={floor} x2={x} y2={top} />
              <circle
                class={peak.amount === 0 ? 'none' : ''}
                cx={x}
                cy={top}
                r={isCrowded ? 1.5 : 3}
              />
            </>
          )}
          {isFocused && <path class="pointer" d={`M${x} ${floor + 2}l-5 8h10z`} />}
          {nameAt !== undefined && (
            <>
              <path class="leader" d={`M${x} ${top - 4}V${head + 2}L${nameAt} ${head - 8}`} />
              <text class="name" transform={`translate(${nameAt + 4} ${head - 10}) rotate(-90)`}>
                {shortened(peak.name, names.most)}
              </text>
            </>
          )}
        </g>
      </g>
    );
  };

  return (
    <div ref={place} class={`sticks${isCrowded ? ' crowded' : ''}`}>
      <svg
        viewBox={`0 0 ${width} ${total}`}
        height={total}
        role="list"
        aria-label={`Peaks of channel ${channel}`}
      >
        <g class="axes" aria-hidden="true">
          {marksOf(decades).map((mark) => (
            <g key={mark}>
              <line class="ruler" x1={plot.left} y1={yOf(mark)} x2={right} y2={yOf(mark)} />
              <text x={plot.left - 6} y={yOf(mark) + 4} text-anchor="end">
                {shortNumber(mark)}
              </text>
            </g>
          ))}
          <line x1={plot.left} y1={floor} x2={right} y2={floor} />
          <text x={plot.left - 6} y={floor + 4} text-anchor="end">
            0
          </text>
          {axis.marks.map((mark) => (
            <g key={mark}>
              <line x1={xOf(mark)} y1={floor} x2={xOf(mark)} y2={floor + 4} />
              <text x={xOf(mark)} y={floor + 22} text-anchor="middle">
                {shortNumber(mark)}
              </text>
            </g>
          ))}
          <text x={right} y={total - 2} text-anchor="end">
            {timeLabel}
          </text>
          {unnamed > 0 && (
            <text x={plot.left} y={total - 2}>
              {unnamed === 1 ? '1 name has' : `${unnamed} names have`} no room
            </text>
          )}
        </g>
        {ordered.map(stick)}
      </svg>
    </div>
  );
}
