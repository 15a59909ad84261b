// The instrument's alarms, and their reset.
import { useEffect, useState } from 'preact/hooks';
import { activeAlarms, alarms, alarmsFault, loadAlarms, nameOf } from '../alarms';
import { ActionButton } from '../components/ActionButton';
import { Confirm } from '../components/Dialog';
import { SoundSwitch } from '../components/SoundSwitch';
import type { Alarm } from '../documents';
import { followAlarmReset } from '../follow';
import { say } from '../notices';
import { command, describeFault, knownStatus, returns, statusFault } from '../store';

const resetName = 'Reset of all alarms';

/** Milliseconds between two requests for the table. */
const interval = 15_000;

function AlarmTable({ id, title, alarms }: { id: string; title: string; alarms: Alarm[] }) {
  return (
    <section class="live" aria-labelledby={id}>
      <h2 id={id}>
        {title} ({alarms.length})
      </h2>
      {alarms.length > 0 && (
        <table class="alarms">
          <thead>
            <tr>
              <th scope="col">State</th>
              <th scope="col">Group</th>
              <th scope="col">Alarm</th>
              <th scope="col">Runs watched</th>
            </tr>
          </thead>
          <tbody>
            {alarms.map((alarm, index) => (
              <tr key={index}>
                <td class={alarm.Triggered ? 'deviation off' : undefined}>
                  {alarm.Triggered ? 'active' : 'not active'}
                </td>
                <td>{alarm.GroupStr}</td>
                <td class="text">
                  {alarm.ParamStr === '--' ? 'no such parameter' : alarm.ParamStr}
                </td>
                <td>{alarm.SampleType}</td>
              </tr>
            ))}
          </tbody>
        </table>
      )}
    </section>
  );
}

/** That no alarm is active is certain only if status and report both say so. */
function reasonAgainstReset(): string {
  if (!knownStatus.value || knownStatus.value.Alarm_overall || activeAlarms.value.length > 0) {
    return '';
  }
  if (!alarms.value) {
    return alarmsFault.value ? '' : 'The alarms are being read.';
  }
  return 'No alarm is active.';
}

function AskReset({ onYes, onNo }: { onYes: () => void; onNo: () => void }) {
  const active = activeAlarms.value;
  return (
    <Confirm title="Reset all alarms?" yes="Reset" action="alarm-reset" onYes={onYes} onNo={onNo}>
      {active.length > 0 ? (
        <>
          <p>These are active and will be reset:</p>
          <ul>
            {active.map((alarm, index) => (
              <li key={index} class="text">
                {nameOf(alarm)}
              </li>
            ))}
          </ul>
        </>
      ) : (
        <p>It is not known which alarms are active. All are reset.</p>
      )}
      <p>An alarm whose cause persists comes back at once.</p>
    </Confirm>
  );
}

export function AlarmsPage() {
  const [isAsking, setIsAsking] = useState(false);

  const reset = async (): Promise<void> => {
    setIsAsking(false);
    const send = { method: 'POST', path: 'alarm-reset', body: {} } as const;
    const answer = await command(resetName, send, followAlarmReset);
    const after = await loadAlarms();
    const names = activeAlarms.value.map(nameOf).join('; ');
    if (answer.ok && after && names !== '') {
      const text = `${resetName}: accepted. Still active, because the cause persists: ${names}.`;
      say(send.path, { kind: 'bad', text }, { holds: ({ Alarm_overall }) => Alarm_overall });
    }
  };

  // Regularly, and when the instrument comes back; alarms.ts does so when the alarm sign changes.
  useEffect(() => {
    void loadAlarms();
    const timer = setInterval(() => {
      if (!document.hidden) {
        void loadAlarms();
      }
    }, interval);
    return () => clearInterval(timer);
  }, [returns.value]);

  const report = alarms.value;
  const fault = alarmsFault.value;
  const rows = report?.rows ?? [];
  const active = activeAlarms.value;
  // The status shows an alarm that the older report does not name.
  const isBehind = knownStatus.value?.Alarm_overall === true && active.length === 0;
  return (
    <>
      <div role="alert">
        {/* If the status cannot be read either, the header says why. */}
        {fault && !statusFault.value && <p class="message bad">{describeFault(fault)}</p>}
      </div>
      <div class="toolbar">
        <ActionButton
          action="alarm-reset"
          label="Reset all alarms…"
          reason={reasonAgainstReset()}
          onClick={() => setIsAsking(true)}
        />
      </div>
      <SoundSwitch />
      {isBehind && (
        <p role="status">
          {report && report.total > rows.length
            ? 'None of the alarms that can be shown is active: it is one further down the table.'
            : 'The instrument reports an alarm, but its table does not name one yet.'}
        </p>
      )}
      {report && rows.length === 0 && !isBehind && (
        <p>No alarm is defined, or alarms are switched off.</p>
      )}
      {report && rows.length > 0 && (
        <>
          {!isBehind && <AlarmTable id="active" title="Active" alarms={active} />}
          <AlarmTable
            id="others"
            title="Not active"
            alarms={rows.filter(({ Triggered }) => !Triggered)}
          />
        </>
      )}
      {report && report.total > rows.length && rows.length > 0 && (
        <p>
          The instrument has {report.total} alarms; the first {rows.length} are shown.
        </p>
      )}
      {isAsking && <AskReset onYes={() => void reset()} onNo={() => setIsAsking(false)} />}
    </>
  );
}
