// The instrument's present values.
import { ActiveAlarms } from '../components/ActiveAlarms';
import { ChannelCard, Pair, PairTable } from '../components/ChannelCard';
import { Chart } from '../components/Chart';
import { ExpectedEnd } from '../components/ExpectedEnd';
import { Lost } from '../components/Lost';
import { Now } from '../components/Now';
import { Schematic } from '../components/Schematic';
import { channelKeys, type Status, type Units } from '../documents';
import { formatPosition, formatReal } from '../format';
import { sampleLine } from '../quantities';
import { withoutNothing } from '../states';
import { configuration, lostSince, status } from '../store';
import { isUnitMissing, valueWithUnit } from '../units';

/** Units that this page needs. */
const units: readonly (keyof Units)[] = [
  'temperature',
  'pressure',
  'ambient_pressure',
  'auto_zero',
];

/** The column's description, and whether the channel is disabled. */
function noteOf(key: (typeof channelKeys)[number]): string {
  const channel = configuration.value?.[key];
  return [channel?.Description, channel?.Disabled && 'disabled'].filter(Boolean).join(', ');
}

function Overview({ current }: { current: Status }) {
  const hasError = current.Error_code > 0;
  const facts: [name: string, value: string | number, look?: string][] = [
    ['Run type', current.Run_type],
    ['Last analysis', `No. ${current.Last_counter}`],
    ['Automation', withoutNothing(current.Auto_state)],
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
      <ActiveAlarms />
      <dl class="columns">
        <ExpectedEnd />
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
      <PairTable>
        <Pair
          label={sampleLine.short}
          pair={current.Sample_line_temp}
          measure={sampleLine}
          place="Sample_line_temp"
        />
      </PairTable>
      <dl class="facts">
        <dt>Ambient temperature</dt>
        <dd class="number">{valueWithUnit(formatReal(current.Ambient_temp, 0), 'temperature')}</dd>
        <dt>Ambient pressure</dt>
        <dd class="number">
          {valueWithUnit(formatReal(current.Ambient_press, 2), 'ambient_pressure')}
        </dd>
      </dl>
      {isUnitMissing(units) && (
        <p class="dim">Values without a unit are in the unit that the instrument is set to.</p>
      )}
    </section>
  );
}

export function StatusPage() {
  const current = status.value;
  if (!current) {
    return <p>Waiting for the first answer of the instrument.</p>;
  }
  return (
    <>
      <Lost look="lost" />
      {lostSince.value !== undefined && <p>These are the last values:</p>}
      <div class="live">
        <Overview current={current} />
        <Schematic status={current} />
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
    </>
  );
}
