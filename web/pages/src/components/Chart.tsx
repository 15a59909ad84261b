// Curves of the last hour, and the same in numbers for users who cannot see them.
import { useEffect, useLayoutEffect, useRef, useState } from 'preact/hooks';
import uPlot from 'uplot';
import 'uplot/dist/uPlot.min.css';
import { choicesOf, summaryOf, timeSpan, valueSpan, type Choice, type Curve } from '../curves';
import type { Real, Status } from '../documents';
import { formatReal } from '../format';
import type { Points } from '../history';
import { history, samples } from '../store';
import { nameWithUnit, unitOf } from '../units';

const height = 240;
/** Possible distances between two marks of the time axis, in seconds. */
const timeSteps = [10, 30, 60, 120, 300, 600, 900, 1800];
/** Line styles, so that curves can be told apart without colour. */
const dashes = [[], [10, 4], [3, 3], [12, 3, 3, 3]];

function colour(name: string): string {
  return getComputedStyle(document.documentElement).getPropertyValue(name).trim();
}

function optionsOf(choice: Choice, width: number): uPlot.Options {
  const axis = {
    stroke: colour('--dim'),
    grid: { stroke: colour('--line'), width: 1 },
    ticks: { stroke: colour('--line'), width: 1 },
  };
  const values = (_: uPlot, splits: number[]): string[] =>
    splits.map((split) => Number(split.toFixed(6)).toString());
  return {
    width,
    height,
    legend: { show: false },
    cursor: { show: false },
    scales: {
      // By default, uPlot would show a whole day for a single sample.
      x: { range: ({ data: [times] }) => timeSpan(times, Date.now() / 1000) },
      y: { range: (_, low, high) => valueSpan(low, high, choice.decimals) },
    },
    axes: [
      { ...axis, space: 90, incrs: timeSteps, values: [[1, '{HH}:{mm}:{ss}']] },
      { ...axis, size: 64, values },
    ],
    series: [
      {},
      ...choice.curves.map(({ label, isSetpoint }, index) => ({
        label,
        stroke: colour(isSetpoint ? '--dim' : `--curve-${index + 1}`),
        width: isSetpoint ? 1 : 2,
        dash: isSetpoint ? [4, 4] : (dashes[index] ?? []),
        points: { show: false },
      })),
    ],
  };
}

function dataOf(curves: readonly Points[]): uPlot.AlignedData {
  return [curves[0]?.times ?? [], ...curves.map(({ values }) => values)];
}

/** Whether the browser asks for dark colours; the curves are redrawn when this changes. */
function useIsDark(): boolean {
  const query = matchMedia('screen and (prefers-color-scheme: dark)');
  const [isDark, setIsDark] = useState(query.matches);
  useEffect(() => {
    const change = (): void => setIsDark(query.matches);
    query.addEventListener('change', change);
    return () => query.removeEventListener('change', change);
  }, []);
  return isDark;
}

function Sample({ curve, index }: { curve: Curve; index: number }) {
  return (
    <svg class="sample" viewBox="0 0 32 8" aria-hidden="true">
      <line
        x1="0"
        y1="4"
        x2="32"
        y2="4"
        class={curve.isSetpoint ? 'curve-setpoint' : `curve-${index + 1}`}
        stroke-dasharray={curve.isSetpoint ? '4 4' : (dashes[index] ?? []).join(' ')}
      />
    </svg>
  );
}

function Numbers({ choice, points }: { choice: Choice; points: readonly Points[] }) {
  return (
    <table class="numbers">
      <caption class="hidden">{choice.label} in numbers</caption>
      <thead>
        <tr>
          <th scope="col">Curve</th>
          <th scope="col">{nameWithUnit('Now', choice.unit)}</th>
          <th scope="col">Lowest</th>
          <th scope="col">Highest</th>
        </tr>
      </thead>
      <tbody>
        {choice.curves.map((curve, index) => {
          const { last, lowest, highest } = summaryOf(points[index]!);
          const text = (value: Real): string => formatReal(value, choice.decimals);
          return (
            <tr key={curve.name}>
              <th scope="row">
                <Sample curve={curve} index={index} /> {curve.label}
              </th>
              <td class="number">{text(last)}</td>
              <td class="number">{text(lowest)}</td>
              <td class="number">{text(highest)}</td>
            </tr>
          );
        })}
      </tbody>
    </table>
  );
}

export function Chart({ status }: { status: Status }) {
  const choices = choicesOf(status);
  const [wanted, setWanted] = useState('');
  const choice = choices.find(({ label }) => label === wanted) ?? choices[0]!;
  const isDark = useIsDark();
  const place = useRef<HTMLDivElement>(null);
  const plot = useRef<uPlot>();
  const shape = `${choice.label} ${choice.curves.length} ${isDark}`;
  void samples.value;
  const points = choice.curves.map(({ name }) => history.points(name));

  useLayoutEffect(() => {
    const { current } = place;
    if (!current) {
      return;
    }
    const made = new uPlot(optionsOf(choice, current.clientWidth), dataOf(points), current);
    plot.current = made;
    const observer = new ResizeObserver(() => made.setSize({ width: current.clientWidth, height }));
    observer.observe(current);
    return () => {
      observer.disconnect();
      made.destroy();
    };
  }, [shape]);
  useEffect(() => plot.current?.setData(dataOf(points)), [samples.value, shape]);

  return (
    <section aria-labelledby="curves">
      <div class="section-head">
        <h2 id="curves">Last hour</h2>
        <span>
          <label for="quantity">Quantity</label>{' '}
          <select
            id="quantity"
            value={choice.label}
            onChange={(event) => setWanted(event.currentTarget.value)}
          >
            {choices.map(({ label }) => (
              <option key={label} value={label}>
                {label}
              </option>
            ))}
          </select>{' '}
          {unitOf(choice.unit)}
        </span>
      </div>
      <div
        ref={place}
        class="chart"
        role="img"
        aria-label={`Curve: ${nameWithUnit(choice.label, choice.unit)}`}
      />
      <Numbers choice={choice} points={points} />
      <p class="dim">Kept in this browser tab while it is open.</p>
    </section>
  );
}
