// The instrument's present values.
import { Chart } from '../components/Chart';
import { Now } from '../components/Now';
import { channelKeys, type Channel, type SetpointAndActual, type Status } from '../documents';
import { deviationOf, formatPosition, formatReal, notAvailable } from '../format';
import { quantities, sampleLine } from '../quantities';
import { configuration, status } from '../store';

function Pair(props: {
  label: string;
  pair: SetpointAndActual;
  decimals: number;
  tolerance: number;
}) {
  const { label, pair, decimals, tolerance } = props;
  const deviation = deviationOf(pair, tolerance, decimals);
  if (pair.Setpoint === '-' && pair.Actual === '-') {
    return (
      <tr>
        <th scope="row">{label}</th>
        <td colSpan={3} class="dim">
          {notAvailable}
        </td>
      </tr>
    );
  }
  return (
    <tr>
      <th scope="row">{label}</th>
      <td class="number">{formatReal(pair.Setpoint, decimals)}</td>
      <td class="number">{formatReal(pair.Actual, decimals)}</td>
      <td class={`deviation ${deviation.level}`}>{deviation.text}</td>
    </tr>
  );
}

function PairHead({ first }: { first: string }) {
  return (
    <thead>
      <tr>
        <th scope="col">{first}</th>
        <th scope="col" class="number">
          Setpoint
        </th>
        <th scope="col" class="number">
          Actual
        </th>
        <th scope="col">Deviation</th>
      </tr>
    </thead>
  );
}

function ChannelCard({
  number,
  channel,
  note,
}: {
  number: number;
  channel: Channel;
  note: string;
}) {
  const { TCD } = channel;
  const id = `channel-${number}`;
  return (
    <section class="card" aria-labelledby={id}>
      <h2 id={id}>
        Channel {number}
        {/* The space is for who hears it. */}
        {note && (
          <>
            {' '}
            <span class="note text">{note}</span>
          </>
        )}
      </h2>
      <table>
        <PairHead first="Quantity" />
        <tbody>
          {quantities.map(({ key, short, decimals, tolerance }) => (
            <Pair key={key} pair={channel[key]} label={short} {...{ decimals, tolerance }} />
          ))}
        </tbody>
      </table>
      <dl class="facts">
        <dt>Detector</dt>
        <dd class={TCD.State === 'On' ? undefined : 'deviation off'}>
          {TCD.State === 'On' ? 'on' : 'off'}
        </dd>
        <dt>Auto zero</dt>
        <dd class="number">{formatReal(TCD.Auto_zero, 3)}</dd>
        <dt>Calibrated</dt>
        <dd class={TCD.Calibrated === 'OK' ? 'deviation good' : 'deviation off'}>
          {TCD.Calibrated === 'OK' ? 'yes' : 'no'}
        </dd>
      </dl>
    </section>
  );
}

/** The column's description, and that the channel is switched off. */
function noteOf(key: (typeof channelKeys)[number]): string {
  const channel = configuration.value?.[key];
  return [channel?.Description, channel?.Disabled && 'disabled'].filter(Boolean).join(', ');
}

function Overview({ current }: { current: Status }) {
  const hasError = current.Error_code > 0;
  const facts: [name: string, value: string | number, look?: string][] = [
    ['Kind of run', current.Run_type],
    ['Last analysis', `No. ${current.Last_counter}`],
    ['Automation', current.Auto_state],
    ['Sequence', formatPosition(current.Seq_line, current.Line_replicate, current.Seq_replicate)],
    ['Continuous', current.Continuous ? 'yes' : 'no'],
    [
      'Error',
      hasError ? `${current.Error_code}: ${current.Error_str}` : 'none',
      hasError ? 'deviation off text' : 'text',
    ],
    ['External ready', current.Ext_ready_in === 'Ready' ? 'ready' : 'not ready'],
    ['Service switch', current.Service_switch === 'On' ? 'on' : 'off'],
    ['Host', current.Host],
    ['Clock', current.GC_time],
  ];
  return (
    <section class="card wide" aria-labelledby="instrument">
      <h2 id="instrument">Instrument</h2>
      <Now status={current} />
      <dl class="columns">
        {facts.map(([name, value, look]) => (
          <div key={name}>
            <dt>{name}</dt>
            <dd class={look}>{value}</dd>
          </div>
        ))}
      </dl>
    </section>
  );
}

function Surroundings({ current }: { current: Status }) {
  return (
    <section class="card" aria-labelledby="surroundings">
      <h2 id="surroundings">Sample line and surroundings</h2>
      <table>
        <PairHead first="Quantity" />
        <tbody>
          <Pair
            label={sampleLine.short}
            pair={current.Sample_line_temp}
            decimals={sampleLine.decimals}
            tolerance={sampleLine.tolerance}
          />
        </tbody>
      </table>
      <dl class="facts">
        <dt>Ambient temperature</dt>
        <dd class="number">{formatReal(current.Ambient_temp, 0)}</dd>
        <dt>Ambient pressure</dt>
        <dd class="number">{formatReal(current.Ambient_press, 2)}</dd>
      </dl>
      <p class="dim">All values in the units that the instrument is set to.</p>
    </section>
  );
}

export function StatusPage() {
  const current = status.value;
  if (!current) {
    return <p>Waiting for the first answer of the instrument.</p>;
  }
  return (
    <div class="live">
      <Overview current={current} />
      <div class="cards">
        {channelKeys.map((key, index) => {
          const channel = current[key];
          return channel ? (
            <ChannelCard key={key} number={index + 1} channel={channel} note={noteOf(key)} />
          ) : null;
        })}
        <Surroundings current={current} />
      </div>
      <Chart status={current} />
    </div>
  );
}
