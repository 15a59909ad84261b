// Editing the sequence or the calibration.
import type { ComponentType } from 'preact';
import { useEffect, useLayoutEffect, useRef, useState } from 'preact/hooks';
import { useLoad } from '../comeback';
import { CellInput } from '../components/CellInput';
import { CellProblems } from '../components/CellProblems';
import { DiffTable, type ExtraColumn } from '../components/DiffTable';
import { EarlierTables } from '../components/EarlierTables';
import { Grid } from '../components/Grid';
import { ReviewDialog } from '../components/ReviewDialog';
import { TableToolbar } from '../components/TableToolbar';
import { useKeptFocus } from '../components/useKeptFocus';
import { useUndoKeys } from '../components/useUndoKeys';
import type { Editor } from '../editor';
import { formatTime } from '../format';
import { setCell, textIn, type Cell } from '../table';

const fieldId = (key: string): string => `field-${key}`;

function HeaderFields({ editor }: { editor: Editor }) {
  const draft = editor.draft.value!;
  return (
    <div class="fields" onFocusOut={() => editor.leaveCell()}>
      {editor.layout.value.header.map((column) => {
        const { key, label } = column;
        const problem = editor.problems.value.find((one) => one.rowId === null && one.key === key);
        const problemId = problem && `problem-${key}`;
        const step = { what: label, place: { rowId: null, key } };
        return (
          <div key={key}>
            <label for={fieldId(key)}>{label}</label>{' '}
            <CellInput
              id={fieldId(key)}
              column={column}
              text={textIn(draft.header, column)}
              problemId={problemId}
              onInput={(text) => editor.change(setCell(draft, null, key, text), step, true)}
            />
            {problem && (
              <span id={problemId} class="problem">
                {problem.text}
              </span>
            )}
          </div>
        );
      })}
    </div>
  );
}

function MessageLine({ editor, extra }: { editor: Editor; extra: ExtraColumn | undefined }) {
  const message = editor.message.value;
  const isBusy = editor.busy.value !== '';
  return (
    <div role="status" data-testid="table-message">
      {isBusy && <p class="message waiting">{editor.busy.value}.</p>}
      {message && (
        <p class={`message ${message.kind}`}>
          <span class="time">{formatTime(message.time)}</span> {message.text}
        </p>
      )}
      {message?.diff && (
        <DiffTable diff={message.diff} layout={editor.layout.value} extra={extra} />
      )}
      {editor.before.value && (
        <p class="message bad">
          A table was not taken as a whole: the instrument may have a part of it.
          <button type="button" disabled={isBusy} onClick={() => void editor.prepareRestore()}>
            Restore the previous table…
          </button>
        </p>
      )}
    </div>
  );
}

function State({ editor }: { editor: Editor }) {
  const said = editor.said.value;
  const read = editor.readAt.value;
  return (
    <p role="status" data-testid="table-state">
      {editor.isDirty.value ? 'Changed here, not sent.' : 'As on the instrument when it was read.'}{' '}
      {read > 0 && <span class="dim">Read at {formatTime(read)}.</span>}{' '}
      {/* The key makes a screen reader announce the same words again. */}
      <span key={said}>{said?.text}</span>
    </p>
  );
}

/** Shows the table as a picture; `focusedRow` counts from 0. */
export type TablePicture = ComponentType<{ editor: Editor; focusedRow: number | undefined }>;

interface Props {
  editor: Editor;
  hint: string;
  /** Shown beside the table. */
  picture?: TablePicture;
  /** An additional column in comparisons. */
  extra?: ExtraColumn;
}

/** Reads the table if there is none, and when the instrument comes back, but never over edits. */
function useReload(editor: Editor): void {
  const isFirst = useRef(true);
  useLoad(() => {
    const isKept = editor.draft.value && (isFirst.current || editor.isDirty.value);
    isFirst.current = false;
    if (!isKept && !editor.busy.value && !editor.review.value) {
      void editor.load();
    }
  }, !editor.draft.value);
  // Another instrument has replaced the one whose table was shown.
  useEffect(() => {
    if (!editor.draft.value && !editor.busy.value) {
      void editor.load();
    }
  }, [editor.instruments.value]);
}

export function TablePage({ editor, hint, picture: Picture, extra }: Props) {
  const [focusedId, setFocusedId] = useState<number>();
  const [isEarlier, setIsEarlier] = useState(false);
  const table = useRef<HTMLFieldSetElement>(null);
  const draft = editor.draft.value;
  const said = editor.said.value;
  useUndoKeys(editor);
  useReload(editor);
  const keptFocus = useKeptFocus(editor.busy.value !== '');
  const goTo = ({ rowId, key }: Cell): void => {
    const place = rowId === null ? `#${fieldId(key)}` : `[data-row="${rowId}"][data-key="${key}"]`;
    table.current?.querySelector<HTMLElement>(place)?.focus();
  };
  useLayoutEffect(() => {
    if (said?.place) {
      goTo(said.place);
    }
  }, [said]);
  const focused = draft?.rows.findIndex(({ id }) => id === focusedId) ?? -1;
  return (
    <>
      <MessageLine editor={editor} extra={extra} />
      {draft ? (
        <>
          <TableToolbar
            editor={editor}
            onEarlier={() => setIsEarlier(true)}
            onFirstProblem={() => goTo(editor.problems.value[0]!)}
          />
          <State editor={editor} />
          <fieldset ref={table} disabled={editor.busy.value !== ''} {...keptFocus}>
            <HeaderFields editor={editor} />
            <div class={Picture && 'beside'}>
              {Picture && (
                <Picture editor={editor} focusedRow={focused < 0 ? undefined : focused} />
              )}
              <Grid
                caption={editor.kind.title}
                layout={editor.layout.value}
                draft={draft}
                problems={editor.problems.value}
                onChange={(changed, step, isTyping) => editor.change(changed, step, isTyping)}
                onLeaveCell={() => editor.leaveCell()}
                onFocusRow={setFocusedId}
              />
            </div>
            <CellProblems editor={editor} onGo={goTo} />
          </fieldset>
          <p class="dim">{hint}</p>
        </>
      ) : (
        !editor.busy.value && (
          <button type="button" onClick={() => void editor.load()}>
            Try again
          </button>
        )
      )}
      <ReviewDialog editor={editor} extra={extra} />
      {isEarlier && draft && (
        <EarlierTables editor={editor} extra={extra} onClose={() => setIsEarlier(false)} />
      )}
    </>
  );
}
