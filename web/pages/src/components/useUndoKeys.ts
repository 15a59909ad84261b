// Undo and redo by keyboard, for the whole table instead of the text of one cell.
import { useEffect } from 'preact/hooks';
import type { Editor } from '../editor';

type Action = 'undo' | 'redo';

/** The action of a key, on any keyboard layout. */
function actionOf(event: KeyboardEvent): Action | undefined {
  const isPressed = (event.ctrlKey || event.metaKey) && !event.altKey;
  const isLatin = /^[a-z]$/i.test(event.key);
  const letter = isLatin ? event.key.toLowerCase() : event.code.slice(-1).toLowerCase();
  if (isPressed && letter === 'z') {
    return event.shiftKey ? 'redo' : 'undo';
  }
  return isPressed && letter === 'y' && !event.shiftKey ? 'redo' : undefined;
}

/** What the browser itself would do to the text of a cell, for example from its menu. */
const natives: Readonly<Record<string, Action>> = { historyUndo: 'undo', historyRedo: 'redo' };

export function useUndoKeys(editor: Editor): void {
  useEffect(() => {
    const take = (event: Event, action: Action | undefined): void => {
      if (action && !document.querySelector('dialog[open]')) {
        event.preventDefault();
        if (editor.busy.value === '') {
          editor[action]();
        }
      }
    };
    const onKey = (event: KeyboardEvent): void => take(event, actionOf(event));
    const onInput = (event: InputEvent): void => take(event, natives[event.inputType]);
    window.addEventListener('keydown', onKey);
    window.addEventListener('beforeinput', onInput);
    return () => {
      window.removeEventListener('keydown', onKey);
      window.removeEventListener('beforeinput', onInput);
    };
  }, [editor]);
}
