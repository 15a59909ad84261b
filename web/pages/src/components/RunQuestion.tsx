// The questions before a run or the automation starts or a solution is loaded, and their commands.
import type { Sequence } from '../documents';
import { sequenceEditor } from '../editors';
import { followAutomation, followRun } from '../follow';
import { formatSpan } from '../format';
import { command, status } from '../store';
import { Confirm } from './Dialog';
import { SequenceLines } from './SequenceLines';

/** What the user is asked to confirm. */
export type Question =
  | { kind: 'single' | 'calibration'; stream: number }
  | { kind: 'automation'; sequence: Sequence }
  | { kind: 'solution'; slot: number };

function startRun(type: 'single' | 'calibration', stream: number): void {
  const name = type === 'single' ? 'Single run' : 'Calibration';
  const send = { method: 'POST', path: 'run', body: { type, stream } } as const;
  void command(
    `${name} on stream ${stream}`,
    send,
    (before) => before && followRun(type, stream, before),
  );
}

function startAutomation(): void {
  const send = { method: 'POST', path: 'run', body: { type: 'automation' } } as const;
  void command('Automation', send, (before) => before && followAutomation(before));
}

function loadSolution(solution: number): void {
  const send = { method: 'PUT', path: 'solution', body: { solution } } as const;
  const accepted = 'accepted. No report tells whether it is in use already.';
  void command(`Solution ${solution}`, send, undefined, accepted);
}

export function RunQuestion({ question, onDone }: { question: Question; onDone: () => void }) {
  const total = formatSpan(status.value?.Total_run_time ?? 0);
  const yes = (act: () => void) => (): void => {
    onDone();
    act();
  };
  switch (question.kind) {
    case 'single': {
      const { stream } = question;
      return (
        <Confirm
          title="Start a single run?"
          yes="Start"
          action="start-run"
          onYes={yes(() => startRun('single', stream))}
          onNo={onDone}
        >
          <p>
            One analysis on stream {stream}, {total}.
          </p>
        </Confirm>
      );
    }
    case 'calibration': {
      const { stream } = question;
      return (
        <Confirm
          title="Start a calibration?"
          yes="Start"
          action="start-run"
          onYes={yes(() => startRun('calibration', stream))}
          onNo={onDone}
        >
          <p>
            Two calibration runs at level 1 on stream {stream}, {total} each. The calibration gas
            must be connected there. The coefficients of all peaks are set anew.
          </p>
        </Confirm>
      );
    }
    case 'automation':
      return (
        <Confirm
          title="Start the automation?"
          yes="Start"
          action="start-automation"
          onYes={yes(startAutomation)}
          onNo={onDone}
        >
          {sequenceEditor.isDirty.value && (
            <p class="message bad">
              The sequence has changes here that have not been sent. The automation runs the table
              that the instrument has:
            </p>
          )}
          <SequenceLines sequence={question.sequence} />
        </Confirm>
      );
    case 'solution': {
      const { slot } = question;
      return (
        <Confirm
          title={`Load solution ${slot}?`}
          yes="Load"
          action="solution"
          onYes={yes(() => loadSolution(slot))}
          onNo={onDone}
        >
          <p>The solution of slot {slot} replaces the one in use.</p>
        </Confirm>
      );
    }
  }
}
