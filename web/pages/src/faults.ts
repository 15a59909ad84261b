// Why there is no good answer, in words for the person in front.
import type { Fault } from './api';
import { status } from './contact';
import { describeRefusal } from './refusals';
import { isSimulated } from './states';

/** A number of the instrument that is known is said as a sentence, with the number behind it. */
export function describeFault({ text, detail, code }: Fault): string {
  const isOurs = status.value !== undefined && isSimulated(status.value);
  const known = code === undefined ? undefined : describeRefusal(code, isOurs);
  // A refused table: the words tell which peak it was.
  const [, channel, peak] = /chan\[(\d+)\] peak\[(\d+)\]/.exec(detail) ?? [];
  const where = peak === undefined ? '' : ` at channel ${channel}, peak ${peak}`;
  const more = known ? known + where : detail.replace(/\.$/, '');
  return more ? `${text} ${more}.` : text;
}
