// Editing the sequence or the calibration.
import type { ComponentType } from 'preact';
import { useRef, useState } from 'preact/hooks';
import { useLoad } from '../comeback';
import { ActionButton } from '../components/ActionButton';
import { Confirm, Dialog } from '../components/Dialog';
import { DiffTable, type ExtraColumn } from '../components/DiffTable';
import { CellInput, Grid } from '../components/Grid';
import { isEmptyDiff } from '../diff';
import type { Editor, Review } from '../editor';
import { setCell, textIn } from '../table';

function save(name: string, text: string): void {
  const url = URL.createObjectURL(new Blob([text], { type: 'application/json' }));
  const link = document.createElement('a');
  link.href = url;
  link.download = name;
  link.click();
  URL.revokeObjectURL(url);
}

function HeaderFields({ editor }: { editor: Editor }) {
  const draft = editor.draft.value!;
  return (
    <div class="fields">
      {editor.layout.value.header.map((column) => {
        const { key, label } = column;
        const problem = editor.problems.value.find((one) => one.rowId === null && one.key === key);
        const problemId = problem && `problem-${key}`;
        return (
          <div key={key}>
            <label for={`field-${key}`}>{label}</label>{' '}
            <CellInput
              id={`field-${key}`}
              column={column}
              text={textIn(draft.header, column)}
              problemId={problemId}
              onInput={(text) => (editor.draft.value = setCell(draft, null, key, text))}
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

function ReviewDialog(props: { editor: Editor; review: Review; extra: ExtraColumn | undefined }) {
  const { editor, review, extra } = props;
  const close = (): void => {
    editor.review.value = undefined;
  };
  const layout = editor.layout.value;
  if (review.kind === 'conflict') {
    const actions = (
      <>
        <button type="button" onClick={close}>
          Cancel
        </button>
        <button type="button" onClick={() => void editor.load()}>
          Load the instrument’s table
        </button>
        <button type="button" onClick={() => void editor.keepEdits(review.theirs)}>
          Keep my table and compare again
        </button>
      </>
    );
    return (
      <Dialog title="The instrument’s table has changed" onClose={close} actions={actions}>
        <p>
          Nothing was sent. Since the table was loaded here, somebody has changed on the instrument:
        </p>
        <DiffTable diff={review.diff} layout={layout} extra={extra} />
      </Dialog>
    );
  }
  const isSame = isEmptyDiff(review.diff);
  return (
    <Confirm
      title={`Send the ${editor.kind.name}?`}
      yes="Send"
      action="send-table"
      onYes={() => void editor.send()}
      onNo={close}
    >
      {isSame ? (
        <p>The instrument already has this table. It would be written again.</p>
      ) : (
        <p>This changes on the instrument:</p>
      )}
      <DiffTable diff={review.diff} layout={layout} extra={extra} />
      {editor.kind.name === 'calibration' && (
        <p>The instrument clears all amounts first. The amounts of all peaks are sent.</p>
      )}
    </Confirm>
  );
}

function MessageLine({ editor, extra }: { editor: Editor; extra: ExtraColumn | undefined }) {
  const message = editor.message.value;
  return (
    <div role="status" data-testid="table-message">
      {editor.busy.value && <p class="message waiting">{editor.busy.value}.</p>}
      {message && <p class={`message ${message.kind}`}>{message.text}</p>}
      {message?.diff && (
        <DiffTable diff={message.diff} layout={editor.layout.value} extra={extra} />
      )}
    </div>
  );
}

function Toolbar({ editor }: { editor: Editor }) {
  const picker = useRef<HTMLInputElement>(null);
  const isBusy = editor.busy.value !== '';
  const problems = editor.problems.value.length;
  const pick = async (): Promise<void> => {
    const file = picker.current?.files?.[0];
    if (file) {
      editor.import(file.name, await file.arrayBuffer());
      picker.current!.value = '';
    }
  };
  return (
    <div class="toolbar" role="group" aria-label="Table">
      <button type="button" disabled={isBusy} onClick={() => void editor.load()}>
        {editor.isDirty.value ? 'Discard and reload' : 'Reload'}
      </button>
      <button type="button" disabled={isBusy} onClick={() => picker.current?.click()}>
        Import…
      </button>
      <input
        ref={picker}
        type="file"
        accept=".json,application/json"
        aria-label="File to import"
        class="hidden"
        tabIndex={-1}
        onChange={() => void pick()}
      />
      <button
        type="button"
        disabled={problems > 0}
        onClick={() => save(`${editor.kind.name}.json`, editor.exported())}
      >
        Export
      </button>
      <ActionButton
        action="send-table"
        label="Compare and send…"
        kind="primary"
        reason={
          problems > 0
            ? `${problems} ${problems === 1 ? 'cell is' : 'cells are'} not right.`
            : isBusy
              ? `${editor.busy.value}.`
              : ''
        }
        onClick={() => void editor.prepare()}
      />
    </div>
  );
}

/** What shows the table as a picture; `focusedRow` counts from 0. */
export type TablePicture = ComponentType<{ editor: Editor; focusedRow: number | undefined }>;

interface Props {
  editor: Editor;
  hint: string;
  /** Beside the table. */
  picture?: TablePicture;
  /** In the comparisons. */
  extra?: ExtraColumn;
}

/** Reads the table when there is none, and when the instrument comes back, but never over edits. */
function useReload(editor: Editor): void {
  const isFirst = useRef(true);
  useLoad(() => {
    const isKept = editor.draft.value && (isFirst.current || editor.isDirty.value);
    isFirst.current = false;
    if (!isKept && !editor.busy.value && !editor.review.value) {
      void editor.load();
    }
  }, !editor.draft.value);
}

export function TablePage({ editor, hint, picture: Picture, extra }: Props) {
  const [focusedId, setFocusedId] = useState<number>();
  useReload(editor);
  const draft = editor.draft.value;
  const focused = draft?.rows.findIndex(({ id }) => id === focusedId) ?? -1;
  return (
    <>
      <MessageLine editor={editor} extra={extra} />
      {draft ? (
        <>
          <Toolbar editor={editor} />
          <p role="status">
            {editor.isDirty.value
              ? 'Changed here, not sent.'
              : 'As on the instrument when it was read.'}
          </p>
          <fieldset disabled={editor.busy.value !== ''}>
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
                onChange={(changed) => (editor.draft.value = changed)}
                onFocusRow={setFocusedId}
              />
            </div>
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
      {editor.review.value && (
        <ReviewDialog editor={editor} review={editor.review.value} extra={extra} />
      )}
    </>
  );
}
