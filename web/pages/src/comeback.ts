// Requests again whatever could not be read while the instrument was away.
import { useEffect, useRef } from 'preact/hooks';
import { returns, samples } from './store';

/**
 * Calls `load` when a page is shown, when the instrument comes back, and after every status while
 * `isMissing`: the instrument may have been away between two of them.
 */
export function useLoad(load: () => void, isMissing: boolean): void {
  const first = useRef(samples.peek());
  useEffect(load, [returns.value]);
  // Only a page that still misses something subscribes to every status.
  useEffect(() => {
    if (isMissing && samples.peek() !== first.current) {
      load();
    }
  }, [isMissing && samples.value]);
}
