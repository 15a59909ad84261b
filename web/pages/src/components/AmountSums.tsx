// The sums of the amounts, for each channel and for all.
import { decimalsOf, differenceText, sumOf, wholeIn, type CalibratedPeak } from '../peaks';

interface Props {
  channels: readonly { channel: string; peaks: readonly CalibratedPeak[] }[];
  peaks: readonly CalibratedPeak[];
  /** Empty if the owner has not named it. */
  unit: string;
}

export function AmountSums({ channels, peaks, unit }: Props) {
  const decimals = decimalsOf(peaks);
  const suffix = unit && `\u00a0${unit}`;
  const textOf = (sum: number | undefined): string =>
    sum === undefined ? 'not known yet' : sum.toFixed(decimals) + suffix;
  const all = sumOf(peaks);
  const whole = wholeIn(unit);
  return (
    <dl class="facts inline sums">
      {channels.map(({ channel, peaks: own }) => (
        <div key={channel}>
          <dt>Sum of channel {channel}</dt>
          <dd class="number">{textOf(sumOf(own))}</dd>
        </div>
      ))}
      <div>
        <dt>Sum of all</dt>
        <dd class="number">{textOf(all)}</dd>
      </div>
      {whole !== undefined && (
        <div>
          <dt>
            Compared with {whole}
            {suffix}
          </dt>
          <dd class="number">
            {all === undefined ? 'not known yet' : differenceText(all, whole, decimals)}
          </dd>
        </div>
      )}
    </dl>
  );
}
