// When the run and the automation are expected to end, as terms with descriptions.
import type { ReadonlySignal } from '@preact/signals';
import { expectedAutomationEnd, expectedRunEnd } from '../expected';
import { describeEnd, type End } from '../schedule';
import { now } from '../store';

/** An end in words; `isBrief` where there is no room for the reason. */
export function EndText({ of, isBrief }: { of: ReadonlySignal<End>; isBrief?: boolean }) {
  const end = of.value;
  const hasReason = !isBrief && 'why' in end;
  return (
    <>
      <span class="number">{describeEnd(end, now.value) || '–'}</span>
      {hasReason && <small class="dim"> ({end.why})</small>}
    </>
  );
}

/** For use in a `dl`; always shows both, so that nothing below moves. */
export function ExpectedEnd({ isBrief }: { isBrief?: boolean }) {
  return (
    <>
      <div>
        <dt>Run ends</dt>
        <dd data-testid="run-end">
          <EndText of={expectedRunEnd} isBrief={isBrief ?? false} />
        </dd>
      </div>
      <div>
        <dt>Automation ends</dt>
        <dd data-testid="automation-end">
          <EndText of={expectedAutomationEnd} isBrief={isBrief ?? false} />
        </dd>
      </div>
    </>
  );
}
