// How wide an element is, so that what is drawn in it fits.
import { useLayoutEffect, useRef, useState } from 'preact/hooks';
import type { RefObject } from 'preact';

/** What is assumed where nothing is laid out. */
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
