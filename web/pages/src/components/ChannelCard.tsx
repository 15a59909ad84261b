// A channel's values, each with its bar and its last ten minutes.
import type { Channel, SetpointAndActual } from '../documents';
import { deviationOf, formatReal, notAvailable } from '../format';
import { quantities, seriesOf, type Measure } from '../quantities';
import { nameWithUnit, valueWithUnit } from '../units';
import { Bar, Sparkline } from './Gauges';

export function Pair(props: {
  label: string;
  pair: SetpointAndActual;
  measure: Measure;
  /** Its place in the status. */
  place: string;
}) {
  const { label, pair, measure, place } = props;
  const { decimals, tolerance, unit } = measure;
  const deviation = deviationOf(pair, tolerance, decimals);
  const name = nameWithUnit(label, unit);
  if (pair.Setpoint === '-' && pair.Actual === '-') {
    return (
      <tr>
        <th scope="row">{name}</th>
        <td colSpan={3} class="dim">
          {notAvailable}
        </td>
      </tr>
    );
  }
  return (
    <tr>
      <th scope="row">
        {name}
        <Sparkline name={seriesOf(place)} {...{ pair, tolerance }} />
      </th>
      <td class="number">{formatReal(pair.Setpoint, decimals)}</td>
      <td class="number">{formatReal(pair.Actual, decimals)}</td>
      <td class={`deviation ${deviation.level}`}>
        {deviation.text}
        <Bar {...{ pair, tolerance }} />
      </td>
    </tr>
  );
}

export function PairTable({ children }: { children: preact.ComponentChildren }) {
  return (
    <table class="pairs">
      <thead>
        <tr>
          <th scope="col">Quantity</th>
          <th scope="col" class="number">
            Setpoint
          </th>
          <th scope="col" class="number">
            Actual
          </th>
          <th scope="col">Deviation</th>
        </tr>
      </thead>
      <tbody>{children}</tbody>
    </table>
  );
}

export function ChannelCard(props: { number: number; channel: Channel; note: string }) {
  const { number, channel, note } = props;
  const { TCD } = channel;
  const id = `channel-${number}`;
  return (
    <section class="card" aria-labelledby={id}>
      <h2 id={id}>
        Channel {number}
        {/* The space is for screen readers. */}
        {note && (
          <>
            {' '}
            <span class="note text">{note}</span>
          </>
        )}
      </h2>
      <PairTable>
        {quantities.map((quantity) => (
          <Pair
            key={quantity.key}
            label={quantity.short}
            pair={channel[quantity.key]}
            measure={quantity}
            place={`Channel${number}.${quantity.key}`}
          />
        ))}
      </PairTable>
      <dl class="facts">
        <dt>Detector</dt>
        <dd class={TCD.State === 'On' ? undefined : 'deviation off'}>
          {TCD.State === 'On' ? 'on' : 'off'}
        </dd>
        <dt>Auto zero</dt>
        <dd class="number">{valueWithUnit(formatReal(TCD.Auto_zero, 3), 'auto_zero')}</dd>
        <dt>Calibrated</dt>
        <dd class={TCD.Calibrated === 'OK' ? 'deviation good' : 'deviation off'}>
          {TCD.Calibrated === 'OK' ? 'yes' : 'no'}
        </dd>
      </dl>
    </section>
  );
}
