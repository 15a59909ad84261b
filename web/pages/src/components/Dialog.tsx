// A modal dialog: the focus moves into it, stays there, and returns to where it was.
import type { ComponentChildren } from 'preact';
import { useId, useLayoutEffect, useRef } from 'preact/hooks';
import type { Action } from '../states';
import { ActionButton } from './ActionButton';

interface Props {
  title: string;
  onClose: () => void;
  /** The buttons; the first is focused. */
  actions: ComponentChildren;
  children: ComponentChildren;
}

export function Dialog({ title, onClose, actions, children }: Props) {
  const ref = useRef<HTMLDialogElement>(null);
  const id = useId();
  useLayoutEffect(() => {
    const dialog = ref.current!;
    dialog.showModal();
    dialog.querySelector<HTMLElement>('.actions button')!.focus();
    return () => dialog.close();
  }, []);
  const cancel = (event: Event): void => {
    event.preventDefault();
    onClose();
  };
  return (
    <dialog ref={ref} aria-labelledby={id} onCancel={cancel}>
      <h2 id={id}>{title}</h2>
      <div class="dialog-body">{children}</div>
      <div class="actions">{actions}</div>
    </dialog>
  );
}

/**
 * A dialog with one question; Cancel and Escape do nothing. If the state changes before the answer,
 * the other button may become disabled, and says why.
 */
export function Confirm(props: {
  title: string;
  yes: string;
  action: Action;
  isDanger?: boolean;
  onYes: () => void;
  onNo: () => void;
  children: ComponentChildren;
}) {
  const actions = (
    <>
      <button type="button" onClick={props.onNo}>
        Cancel
      </button>
      <ActionButton
        action={props.action}
        label={props.yes}
        kind={props.isDanger ? 'danger' : 'primary'}
        onClick={props.onYes}
      />
    </>
  );
  return (
    <Dialog title={props.title} onClose={props.onNo} actions={actions}>
      {props.children}
    </Dialog>
  );
}
