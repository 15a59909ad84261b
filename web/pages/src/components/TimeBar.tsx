// A pass through the sequence as a bar over time: each line's flushing and runs.
import {
  describeStretch,
  fitting,
  markText,
  placeAfter,
  timeMarks,
  type Stretch,
  type Timeline,
} from '../timeline';
import { useRoving } from './useRoving';
import { useWidth } from './useWidth';

/** Lengths in pixels. */
const bar = { left: 10, right: 24, top: 22, height: 34 };
const bottom = bar.top + bar.height;
const total = bottom + 42;
/** Width of a letter of a label, and the least width at which runs are drawn separately. */
const letter = 7.2;
const least = 5;
/** Width reserved for a mark's text. */
const markWidth = 70;

interface Props {
  label: string;
  timeline: Timeline;
  focusedLine?: number | undefined;
  /** The automation's position, in the units of the timeline. */
  position?: number | undefined;
  /** Called when a line is chosen; without it, nothing in the bar can be chosen. */
  onChoose?: (stretch: Stretch) => void;
}

export function TimeBar({ label, timeline, focusedLine, position, onChoose }: Props) {
  const [place, width] = useWidth<HTMLDivElement>();
  const { stretches, length, seconds } = timeline;
  const room = width - bar.left - bar.right;
  const xOf = (at: number): number => bar.left + (at / (length || 1)) * room;
  const markAt = (mark: number): number => xOf(placeAfter(timeline, mark));
  const stop = useRoving(stretches.length, (n) => onChoose?.(stretches[n]!));

  const runsOf = ({ from, flushing, running, runs }: Stretch) => {
    const begin = xOf(from + flushing);
    const each = (xOf(from + flushing + running) - begin) / runs;
    const shown = each < least ? 1 : runs;
    const wide = (each * runs) / shown;
    return Array.from({ length: shown }, (_, n) => (
      <rect
        key={n}
        class="run"
        x={begin + n * wide}
        y={bar.top}
        width={Math.max(1, wide - (shown > 1 || wide > least ? 1 : 0))}
        height={bar.height}
      />
    ));
  };

  const stretch = (one: Stretch, n: number) => {
    const { line, type, stream, from, flushing, running } = one;
    const [x, end] = [xOf(from), xOf(from + flushing + running)];
    const isFocused = line === focusedLine;
    const texts = [`${line} ${type}, stream ${stream}`, `${line} ${type}`, `${line}`];
    const text = describeStretch(one, timeline);
    return (
      <g key={line} role="listitem">
        <g
          role={onChoose ? 'button' : 'img'}
          class={`stretch type-${type.toLowerCase()}${isFocused ? ' focused' : ''}`}
          aria-label={text}
          aria-current={isFocused ? 'true' : undefined}
          {...(onChoose && stop(n))}
        >
          <title>{text}</title>
          <rect class="reach" x={x} y={bar.top - 3} width={end - x} height={bar.height + 24} />
          {flushing > 0 && (
            <rect
              class={one.isFlushUnknown ? 'flush unknown' : 'flush'}
              x={x}
              y={bar.top + bar.height * 0.65}
              width={Math.max(1, xOf(from + flushing) - x - 1)}
              height={bar.height * 0.35}
            />
          )}
          {runsOf(one)}
          {isFocused && (
            <rect
              class="frame"
              x={x - 1}
              y={bar.top - 3}
              width={end - x + 2}
              height={bar.height + 6}
            />
          )}
          <text class="line-name" x={(x + end) / 2} y={bottom + 15} text-anchor="middle">
            {fitting(texts, isFocused && end - x < letter * 3 ? 3 : (end - x) / letter)}
          </text>
        </g>
      </g>
    );
  };

  const now = position === undefined ? undefined : xOf(Math.min(position, length));
  return (
    <div ref={place} class="time-bar">
      <p>{label}</p>
      <svg
        viewBox={`0 0 ${width} ${total}`}
        height={total}
        role={stretches.length > 0 ? 'list' : 'img'}
        aria-label={label}
      >
        {stretches.map(stretch)}
        <g class="axes" aria-hidden="true">
          {seconds !== undefined &&
            timeMarks(seconds, Math.max(2, room / markWidth)).map((mark) => (
              <g key={mark}>
                <line x1={markAt(mark)} y1={bottom + 20} x2={markAt(mark)} y2={bottom + 25} />
                <text x={markAt(mark)} y={total - 4} text-anchor="middle">
                  {markText(mark)}
                </text>
              </g>
            ))}
          <line x1={bar.left} y1={bottom + 20} x2={bar.left + room} y2={bottom + 20} />
          {now !== undefined && (
            <g class="now" data-testid="position">
              <path d={`M${now} ${bar.top - 1}l-6 -9h12z`} />
              <line x1={now} y1={bar.top - 6} x2={now} y2={bottom + 4} />
            </g>
          )}
        </g>
      </svg>
    </div>
  );
}
