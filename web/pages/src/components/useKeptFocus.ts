// Keeps the focus in its cell while a table is read again: the cells are disabled meanwhile, and
// browsers take the focus from disabled elements.
import { useLayoutEffect, useRef } from 'preact/hooks';

/** Handlers for the fieldset that is disabled while `isBusy`. */
export function useKeptFocus(isBusy: boolean): {
  onFocusIn: (event: FocusEvent) => void;
  onFocusOut: (event: FocusEvent) => void;
} {
  const kept = useRef<HTMLElement | null>(null);
  useLayoutEffect(() => {
    if (!isBusy && kept.current?.isConnected && document.activeElement === document.body) {
      kept.current.focus();
    }
  }, [isBusy]);
  return {
    onFocusIn: ({ target }) => {
      kept.current = target as HTMLElement;
    },
    onFocusOut: ({ currentTarget }) => {
      if (!(currentTarget as HTMLFieldSetElement).disabled) {
        kept.current = null;
      }
    },
  };
}
