// The state of the instrument in large letters, for a display that nobody touches.
import { AlarmSign, SimulatedBanner } from '../components/Header';
import { Progress } from '../components/Progress';
import { describeFault, isStale, ageSeconds, status, statusFault } from '../store';
import { formatPosition, formatSpan } from '../format';
import { controlledOf } from '../quantities';
import { isError } from '../states';

function Age() {
  const age = ageSeconds.value;
  return (
    <p class={isStale.value ? 'stale-mark' : 'dim'}>
      {age === Infinity ? 'No data yet' : `Data ${formatSpan(age)} old`}
    </p>
  );
}

export function WallPage() {
  const current = status.value;
  const fault = statusFault.value;
  const controlled = current ? controlledOf(current) : [];
  const off = controlled.filter(({ deviation }) => deviation.level === 'off');
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
          <AlarmSign />
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
            {off.length === 0 ? (
              <p class="deviation good">All temperatures and pressures at setpoint</p>
            ) : (
              <ul class="wall-off">
                {off.map(({ label, deviation }) => (
                  <li key={label} class="deviation off">
                    {label}: {deviation.text}
                  </li>
                ))}
              </ul>
            )}
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
