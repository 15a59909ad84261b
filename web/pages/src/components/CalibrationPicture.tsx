// The sums of a calibration's amounts, and each channel's peaks over time.
import { useLayoutEffect, useRef, useState } from 'preact/hooks';
import type { Editor } from '../editor';
import { channelsOf, peaksOf, shortNumber, togetherIn, type CalibratedPeak } from '../peaks';
import { decadesOf, timeAxisOf, widthOf } from '../sticks';
import { nameWithUnit, unitOf, valueWithUnit } from '../units';
import { AmountSums } from './AmountSums';
import { hasTime, Sticks } from './Sticks';

const mostSteps = 5;

function goToCell({ rowId }: CalibratedPeak): void {
  document.querySelector<HTMLElement>(`[data-row="${rowId}"][data-key="Level_amt"]`)?.focus();
}

/** Scrolls to the peak, where the picture itself can be scrolled. */
function showIn(picture: HTMLElement, rowId: number): void {
  const stick = picture.querySelector(`[data-peak="${rowId}"]`)?.closest('section');
  if (stick) {
    const inner = stick.getBoundingClientRect();
    const outer = picture.getBoundingClientRect();
    const below = inner.bottom - outer.bottom;
    picture.scrollTop += Math.min(inner.top - outer.top, Math.max(0, below));
  }
}

const listOf = (peaks: readonly CalibratedPeak[]): string =>
  peaks.map(({ name }) => name).join(', ');

export function CalibrationPicture(props: { editor: Editor; focusedRow: number | undefined }) {
  const { editor, focusedRow } = props;
  const picture = useRef<HTMLDivElement>(null);
  const [reached, setReached] = useState<CalibratedPeak>();
  const draft = editor.draft.value;
  const peaks = draft ? peaksOf(draft, editor.layout.value) : [];
  const focused = peaks.find(({ index }) => index === (reached?.index ?? focusedRow));
  useLayoutEffect(() => {
    if (focused && picture.current) {
      showIn(picture.current, focused.rowId);
    }
  }, [focused?.rowId]);
  if (peaks.length === 0) {
    return null;
  }

  const describe = ({ name, time, amount }: CalibratedPeak): string => {
    const when =
      time === undefined
        ? 'no retention time'
        : `retention time ${valueWithUnit(shortNumber(time), 'retention_time')}`;
    const what =
      amount === undefined
        ? 'amount not known yet'
        : `amount ${valueWithUnit(shortNumber(amount), 'amount')}`;
    return `${name}: ${when}, ${what}`;
  };
  const timed = peaks.filter(hasTime);
  const axis = timeAxisOf(
    timed.map(({ time }) => time),
    mostSteps,
  );
  const decades = decadesOf(timed.map(({ amount }) => amount));
  const longestName = Math.max(...peaks.map(({ name }) => widthOf(name)));
  const channels = channelsOf(peaks);
  return (
    <section class="picture sideways" aria-labelledby="peaks">
      <h2 id="peaks">Peaks and amounts</h2>
      <AmountSums channels={channels} peaks={peaks} unit={unitOf('amount')} />
      <p class="readout text">{focused ? describe(focused) : 'No peak is selected.'}</p>
      <div class="channels" ref={picture}>
        {channels.map(({ channel, peaks: own }) => {
          const untimed = own.filter((peak) => !hasTime(peak));
          return (
            <section key={channel} aria-labelledby={`peaks-${channel}`}>
              <h3 id={`peaks-${channel}`}>Channel {channel}</h3>
              {untimed.length < own.length && (
                <Sticks
                  channel={channel}
                  peaks={own.filter(hasTime)}
                  decades={decades}
                  axis={axis}
                  longestName={longestName}
                  timeLabel={nameWithUnit('Retention time', 'retention_time')}
                  describe={describe}
                  focusedRow={focused?.index}
                  onChoose={goToCell}
                  onReach={setReached}
                />
              )}
              {untimed.length > 0 && (
                <p class="text">Without a retention time, not drawn: {listOf(untimed)}.</p>
              )}
              {togetherIn(own).map((together) => (
                <p key={together[0]!.rowId} class="text">
                  At the same retention time: {listOf(together)}.
                </p>
              ))}
            </section>
          );
        })}
        <p>
          <small class="dim">
            Heights are logarithmic and the same for all channels. A ring on the line is an amount
            of 0, a question mark one that is not known yet.
          </small>
        </p>
      </div>
    </section>
  );
}
