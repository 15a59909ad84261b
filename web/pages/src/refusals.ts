// The numbers with which tool, client library and instrument refuse, as sentences.

/** A sentence without its full stop, for each number that is known. */
type Sentences = Readonly<Record<number, string>>;

/** Of every instrument: the tool's own, and what the library's documentation tells. */
const everywhere: Sentences = {
  1: 'The instrument’s client library did not start',
  28: 'Part of what was requested could not be read',
};

/**
 * Of the simulated instrument alone: its statuses are its own, and another maker's number may mean
 * something else. Whoever knows an instrument's numbers adds them above.
 */
const simulated: Sentences = {
  104: 'The controller refused the connection',
  105: 'The controller did not accept the connection in time',
  107: 'The controller did not answer in time',
  108: 'The connection to the controller was lost',
  109: 'The controller’s answer was not understood',
  201: 'The controller does not know this request',
  203: 'The connection is read-only',
  204: 'The instrument has no such part, line or peak',
  205: 'This value cannot be set',
  206: 'A value is outside its bounds',
  207: 'The instrument does not accept this in its present state',
  208: 'The instrument does not know this command',
  209: 'The instrument has no such object',
};

/** The sentence with the number behind it; undefined for a number that nobody knows. */
export function describeRefusal(code: number, isSimulated: boolean): string | undefined {
  const sentence = everywhere[code] ?? (isSimulated ? simulated[code] : undefined);
  return sentence && `${sentence} (error ${code})`;
}
