// Describes interrupted commands, which the instrument may or may not have carried out.
import type { BegunCommand } from './documents';

/** By the tool's options; a number after the options is added to the name. */
const names: readonly [options: string, name: string][] = [
  ['-R single -v', 'Single run on stream'],
  ['-R calib -v', 'Calibration on stream'],
  ['-R auto', 'Start of the automation'],
  ['-A now', 'Abort'],
  ['-A auto', 'Stop after the run'],
  ['-V', 'Switch to stream'],
  ['-M', 'Load of solution'],
  ['-P', 'Reset of all alarms'],
  ['-Q', 'Sequence table'],
  ['-C', 'Calibration table'],
];

function nameOf(options: string): string {
  const found = names.find(([begin]) => options === begin || options.startsWith(`${begin} `));
  return found ? `${found[1]}${options.slice(found[0].length)}` : options;
}

/** What the user must know about an interrupted command. */
export function describeInterruption({ command, user, time }: BegunCommand): string {
  const when = new Date(time);
  const begun = Number.isNaN(when.getTime()) ? time : when.toLocaleString();
  return `${nameOf(command.join(' '))}, given by ${user} on ${begun}, was interrupted. Whether the instrument has carried it out, or a part of it, is not known: look at the instrument and its tables.`;
}
