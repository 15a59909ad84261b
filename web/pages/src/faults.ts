// Describes faults to the user.
import type { Fault } from './api';
import { status } from './contact';
import { describeRefusal } from './refusals';
import { isSimulated } from './states';

/** A known error number becomes a sentence, followed by the number. */
export function describeFault({ text, detail, code }: Fault): string {
  const isOurs = status.value !== undefined && isSimulated(status.value);
  const known = code === undefined ? undefined : describeRefusal(code, isOurs);
  // The text for a refused table says which peak it was.
  const [, channel, peak] = /chan\[(\d+)\] peak\[(\d+)\]/.exec(detail) ?? [];
  const where = peak === undefined ? '' : ` at channel ${channel}, peak ${peak}`;
  const more = known ? known + where : detail.replace(/\.$/, '');
  return more ? `${text} ${more}.` : text;
}
