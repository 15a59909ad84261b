// Describes what became of a table that was sent.
import type { Fault } from './api';
import { isEmptyDiff, type TableDiff } from './diff';

export interface Message {
  kind: 'good' | 'bad';
  text: string;
  /** When it was written, in milliseconds. */
  time: number;
  diff?: TableDiff;
}

/** What is sent: the edited table, or one that the instrument had before. */
export type Goal = 'edits' | 'restore';

/** How the instrument's table compares after sending. */
export interface Found {
  /** From the table that was sent to the one that the instrument has. */
  toSent: TableDiff;
  /** From the one that it had before. */
  toBefore: TableDiff;
}

const same: Readonly<Record<Goal, string>> = {
  edits: 'Sent, read back, and identical.',
  restore: 'The previous table is on the instrument again: sent, read back, and identical.',
};

/** Whether the instrument may still be at work on the table. */
function isUnknown({ status, isUnknown: isSaid }: Fault): boolean {
  return isSaid === true || status === 0;
}

/** Whether the instrument has stored only a part of the table. */
export function isHalfway(fault: Fault | undefined, found: Found): boolean {
  return fault !== undefined && !isEmptyDiff(found.toSent) && !isEmptyDiff(found.toBefore);
}

/** `fault`: why the table was not accepted, with its description. */
export function outcome(
  goal: Goal,
  fault: (Fault & { description: string }) | undefined,
  found: Found,
): Omit<Message, 'time'> {
  const isThere = isEmptyDiff(found.toSent);
  if (!fault) {
    return isThere
      ? { kind: 'good', text: same[goal] }
      : {
          kind: 'bad',
          text: 'The instrument accepted the table, but what it has now differs:',
          diff: found.toSent,
        };
  }
  const said = fault.description;
  const wait = isUnknown(fault)
    ? ' It may still be at work: read the table again in a few minutes.'
    : '';
  if (isThere) {
    return { kind: 'bad', text: `${said} Even so the instrument now has the table.${wait}` };
  }
  if (isEmptyDiff(found.toBefore)) {
    return { kind: 'bad', text: `${said} The instrument’s table is as it was before.${wait}` };
  }
  return {
    kind: 'bad',
    text: `${said} The instrument does not have the table as it was sent.${wait} What it has differs:`,
    diff: found.toSent,
  };
}
