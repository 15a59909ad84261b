// The documents of the gateway, as docs/schemas describes them.

/** A real value of the instrument, or "-" when it has none. */
export type Real = number | '-';

export interface SetpointAndActual {
  Setpoint: Real;
  Actual: Real;
}

export interface Channel {
  Column_temp: SetpointAndActual;
  Column_press: SetpointAndActual;
  Injector_temp: SetpointAndActual;
  TCD: { Auto_zero: Real; State: 'On' | 'Off'; Calibrated: 'OK' | 'X' };
}

export const channelKeys = ['Channel1', 'Channel2', 'Channel3', 'Channel4'] as const;
export type ChannelKey = (typeof channelKeys)[number];

export interface Status extends Partial<Record<ChannelKey, Channel>> {
  GC_time: string;
  Application: string;
  Host: 'monitoring' | 'online';
  Total_run_time: number;
  Run_time: number;
  Error_code: number;
  Error_str: string;
  Alarm_overall: boolean;
  Curr_stream: number;
  Last_counter: number;
  Continuous: boolean;
  Seq_line: number;
  Line_replicate: number;
  Seq_replicate: number;
  Run_type: string;
  GC_state: string;
  Ext_ready_in: 'Ready' | 'Not Ready';
  Auto_state: string;
  Service_switch: 'On' | 'Off';
  Ambient_press: Real;
  Ambient_temp: number;
  Sample_line_temp: SetpointAndActual;
}

export interface ChannelConfiguration {
  Installed: boolean;
  Disabled: boolean;
  Serial: number;
  PN: number;
  Description: string;
  Gas: string;
}

/** Units of the reports, as far as the web server's owner names them. */
export interface Units {
  temperature?: string;
  pressure?: string;
  ambient_pressure?: string;
  retention_time?: string;
  flush_time?: string;
  amount?: string;
  auto_zero?: string;
}

export interface Configuration extends Record<ChannelKey, ChannelConfiguration> {
  Inst_name: string;
  Site_info: string;
  Inst_serial: number;
  Stream_configured: boolean;
  Stream_max: number;
  units?: Units;
}

export interface Alarm {
  SampleType: string;
  GroupID: number;
  GroupStr: string;
  ParamID: number;
  ParamStr: string;
  Triggered: boolean;
}

export interface Alarms {
  total: number;
  rows?: Alarm[];
}

/** A line of a sequence; a file may leave members out. */
export interface SequenceLine {
  Type?: string;
  Repeat?: number;
  Stream?: number;
  Slot?: number;
  Flush_time?: Real;
}

export interface Sequence {
  Table_repeat: number;
  Continuous?: boolean;
  total: number;
  rows?: SequenceLine[];
}

/** A calibrated peak; a file needs the first three members only. */
export interface Peak {
  Channel: number;
  ID: number;
  Level_amt: Real;
  PkName?: string;
  Ret_time?: Real;
  Linear?: Real;
}

export interface Calibration {
  total: number;
  rows?: Peak[];
}

/** A command that has begun, as the gateway's log tells it. */
export interface BegunCommand {
  time: string;
  id: string;
  user: string;
  /** Options of the tool. */
  command: string[];
}

export interface Unfinished {
  going_on: BegunCommand[];
  interrupted: BegunCommand[];
}

export interface Verdict {
  ErrorCode: number;
  Msg: string;
}

/** The largest file that the gateway takes, in octets. */
export const fileLimit = 65536;
