// One stop of the tabulator for many things; the arrow keys lead from one to the next.
import { useState } from 'preact/hooks';

/** For each of `count` things, in their order: what its element needs. */
export function useRoving(
  count: number,
  onChoose: (n: number) => void,
  onReach?: (n: number | undefined) => void,
) {
  const [reached, setReached] = useState(0);
  return (n: number) => ({
    // Elements of a drawing know attributes only, in small letters.
    tabindex: n === Math.min(reached, count - 1) ? 0 : -1,
    'data-stop': n,
    onFocus: () => {
      setReached(n);
      onReach?.(n);
    },
    onBlur: () => onReach?.(undefined),
    // The mouse chooses: what it presses must not move away before it is let go.
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
