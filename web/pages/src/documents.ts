// The gateway's documents. Their types are generated from its description, see interface.mjs.
import type { components } from './interface';

type Schemas = components['schemas'];

/** A real value from the instrument, or "-" if it has none. */
export type Real = Schemas['real'];
export type SetpointAndActual = Schemas['setpointAndActual'];
export type Channel = Schemas['channel'];
export type Status = Schemas['status.schema'];
export type ChannelConfiguration = Schemas['channelConfiguration'];
export type Configuration = Schemas['configuration.schema'];
/** Units in the reports, as far as the web server's owner has named them. */
export type Units = NonNullable<Configuration['units']>;
export type Alarm = Schemas['alarm'];
export type Alarms = Schemas['alarms.schema'];
export type Unfinished = Schemas['unfinished.schema'];
export type BegunCommand = Schemas['begun'];
export type Verdict = Schemas['result.schema'];
export type BackupList = Schemas['backups.schema'];
export type About = Schemas['about.schema'];

export const channelKeys = ['Channel1', 'Channel2', 'Channel3', 'Channel4'] as const;
export type ChannelKey = (typeof channelKeys)[number];

/** A line of a sequence; a file may leave members out. */
export type SequenceLine = Partial<Schemas['line']>;

type SequenceReport = Schemas['sequence.schema'];
export type Sequence = Pick<SequenceReport, 'Table_repeat' | 'total'> &
  Partial<Pick<SequenceReport, 'Continuous'>> & { rows?: SequenceLine[] };

/** A calibrated peak; a file needs only the first three members. */
export type Peak = Pick<Schemas['peak'], 'Channel' | 'ID' | 'Level_amt'> & Partial<Schemas['peak']>;

export type Calibration = Pick<Schemas['calibration.schema'], 'total'> & { rows?: Peak[] };
