// A button for an action of the instrument. When the action is not possible, it is disabled, with the
// reason, but stays focusable: the focus is not lost with every command, and the reason can be read.
import { useId } from 'preact/hooks';
import type { Action } from '../states';
import { reasonNotTo } from '../store';

interface Props {
  action: Action;
  label: string;
  kind?: 'primary' | 'danger';
  /** Shows the reason only as a tooltip, where there is no room for it. */
  isCompact?: boolean;
  /** A further reason, given by the page. */
  reason?: string;
  onClick: () => void;
}

export function ActionButton({ action, label, kind, isCompact, reason, onClick }: Props) {
  const id = useId();
  const why = reasonNotTo(action) || reason || '';
  return (
    <>
      <button
        type="button"
        class={kind}
        aria-disabled={why !== ''}
        title={isCompact ? why : undefined}
        aria-describedby={why ? id : undefined}
        onClick={() => why === '' && onClick()}
      >
        {label}
      </button>
      {why && (
        <span id={id} class={isCompact ? 'hidden' : 'reason'}>
          {why}
        </span>
      )}
    </>
  );
}
