// What is always visible: the instrument, its state, the age of the data, alarms, and how to stop.
import type { Status } from '../documents';
import { formatInstant, formatSpan } from '../format';
import { describeInterruption } from '../interruptions';
import { gcStateOf, isError, isSimulated, withoutNothing } from '../states';
import {
  ageSeconds,
  describeFault,
  dismiss,
  interruptions,
  isStale,
  lostSince,
  notices,
  now,
  status,
  statusFault,
  takeNote,
} from '../store';
import { ActiveAlarms } from './ActiveAlarms';
import { Session } from './Session';
import { Stop } from './Stop';

function Age() {
  const age = ageSeconds.value;
  const text = age === Infinity ? 'no data yet' : `data ${formatSpan(age)} old`;
  return (
    <span class={isStale.value ? 'age stale-mark' : 'age'} data-testid="age">
      {text}
    </span>
  );
}

export function SimulatedBanner() {
  return status.value && isSimulated(status.value) ? (
    <p class="simulated">Simulated: this is not a real instrument</p>
  ) : null;
}

export function AlarmSign() {
  return status.value?.Alarm_overall ? (
    <a href="#/alarms" class="sign alarm" data-testid="alarm-sign">
      Alarm
    </a>
  ) : (
    <a href="#/alarms" class="sign" data-testid="alarm-sign">
      No alarm
    </a>
  );
}

/** Announces to a screen reader when the state changes, but not every second of it. */
function StateAnnouncer() {
  const current = status.value;
  const text =
    lostSince.value !== undefined
      ? `No answer since ${formatInstant(lostSince.value, now.value)}`
      : current
        ? `State ${gcStateOf(current)}${current.Alarm_overall ? ', alarm' : ''}`
        : '';
  return (
    <p class="hidden" role="status">
      {text}
    </p>
  );
}

function Faults() {
  const fault = statusFault.value;
  return (
    <div role="alert">
      {fault && (
        <p class="message bad">
          {describeFault(fault)}
          {status.value
            ? ' The last values are shown.'
            : fault.status === 503 &&
              ' If it has never been: its address is var.instrument in /etc/gc-web/lighttpd.conf.'}
        </p>
      )}
    </div>
  );
}

function Notices() {
  return (
    <div role="status" aria-atomic="false" data-testid="notice">
      {notices.value.map(({ id, kind, text, time }) => (
        <p class={`message ${kind}`} key={id}>
          <time>{formatInstant(time, now.value)}</time> <span class="text">{text}</span>
          {kind !== 'waiting' && (
            <button type="button" class="quiet" onClick={() => dismiss(id)}>
              Dismiss
            </button>
          )}
        </p>
      ))}
    </div>
  );
}

function Interruptions() {
  return (
    <div role="alert" data-testid="interruptions">
      {interruptions.value.map((command) => (
        <p class="message bad" key={command.id}>
          <span class="text">{describeInterruption(command)}</span>
          <button type="button" class="quiet" onClick={() => void takeNote(command)}>
            I have seen it
          </button>
        </p>
      ))}
    </div>
  );
}

/** The instrument's state; when it no longer answers, with the time of the last answer. */
function State({ current }: { current: Status }) {
  const since = lostSince.value;
  return (
    <>
      {since !== undefined && (
        <>
          <span class="state lost" data-testid="lost">
            No answer since {formatInstant(since, now.value)}
          </span>
          <span class="dim">Last:</span>
        </>
      )}
      <span
        class={isError(current) && since === undefined ? 'state live error' : 'state live'}
        data-testid="state"
      >
        {withoutNothing(current.GC_state)}
      </span>
      <span class="live" data-testid="automation">
        <span class="dim">Automation</span> {withoutNothing(current.Auto_state)}
      </span>
      <span class="live">
        <AlarmSign />
      </span>
      {current.Alarm_overall && (
        <details class="which live">
          <summary>Which alarms</summary>
          <ActiveAlarms />
        </details>
      )}
      {gcStateOf(current) === 'Running' && (
        <span class="live run" data-testid="run">
          <span class="dim">Run</span>{' '}
          {`${formatSpan(current.Run_time)} of ${formatSpan(current.Total_run_time)}`}
        </span>
      )}
    </>
  );
}

export function Header() {
  const current = status.value;
  return (
    <header class={isStale.value ? 'stale' : undefined}>
      <SimulatedBanner />
      <div class="bar">
        <strong class="application text" data-testid="application">
          {current ? current.Application || 'Instrument without a name' : 'Gas chromatograph'}
        </strong>
        {current ? (
          <State current={current} />
        ) : (
          statusFault.value && (
            <span class="state lost" data-testid="lost">
              No answer yet
            </span>
          )
        )}
        <Age />
        <Session />
        <Stop />
      </div>
      <StateAnnouncer />
      <Faults />
      <Interruptions />
      <Notices />
    </header>
  );
}
