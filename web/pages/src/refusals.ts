// Sentences for the error numbers of the tool, the client library and the instrument.

/** A sentence without its full stop for each known number. */
type Sentences = Readonly<Record<number, string>>;

/** For every instrument: the tool's own numbers, and those that the library documents. */
const everywhere: Sentences = {
  1: 'The instrument’s client library did not start',
  28: 'Part of what was requested could not be read',
};

/**
 * For the simulated instrument only: the same number may mean something else on another one. Numbers
 * known for every instrument belong above.
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

/** The sentence followed by the number; undefined for an unknown number. */
export function describeRefusal(code: number, isSimulated: boolean): string | undefined {
  const sentence = everywhere[code] ?? (isSimulated ? simulated[code] : undefined);
  return sentence && `${sentence} (error ${code})`;
}
