// The instrument's state in large letters, for a display that nobody operates.
import { ActiveAlarms } from '../components/ActiveAlarms';
import { ExpectedEnd } from '../components/ExpectedEnd';
import { Bar, Sparkline } from '../components/Gauges';
import { AlarmSign, SimulatedBanner } from '../components/Header';
import { Lost } from '../components/Lost';
import { Progress } from '../components/Progress';
import { ageSeconds, describeFault, isStale, lostSince, status, statusFault } from '../store';
import { formatPosition, formatSpan } from '../format';
import type { Status } from '../documents';
import { controlledOf, quantities, type Controlled } from '../quantities';
import { isError, withoutNothing } from '../states';
import { nameWithUnit, valueWithUnit } from '../units';

/** The most alarms that there is room for by name. */
const mostAlarms = 3;

function Age() {
  const age = ageSeconds.value;
  return (
    <p class={isStale.value ? 'stale-mark' : 'dim'}>
      {age === Infinity ? 'No data yet' : `Data ${formatSpan(age)} old`}
    </p>
  );
}

function Cell({ cell, isAlone }: { cell: Controlled; isAlone: boolean }) {
  const { actual, deviation, pair, measure, name } = cell;
  const text = isAlone ? valueWithUnit(actual, measure.unit) : actual;
  return (
    <td colSpan={isAlone ? quantities.length : 1} class={`deviation ${deviation.level}`}>
      {deviation.level === 'none' ? (
        <small>{deviation.text}</small>
      ) : (
        <div class="wall-cell">
          <span class="number">{text} </span>
          <Sparkline name={name} pair={pair} tolerance={measure.tolerance} />
          <small>{deviation.text}</small>
          <Bar pair={pair} tolerance={measure.tolerance} />
        </div>
      )}
    </td>
  );
}

/** The measured values, and how each compares with its setpoint. */
function Values({ current }: { current: Status }) {
  return (
    <table class="wall-values">
      <caption class="hidden">Temperatures and pressures</caption>
      <thead>
        <tr>
          <td />
          {quantities.map(({ key, short, unit }) => (
            <th key={key} scope="col">
              {nameWithUnit(short, unit)}
            </th>
          ))}
        </tr>
      </thead>
      <tbody>
        {controlledOf(current).map(({ label, cells }) => (
          <tr key={label}>
            <th scope="row">{label}</th>
            {cells.map((cell, index) => (
              <Cell key={index} cell={cell} isAlone={cells.length === 1} />
            ))}
          </tr>
        ))}
      </tbody>
    </table>
  );
}

/** The instrument's state, or that it is unknown, with the last known state in small letters. */
function State({ current }: { current: Status }) {
  const isLost = lostSince.value !== undefined;
  const error = isError(current) ? `Error ${current.Error_code}: ${current.Error_str}` : '';
  return (
    <>
      <Lost look="wall-state lost" />
      {!isLost && (
        <p class={error ? 'wall-state live error' : 'wall-state live'}>
          {withoutNothing(current.GC_state)}
        </p>
      )}
      {error && <p class={isLost ? 'text live' : 'text'}>{error}</p>}
      <div class="wall-alarm live">
        {isLost && <span>Last known: {withoutNothing(current.GC_state)}</span>}
        <AlarmSign />
        <ActiveAlarms most={mostAlarms} />
      </div>
    </>
  );
}

export function WallPage() {
  const current = status.value;
  const fault = statusFault.value;
  return (
    <div class={isStale.value ? 'wall stale' : 'wall'}>
      <SimulatedBanner />
      {!current && <p class="wall-state">No answer yet</p>}
      {current && (
        <>
          <h1 class="text">{current.Application || 'Instrument without a name'}</h1>
          <State current={current} />
          <div class="wall-columns live">
            <dl class="wall-facts">
              <dt>Run</dt>
              <dd>
                <Progress status={current} />
              </dd>
              <dt>Stream</dt>
              <dd>{current.Curr_stream}</dd>
              <dt>Automation</dt>
              <dd>{withoutNothing(current.Auto_state)}</dd>
              <dt>Sequence</dt>
              <dd>
                {formatPosition(current.Seq_line, current.Line_replicate, current.Seq_replicate)}
              </dd>
              <ExpectedEnd isBrief />
              <dt>Last analysis</dt>
              <dd>No. {current.Last_counter}</dd>
            </dl>
            <Values current={current} />
          </div>
        </>
      )}
      <footer>
        <Age />
        {fault && <p class="message bad">{describeFault(fault)}</p>}
        <a href="#/status">All pages</a>
      </footer>
    </div>
  );
}
