// What was not to be had while the instrument was away is asked for again by itself.
import { useEffect, useRef } from 'preact/hooks';
import { returns, samples } from './store';

/**
 * Calls `load` when a page is shown, when the instrument comes back, and with every status while
 * `isMissing`: then it was away between two of them.
 */
export function useLoad(load: () => void, isMissing: boolean): void {
  const first = useRef(samples.peek());
  useEffect(load, [returns.value]);
  // A page that has what it needs does not follow every status.
  useEffect(() => {
    if (isMissing && samples.peek() !== first.current) {
      load();
    }
  }, [isMissing && samples.value]);
}
