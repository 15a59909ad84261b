// Reads a table from a file, or says plainly what is wrong with the file, and where.
import { fileLimit } from './limits';
import { syntaxFaultOf } from './jsonPlace';
import { problemsOf, type Problem } from './schema';
import type { Table } from './table';
import type { TableKind } from './tables';

/** How many faults are listed; nobody would read more. */
const mostFaults = 5;

/** A JSON pointer in words, with rows counted from 1: `/rows/2/Stream` is `row 3, Stream`. */
function placeOf(path: string): string {
  const [, list, index, ...rest] = path.split('/');
  return list === 'rows' && index !== undefined
    ? [`row ${Number(index) + 1}`, ...rest].join(', ')
    : path.slice(1);
}

function sentence({ path, text }: Problem): string {
  return path === '' ? `The file ${text}.` : `${placeOf(path)}: ${text}.`;
}

function parse(octets: ArrayBuffer): unknown {
  let text: string;
  try {
    text = new TextDecoder('utf-8', { fatal: true }).decode(octets);
  } catch {
    throw new Error('It is not text in UTF-8.');
  }
  try {
    return JSON.parse(text);
  } catch {
    const fault = syntaxFaultOf(text);
    const where = fault ? ` Line ${fault.line}, column ${fault.column}: ${fault.text}.` : '';
    throw new Error(`It is not JSON.${where}`);
  }
}

/** Reads a table from an unchecked document; throws an Error that says what is wrong with it. */
export function readDocument(document: unknown, kind: TableKind, current: Table): Table {
  const { schema } = kind.layout(undefined);
  const problems = problemsOf(document, schema, schema);
  if (problems.length > 0) {
    const rest = problems.length - mostFaults;
    const more = rest > 0 ? [`There are ${rest} more faults.`] : [];
    throw new Error([...problems.slice(0, mostFaults).map(sentence), ...more].join(' '));
  }
  return kind.fromFile(document, current);
}

/** Reads an imported file; throws an Error that says what is wrong with it. */
export function readFile(octets: ArrayBuffer, kind: TableKind, current: Table): Table {
  if (octets.byteLength > fileLimit) {
    throw new Error(`It has ${octets.byteLength} octets; the gateway accepts ${fileLimit}.`);
  }
  return readDocument(parse(octets), kind, current);
}
