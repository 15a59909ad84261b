// The state of the instrument in large letters, for a display that nobody touches.
import { AlarmSign, SimulatedBanner } from '../components/Header';
import { Progress } from '../components/Progress';
import { describeFault, isStale, ageSeconds, status, statusFault } from '../store';
import { formatPosition, formatSpan } from '../format';
import type { Status } from '../documents';
import { controlledOf, quantities } from '../quantities';
import { isError } from '../states';

function Age() {
  const age = ageSeconds.value;
  return (
    <p class={isStale.value ? 'stale-mark' : 'dim'}>
      {age === Infinity ? 'No data yet' : `Data ${formatSpan(age)} old`}
    </p>
  );
}

/** The measured values, and how each stands to its setpoint. */
function Values({ current }: { current: Status }) {
  return (
    <table class="wall-values">
      <caption class="hidden">Temperatures and pressures</caption>
      <thead>
        <tr>
          <td />
          {quantities.map(({ key, short }) => (
            <th key={key} scope="col">
              {short}
            </th>
          ))}
        </tr>
      </thead>
      <tbody>
        {controlledOf(current).map(({ label, cells }) => (
          <tr key={label}>
            <th scope="row">{label}</th>
            {cells.map(({ actual, deviation }, index) => (
              <td
                key={index}
                colSpan={cells.length === 1 ? quantities.length : 1}
                class={`deviation ${deviation.level}`}
              >
                {deviation.level !== 'none' && <span class="number">{actual} </span>}
                <small>{deviation.text}</small>
              </td>
            ))}
          </tr>
        ))}
      </tbody>
    </table>
  );
}

export function WallPage() {
  const current = status.value;
  const fault = statusFault.value;
  return (
    <div class={isStale.value ? 'wall stale' : 'wall'}>
      <SimulatedBanner />
      {current && (
        <>
          <h1 class="text">{current.Application || 'Instrument without a name'}</h1>
          <p class={isError(current) ? 'wall-state live error' : 'wall-state live'}>
            {current.GC_state}
          </p>
          {isError(current) && (
            <p class="text">
              Error {current.Error_code}: {current.Error_str}
            </p>
          )}
          <p class="live">
            <AlarmSign />
          </p>
          <div class="wall-columns live">
            <dl class="wall-facts">
              <dt>Run</dt>
              <dd>
                <Progress status={current} />
              </dd>
              <dt>Stream</dt>
              <dd>{current.Curr_stream}</dd>
              <dt>Automation</dt>
              <dd>{current.Auto_state}</dd>
              <dt>Sequence</dt>
              <dd>
                {formatPosition(current.Seq_line, current.Line_replicate, current.Seq_replicate)}
              </dd>
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
