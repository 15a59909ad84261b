// A button for an action of the instrument: off, with the reason in words, when it cannot be taken.
// It stays focusable then, so that the focus is not lost with every command and the reason is found.
import { useId } from 'preact/hooks';
import type { Action } from '../states';
import { reasonNotTo } from '../store';

interface Props {
  action: Action;
  label: string;
  kind?: 'primary' | 'danger';
  /** Shows the reason as a tooltip only, where there is no room for it. */
  isCompact?: boolean;
  /** Another reason of the page's own. */
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
