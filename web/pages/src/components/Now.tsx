// The instrument's present state, in one line where there is room for it.
import type { Status } from '../documents';
import { withoutNothing } from '../states';
import { Progress } from './Progress';

export function Now({ status }: { status: Status }) {
  return (
    <dl class="facts inline">
      <dt>State</dt>
      <dd>{withoutNothing(status.GC_state)}</dd>
      <dt>Stream</dt>
      <dd data-testid="stream">{status.Curr_stream}</dd>
      <dt>Run</dt>
      <dd class="grows">
        <Progress status={status} />
      </dd>
    </dl>
  );
}
