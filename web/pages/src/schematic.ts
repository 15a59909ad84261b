// The gas flow through the fitted parts, from configuration and status.
import {
  channelKeys,
  type Channel,
  type ChannelKey,
  type Configuration,
  type SetpointAndActual,
  type Status,
} from './documents';
import { deviationOf, formatReal, notAvailable } from './format';
import { quantities, sampleLine, type Measure } from './quantities';

/** `good` is as it should be; `off` needs attention; `none` is absent, unknown or disabled. */
export type Level = 'good' | 'off' | 'none';

/** One value shown for a part. */
export interface Reading {
  /** The quantity, where it is not obvious. */
  label?: string;
  value: string;
  unit?: Measure['unit'] | 'auto_zero';
  /** Its state in words; empty if there is nothing to say. */
  state: string;
  level: Level;
}

export interface Part {
  icon: 'valve' | 'line' | 'injector' | 'column' | 'detector';
  name: string;
  readings: Reading[];
}

export interface Branch {
  title: string;
  /** The column's description, the carrier gas, and whether the channel is disabled. */
  note: string;
  isDisabled: boolean;
  /** In the order of the gas flow. */
  parts: Part[];
}

export interface Schematic {
  /** The parts that all channels share, in the order of the gas flow. */
  inlet: Part[];
  branches: Branch[];
  /** What the drawing cannot show. */
  remarks: string[];
}

function controlled(pair: SetpointAndActual, measure: Measure, label?: string): Reading {
  const { level, text } = deviationOf(pair, measure.tolerance, measure.decimals);
  return {
    ...(label && { label }),
    value: formatReal(pair.Actual, measure.decimals),
    unit: measure.unit,
    state:
      text === notAvailable && pair.Actual === '-' ? '' : text.replace(notAvailable, 'no setpoint'),
    level,
  };
}

function valveOf(status: Status, configuration: Configuration | undefined): Part {
  const stream = status.Curr_stream;
  const { Stream_configured: isFitted, Stream_max: max = 0 } = configuration ?? {};
  const isBeyond = isFitted === true && (stream < 0 || stream > max);
  const states = new Map([
    [undefined, 'streams not known yet'],
    [false, 'no stream selector'],
    [true, isBeyond ? `the selector has ${max}` : `of ${max}`],
  ]);
  return {
    icon: 'valve',
    name: 'Stream valve',
    readings: [
      {
        value: `Stream ${stream}`,
        state: states.get(isFitted)!,
        level: isBeyond ? 'off' : isFitted ? 'good' : 'none',
      },
    ],
  };
}

function lineOf({ Sample_line_temp: pair }: Status): Part {
  const isFitted = pair.Setpoint !== '-' || pair.Actual !== '-';
  return {
    icon: 'line',
    name: 'Sample line',
    readings: [
      isFitted ? controlled(pair, sampleLine) : { value: 'not heated', state: '', level: 'none' },
    ],
  };
}

function detectorOf({ TCD }: Channel): Part {
  const isOn = TCD.State === 'On';
  const isCalibrated = TCD.Calibrated === 'OK';
  return {
    icon: 'detector',
    name: 'Detector',
    readings: [
      { value: isOn ? 'on' : 'off', state: '', level: isOn ? 'good' : 'off' },
      {
        value: isCalibrated ? 'calibrated' : 'not calibrated',
        state: '',
        level: isCalibrated ? 'good' : 'off',
      },
    ],
  };
}

function partsOf(channel: Channel): Part[] {
  const [column, injector, pressure] = quantities;
  return [
    {
      icon: 'injector',
      name: 'Injector',
      readings: [controlled(channel.Injector_temp, injector!)],
    },
    {
      icon: 'column',
      name: 'Column',
      readings: [
        controlled(channel.Column_temp, column!),
        controlled(channel.Column_press, pressure!, 'Pressure'),
      ],
    },
    detectorOf(channel),
  ];
}

function branchOf(key: ChannelKey, channel: Channel, known: Configuration | undefined): Branch {
  const { Description = '', Gas = '', Disabled: isDisabled = false } = known?.[key] ?? {};
  const parts = partsOf(channel);
  return {
    title: `Channel ${key.slice(-1)}`,
    note: [Description, Gas === 'Unknown' ? '' : Gas, isDisabled ? 'disabled' : '']
      .filter(Boolean)
      .join(', '),
    isDisabled,
    parts: isDisabled ? parts.map(quiet) : parts,
  };
}

/** A part that was disabled on purpose needs no attention. */
function quiet(part: Part): Part {
  return { ...part, readings: part.readings.map((one) => ({ ...one, level: 'none' })) };
}

function list(names: readonly string[]): string {
  return `${names.length === 1 ? 'Channel' : 'Channels'} ${names.join(', ')}`;
}

export function schematicOf(status: Status, configuration: Configuration | undefined): Schematic {
  const numbersOf = (is: (key: ChannelKey) => boolean): string[] =>
    channelKeys.filter(is).map((key) => key.slice(-1));
  const missing = numbersOf((key) => !status[key]);
  const silent = numbersOf((key) => !status[key] && configuration?.[key].Installed === true);
  const absent = missing.filter((number) => !silent.includes(number));
  return {
    inlet: [valveOf(status, configuration), lineOf(status)],
    branches: channelKeys.flatMap((key) => {
      const channel = status[key];
      return channel ? [branchOf(key, channel, configuration)] : [];
    }),
    remarks: [
      absent.length > 0 && `${list(absent)}: not installed.`,
      silent.length > 0 && `${list(silent)}: installed, but the status tells nothing of it.`,
      !configuration &&
        'The configuration is not known yet: which channels are disabled, and how many streams there are.',
    ].filter((remark) => remark !== false),
  };
}
