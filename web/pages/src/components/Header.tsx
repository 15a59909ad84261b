// What is always visible: which instrument, what it does, how old that is, alarms, and the way to stop.
import { useState } from 'preact/hooks';
import { formatSpan } from '../format';
import { followAbortAfterRun, followAbortNow } from '../follow';
import { describeInterruption } from '../interruptions';
import { gcStateOf, isError, isSimulated } from '../states';
import {
  ageSeconds,
  command,
  describeFault,
  interruptions,
  isSignedIn,
  isStale,
  notice,
  signIn,
  status,
  statusFault,
  takeNote,
} from '../store';
import { ActionButton } from './ActionButton';
import { Confirm } from './Dialog';

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

/** Tells a screen reader when the state changes, but not each second of it. */
function StateAnnouncer() {
  const current = status.value;
  const text = current
    ? `State ${gcStateOf(current)}${current.Alarm_overall ? ', alarm' : ''}`
    : '';
  return (
    <p class="hidden" role="status">
      {text}
    </p>
  );
}

function Abort() {
  const [isAsking, setIsAsking] = useState(false);
  const abort = (when: 'now' | 'after-run'): void => {
    setIsAsking(false);
    const send = { method: 'POST', path: 'abort', body: { when } } as const;
    void command(
      when === 'now' ? 'Abort now' : 'Stop after this run',
      send,
      when === 'now' ? followAbortNow : followAbortAfterRun,
    );
  };
  return (
    <div class="abort" role="group" aria-label="Stop">
      <ActionButton
        action="abort-after-run"
        label="Stop after this run"
        isCompact
        onClick={() => abort('after-run')}
      />
      <ActionButton
        action="abort-now"
        label="Abort now…"
        kind="danger"
        isCompact
        onClick={() => setIsAsking(true)}
      />
      {isAsking && (
        <Confirm
          title="Abort now?"
          yes="Abort now"
          action="abort-now"
          isDanger
          onYes={() => abort('now')}
          onNo={() => setIsAsking(false)}
        >
          <p>The run ends at once without a result, and the automation with it.</p>
        </Confirm>
      )}
    </div>
  );
}

function Faults() {
  const fault = statusFault.value;
  return (
    <div role="alert">
      {fault && (
        <p class="message bad">
          {describeFault(fault)}
          {status.value && ' The last values are shown.'}
        </p>
      )}
    </div>
  );
}

function NoticeLine() {
  const current = notice.value;
  return (
    <div role="status" data-testid="notice">
      {current && (
        <p class={`message ${current.kind}`}>
          <span>{current.text}</span>
          {current.kind !== 'waiting' && (
            <button type="button" class="quiet" onClick={() => (notice.value = undefined)}>
              Dismiss
            </button>
          )}
        </p>
      )}
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

export function Header() {
  const current = status.value;
  return (
    <header class={isStale.value ? 'stale' : undefined}>
      <SimulatedBanner />
      <div class="bar">
        <strong class="application text" data-testid="application">
          {current ? current.Application || 'Instrument without a name' : 'Gas chromatograph'}
        </strong>
        {current && (
          <>
            <span class={isError(current) ? 'state live error' : 'state live'} data-testid="state">
              {current.GC_state}
            </span>
            <span class="live" data-testid="automation">
              <span class="dim">Automation</span> {current.Auto_state}
            </span>
            <span class="live">
              <AlarmSign />
            </span>
          </>
        )}
        <Age />
        {!isSignedIn.value && (
          <button type="button" class="quiet" onClick={() => void signIn()}>
            Sign in
          </button>
        )}
        <Abort />
      </div>
      <StateAnnouncer />
      <Faults />
      <Interruptions />
      <NoticeLine />
    </header>
  );
}
