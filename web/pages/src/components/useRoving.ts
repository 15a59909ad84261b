// One tab stop for many items; the arrow keys move from one to the next.
import { useState } from 'preact/hooks';

/** Returns the attributes for the element of the n-th of `count` items. */
export function useRoving(
  count: number,
  onChoose: (n: number) => void,
  onReach?: (n: number | undefined) => void,
) {
  const [reached, setReached] = useState(0);
  return (n: number) => ({
    // SVG elements know only attributes, in lower case.
    tabindex: n === Math.min(reached, count - 1) ? 0 : -1,
    'data-stop': n,
    onFocus: () => {
      setReached(n);
      onReach?.(n);
    },
    onBlur: () => onReach?.(undefined),
    // Focus on mouse down could move the element away before the button is released.
    onMouseDown: (event: MouseEvent) => event.preventDefault(),
    onClick: () => onChoose(n),
    onKeyDown: (event: KeyboardEvent) => {
      const step = { ArrowRight: 1, ArrowLeft: -1 }[event.key];
      const list = (event.currentTarget as Element).closest('[role=list]')!;
      const next =
        step && list.querySelector<SVGElement | HTMLElement>(`[data-stop="${n + step}"]`);
      if (next) {
        next.focus();
      } else if (event.key === 'Enter' || event.key === ' ') {
        onChoose(n);
      } else {
        return;
      }
      event.preventDefault();
    },
  });
}
