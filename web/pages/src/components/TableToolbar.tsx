// The actions on a table as a whole.
import { useRef } from 'preact/hooks';
import type { Editor } from '../editor';
import { configuration } from '../store';
import { ActionButton } from './ActionButton';

function save(name: string, text: string): void {
  const url = URL.createObjectURL(new Blob([text], { type: 'application/json' }));
  const link = document.createElement('a');
  link.href = url;
  link.download = name;
  link.click();
  URL.revokeObjectURL(url);
}

/** Why the table cannot be sent now, apart from the instrument's state. */
function reasonNotToSend(editor: Editor): string {
  const count = editor.problems.value.length;
  if (count > 0) {
    return `${count} ${count === 1 ? 'cell is' : 'cells are'} not valid.`;
  }
  if (editor.busy.value !== '') {
    return `${editor.busy.value}.`;
  }
  return configuration.value ? '' : 'The configuration of the instrument has not been read yet.';
}

interface Props {
  editor: Editor;
  onEarlier: () => void;
  onFirstProblem: () => void;
}

export function TableToolbar({ editor, onEarlier, onFirstProblem }: Props) {
  const picker = useRef<HTMLInputElement>(null);
  const isBusy = editor.busy.value !== '';
  const isWrong = editor.problems.value.length > 0;
  const pick = async (): Promise<void> => {
    const file = picker.current?.files?.[0];
    if (file) {
      editor.import(file.name, await file.arrayBuffer());
      picker.current!.value = '';
    }
  };
  const step = (label: string, steps: typeof editor.undos.past, go: () => void) => {
    const what = steps.value.at(-1)?.what;
    return (
      <button type="button" title={what} disabled={isBusy || what === undefined} onClick={go}>
        {label}
      </button>
    );
  };
  return (
    <div class="toolbar" role="group" aria-label="Table">
      {step('Undo', editor.undos.past, () => editor.undo())}
      {step('Redo', editor.undos.future, () => editor.redo())}
      <button type="button" disabled={isBusy} onClick={() => editor.reload()}>
        {editor.isDirty.value ? 'Discard and reload…' : 'Reload'}
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
        disabled={isWrong}
        onClick={() => save(`${editor.kind.name}.json`, editor.exported())}
      >
        Export
      </button>
      <button type="button" disabled={isBusy} onClick={onEarlier}>
        Earlier tables…
      </button>
      <ActionButton
        action="send-table"
        label="Compare and send…"
        kind="primary"
        reason={reasonNotToSend(editor)}
        onClick={() => void editor.prepare()}
      />
      {isWrong && (
        <button type="button" onClick={onFirstProblem}>
          Show errors
        </button>
      )}
    </div>
  );
}
