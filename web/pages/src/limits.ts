// Limits of the gateway's interface, from its description.
import { properties as ofBackups } from '../../../docs/schemas/backups.schema.json';
import { definitions } from '../../../docs/schemas/command-run.schema.json';
import { properties as ofSequence } from '../../../docs/schemas/sequence.schema.json';
import { properties as ofSolution } from '../../../docs/schemas/command-solution.schema.json';

declare const __LONGEST_BODY__: number;

/** The highest stream that a command or a line of the sequence may name. */
export const lastStream = definitions.stream.maximum;

/** Slots of solutions are 0 to this. */
export const lastSlot = ofSolution.solution.maximum;

/** The most lines that a sequence can have. */
export const sequenceLines = ofSequence.rows.maxItems;

/** How many earlier tables of each kind the gateway keeps. */
export const keptBackups = ofBackups.backups.maxItems;

/** The longest file that the gateway accepts, in octets. */
export const fileLimit = __LONGEST_BODY__;
