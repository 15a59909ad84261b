// The stop buttons: neither blocks the other, and neither is disabled while anything may be running.
import { useState } from 'preact/hooks';
import type { Status } from '../documents';
import { followAbortAfterRun, followAbortNow } from '../follow';
import { formatInstant } from '../format';
import { gcStateOf, isAtWork, isIdle, withoutNothing } from '../states';
import { command, isAborting, knownStatus, now, statusTime } from '../store';
import { ActionButton } from './ActionButton';
import { Confirm } from './Dialog';

type When = 'now' | 'after-run';

const names: Readonly<Record<When, string>> = {
  now: 'Abort now',
  'after-run': 'Stop after this run',
};

function stop(when: When): void {
  const send = { method: 'POST', path: 'abort', body: { when } } as const;
  const follow = when === 'now' ? followAbortNow : followAbortAfterRun;
  void command(names[when], send, follow);
}

/** Without a run, a stop after the run ends everything at once. */
function isAtOnce(known: Status | undefined): boolean {
  return known === undefined || gcStateOf(known) !== 'Running';
}

function unknownSince(): string {
  const since = statusTime.value;
  return since === 0
    ? 'The state of the instrument is not known: it has not answered yet.'
    : `The state of the instrument is not known: no answer since ${formatInstant(since, now.value)}.`;
}

const abortEnds = 'The run ends at once without a result, and the automation with it.';
const harmless = 'If nothing is running, an abort changes nothing.';

function AboutAbort({ known }: { known: Status | undefined }) {
  if (!known) {
    return (
      <p>
        {unknownSince()} {abortEnds} {harmless}
      </p>
    );
  }
  if (isIdle(known) && !isAtWork(known)) {
    const state = withoutNothing(known.GC_state);
    return (
      <p>
        Nothing seems to be running (state at {formatInstant(statusTime.value, now.value)}: {state}
        ). What has begun since then ends at once. {harmless}
      </p>
    );
  }
  return <p>{abortEnds}</p>;
}

function AboutStop({ known }: { known: Status | undefined }) {
  return (
    <p>
      {known
        ? `There is no run at present (state: ${withoutNothing(known.GC_state)}): everything ends at once, the automation too, without waiting for another run.`
        : `${unknownSince()} A run that is going on is carried to its end; if there is none, the automation ends at once.`}
    </p>
  );
}

export function Stop() {
  const [asking, setAsking] = useState<When>();
  const known = knownStatus.value;
  const close = (): void => setAsking(undefined);
  const yes = (when: When) => (): void => {
    close();
    stop(when);
  };
  return (
    <div class="abort" role="group" aria-label="Stop">
      <ActionButton
        action="abort-after-run"
        label="Stop after this run"
        isCompact
        onClick={() => (isAtOnce(known) ? setAsking('after-run') : stop('after-run'))}
      />
      <ActionButton
        action="abort-now"
        label="Abort now…"
        kind="danger"
        isCompact
        onClick={() => setAsking('now')}
      />
      {asking && (
        <Confirm
          title={asking === 'now' ? 'Abort now?' : 'Stop at once?'}
          yes={asking === 'now' ? 'Abort now' : 'Stop'}
          action={asking === 'now' ? 'abort-now' : 'abort-after-run'}
          isDanger
          onYes={yes(asking)}
          onNo={close}
        >
          {asking === 'now' ? <AboutAbort known={known} /> : <AboutStop known={known} />}
          {isAborting.value && <p>A stop is being sent already. Another one does no harm.</p>}
        </Confirm>
      )}
    </div>
  );
}
