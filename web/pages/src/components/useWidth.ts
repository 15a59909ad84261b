// The width of an element, so that a drawing in it fits.
import { useLayoutEffect, useRef, useState } from 'preact/hooks';
import type { RefObject } from 'preact';

/** Assumed where there is no layout. */
const usual = 640;

export function useWidth<T extends Element>(): [RefObject<T>, number] {
  const element = useRef<T>(null);
  const [width, setWidth] = useState(usual);
  useLayoutEffect(() => {
    const { current } = element;
    if (!current) {
      return;
    }
    const measure = (): void => setWidth(Math.round(current.clientWidth) || usual);
    measure();
    const observer = new ResizeObserver(measure);
    observer.observe(current);
    return () => observer.disconnect();
  }, []);
  return [element, width];
}
