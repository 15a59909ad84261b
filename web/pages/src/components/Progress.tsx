// The run's progress: elapsed and total time.
import { formatSpan } from '../format';
import type { Status } from '../documents';
import { gcStateOf } from '../states';

export function Progress({ status }: { status: Status }) {
  if (gcStateOf(status) !== 'Running') {
    return <span>no run</span>;
  }
  const { Run_time: elapsed, Total_run_time: total } = status;
  const text = `${formatSpan(elapsed)} of ${formatSpan(total)}`;
  const part = total > 0 ? Math.min(1, Math.max(0, elapsed / total)) : 0;
  return (
    <div class="progress">
      <div
        class="progress-bar"
        role="progressbar"
        aria-label="Run"
        aria-valuemin={0}
        aria-valuemax={Math.max(total, elapsed)}
        aria-valuenow={elapsed}
        aria-valuetext={text}
      >
        <div style={{ width: `${part * 100}%` }} />
      </div>
      <span class="number">{text}</span>
    </div>
  );
}
