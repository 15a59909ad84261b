// The instrument's alarms, and their reset.
import { useEffect, useRef, useState } from 'preact/hooks';
import { getReport, type Fault } from '../api';
import { ActionButton } from '../components/ActionButton';
import { Confirm } from '../components/Dialog';
import type { Alarm, Alarms } from '../documents';
import { command, describeFault, status, statusFault } from '../store';

/** Milliseconds between two looks at the table while nothing else asks for one. */
const interval = 15_000;

/** The texts begin with their numbers, which say nothing to a reader. */
function withoutNumber(text: string): string {
  return text.replace(/^-?\d+\. /, '');
}

function nameOf(alarm: Alarm): string {
  const group = withoutNumber(alarm.GroupStr);
  const parameter = alarm.ParamStr === '--' ? group : withoutNumber(alarm.ParamStr);
  return group === parameter ? group : `${group}: ${parameter}`;
}

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

export function AlarmsPage() {
  const [alarms, setAlarms] = useState<Alarms>();
  const [fault, setFault] = useState<Fault>();
  const [isAsking, setIsAsking] = useState(false);
  const [outcome, setOutcome] = useState<{ kind: 'good' | 'bad'; text: string }>();

  const asked = useRef(0);

  const load = async (): Promise<Alarm[] | undefined> => {
    const number = ++asked.current;
    const answer = await getReport<Alarms>('/api/alarms', 'total');
    // The latest request is shown, whichever is answered last.
    if (number === asked.current) {
      setAlarms((shown) => (answer.ok ? answer.value : shown));
      setFault(answer.ok ? undefined : answer.fault);
    }
    return answer.ok ? (answer.value.rows ?? []).filter(({ Triggered }) => Triggered) : undefined;
  };
  const reset = async (): Promise<void> => {
    setIsAsking(false);
    setOutcome(undefined);
    const send = { method: 'POST', path: 'alarm-reset', body: {} } as const;
    const answer = await command('Reset of all alarms', send);
    const active = await load();
    if (answer.ok && active) {
      const names = active.map(nameOf).join('; ');
      setOutcome(
        names === ''
          ? { kind: 'good', text: 'All alarms are reset, and none came back.' }
          : {
              kind: 'bad',
              text: `Still active after the reset, because the cause persists: ${names}.`,
            },
      );
    }
  };

  // Whenever the overall alarm comes or goes, and now and then.
  useEffect(() => {
    void load();
    const timer = setInterval(() => {
      if (!document.hidden) {
        void load();
      }
    }, interval);
    return () => clearInterval(timer);
  }, [status.value?.Alarm_overall]);

  const rows = alarms?.rows ?? [];
  const active = rows.filter(({ Triggered }) => Triggered);
  return (
    <>
      <div role="alert">
        {/* The top says what is wrong when the status is not to be had either. */}
        {fault && !statusFault.value && <p class="message bad">{describeFault(fault)}</p>}
      </div>
      <div role="status" data-testid="reset-outcome">
        {outcome && <p class={`message ${outcome.kind}`}>{outcome.text}</p>}
      </div>
      <div class="toolbar">
        <ActionButton
          action="alarm-reset"
          label="Reset all alarms…"
          reason={active.length === 0 ? 'No alarm is active.' : ''}
          onClick={() => setIsAsking(true)}
        />
      </div>
      {alarms && rows.length === 0 && <p>No alarm is defined, or alarms are switched off.</p>}
      {alarms && rows.length > 0 && (
        <>
          <AlarmTable id="active" title="Active" alarms={active} />
          <AlarmTable
            id="others"
            title="Not active"
            alarms={rows.filter(({ Triggered }) => !Triggered)}
          />
        </>
      )}
      {alarms && alarms.total > rows.length && rows.length > 0 && (
        <p>
          The instrument has {alarms.total} alarms; the first {rows.length} are shown.
        </p>
      )}
      {isAsking && (
        <Confirm
          title="Reset all alarms?"
          yes="Reset"
          action="alarm-reset"
          onYes={() => void reset()}
          onNo={() => setIsAsking(false)}
        >
          <p>These are active and will be reset:</p>
          <ul>
            {active.map((alarm, index) => (
              <li key={index} class="text">
                {nameOf(alarm)}
              </li>
            ))}
          </ul>
          <p>An alarm whose cause persists comes back at once.</p>
        </Confirm>
      )}
    </>
  );
}
