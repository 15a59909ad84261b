// The sequence over time: how long it takes and, during an automation, its position.
import { diffTables, isEmptyDiff } from '../diff';
import type { Editor } from '../editor';
import { expectedAutomationEnd } from '../expected';
import { formatSpan } from '../format';
import { sequence as running, sequenceFault } from '../sequence';
import { isIdle } from '../states';
import { isStale, status } from '../store';
import { tableOf } from '../table';
import { sequenceKind } from '../tables';
import {
  linesOf,
  passText,
  positionIn,
  positionText,
  timelineOf,
  wholeText,
  type Timeline,
} from '../timeline';
import { unitOf } from '../units';
import { EndText } from './ExpectedEnd';
import { TimeBar } from './TimeBar';

/** What the bars leave out, in sentences. */
function notesOf(timeline: Timeline): string[] {
  const { passedOver, unclear, runSeconds, isFlushUnknown } = timeline;
  const lines = (numbers: readonly number[]): string =>
    `${numbers.length === 1 ? 'line' : 'lines'} ${numbers.join(', ')}`;
  return [
    unclear.length > 0 && `The number of runs is not valid in ${lines(unclear)}: drawn as one run.`,
    passedOver.length > 0 && `Skipped, with 0 runs: ${lines(passedOver)}.`,
    runSeconds === undefined
      ? 'How long a run takes is not known: the bar counts runs, not time.'
      : isFlushUnknown &&
        'The unit of the flush times is not known: no time includes flushing, which is drawn dashed.',
    'Thin: flushing. Thick: runs. No report tells the delays between runs, so no time includes them.',
  ].filter((note) => note !== false);
}

export function SequencePicture(props: { editor: Editor; focusedRow: number | undefined }) {
  const { editor, focusedRow } = props;
  const draft = editor.draft.value;
  if (!draft || draft.rows.length === 0) {
    return null;
  }
  const layout = editor.layout.value;
  const edited = tableOf(draft, layout);
  const total = status.value?.Total_run_time ?? 0;
  const runSeconds = total > 0 ? total : undefined;
  const unit = unitOf('flush_time');
  const timeline = timelineOf(linesOf(edited), runSeconds, unit);
  const isContinuous = edited.header.Continuous === true;

  const present = status.value && !isIdle(status.value) ? status.value : undefined;
  const own = present && running.value;
  const instruments = own && sequenceKind.fromReport(own);
  const isOther =
    instruments !== undefined && !isEmptyDiff(diffTables(instruments, edited, layout));
  const theirs = instruments && timelineOf(linesOf(instruments), runSeconds, unit);
  const position =
    present && theirs && present.Seq_line > 0 && !isStale.value
      ? positionIn(theirs, present)
      : undefined;
  const goToLine = ({ line }: { line: number }): void =>
    document
      .querySelector<HTMLElement>(
        `[data-row="${draft.rows[line - 1]!.id}"][data-key="${layout.columns[0]!.key}"]`,
      )
      ?.focus();

  return (
    <section class="picture over-time" aria-labelledby="over-time">
      <h2 id="over-time">Over time</h2>
      <div class="bars">
        <TimeBar
          label={
            isOther
              ? 'One pass as edited here; the instrument runs another table'
              : 'One pass through the table'
          }
          timeline={timeline}
          focusedLine={focusedRow === undefined ? undefined : focusedRow + 1}
          position={isOther ? undefined : position}
          onChoose={goToLine}
        />
        {isOther && (
          <TimeBar
            label="One pass as the instrument runs it"
            timeline={theirs!}
            position={position}
          />
        )}
      </div>
      <dl class="facts lengths">
        <div>
          <dt>One run</dt>
          <dd class="number">{runSeconds === undefined ? 'not known' : formatSpan(runSeconds)}</dd>
        </div>
        <div>
          <dt>One pass</dt>
          <dd class="number">{passText(timeline)}</dd>
        </div>
        <div>
          <dt>Whole table</dt>
          <dd class="number">{wholeText(timeline, edited.header.Table_repeat, isContinuous)}</dd>
        </div>
        <div>
          <dt>Automation now</dt>
          <dd class="number" data-testid="automation-position">
            {!status.value || isStale.value
              ? 'not known: there is no recent answer'
              : positionText(status.value, own)}
          </dd>
        </div>
        <div>
          <dt>Automation ends</dt>
          <dd>
            <EndText of={expectedAutomationEnd} isBrief />
          </dd>
        </div>
      </dl>
      {present && sequenceFault.value && (
        <p>The instrument’s table could not be read: the bar does not show where it stands.</p>
      )}
      {own && own.total > instruments!.rows.length && (
        <p>
          The instrument’s table has {own.total} lines, of which it tells the first{' '}
          {instruments!.rows.length}.
        </p>
      )}
      <p class="notes">
        <small class="dim">{notesOf(timeline).join(' ')}</small>
      </p>
    </section>
  );
}
