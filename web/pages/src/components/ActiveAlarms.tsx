// The names of the active alarms, or why they are not known.
import { alarmSummary } from '../alarms';
import { describeFault } from '../store';

/** Empty while there is no alarm, as the alarm sign says so. `most`: names there is room for. */
export function ActiveAlarms({ most = Infinity }: { most?: number }) {
  const summary = alarmSummary.value;
  switch (summary.kind) {
    case 'unknown':
    case 'none':
      return null;
    case 'asking':
      return <p class="alarm-names">Reading which alarms are active.</p>;
    case 'unnamed':
      return (
        <p class="alarm-names">
          Which alarms are active is not known: {describeFault(summary.fault)}
        </p>
      );
    case 'named':
      return (
        <div class="alarm-names">
          {summary.names.length === 0 ? (
            <p>
              {summary.isWhole
                ? 'The alarm table names none at present: the alarm may have just ended.'
                : 'None of the alarms that can be shown is active: it is one further down the table.'}
            </p>
          ) : (
            <ul aria-label="Active alarms">
              {summary.names.slice(0, most).map((name, index) => (
                <li key={index} class="text">
                  {name}
                </li>
              ))}
              {summary.names.length > most && <li>and {summary.names.length - most} more</li>}
            </ul>
          )}
          {summary.fault && <p>This may have changed: {describeFault(summary.fault)}</p>}
        </div>
      );
  }
}
