// The message that there is no answer, in letters as large as the state's.
import { formatInstant } from '../format';
import { lostSince, now } from '../store';

/** Empty while answers come and the values below are current. */
export function Lost({ look }: { look: string }) {
  const since = lostSince.value;
  return since === undefined ? null : (
    <p class={look}>No answer since {formatInstant(since, now.value)}</p>
  );
}
