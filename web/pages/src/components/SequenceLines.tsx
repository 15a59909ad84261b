// The lines of a sequence, for reading only.
import { formatReal } from '../format';
import type { Sequence } from '../documents';
import { nameWithUnit } from '../units';

/** How often the table is run, as a sentence. */
export function repeatText(sequence: Sequence): string {
  if (sequence.Continuous) {
    return 'The table is run repeatedly until it is stopped.';
  }
  const times = sequence.Table_repeat;
  return times === 1 ? 'The table is run once.' : `The table is run ${times} times.`;
}

export function SequenceLines({ sequence }: { sequence: Sequence }) {
  const { rows = [], total } = sequence;
  return (
    <>
      <p>{repeatText(sequence)}</p>
      {rows.length === 0 ? (
        <p>The sequence has no lines.</p>
      ) : (
        <table>
          <thead>
            <tr>
              <th scope="col">Line</th>
              <th scope="col">Type</th>
              <th scope="col">Runs</th>
              <th scope="col">Stream</th>
              <th scope="col">Solution</th>
              <th scope="col">{nameWithUnit('Flush time', 'flush_time')}</th>
            </tr>
          </thead>
          <tbody>
            {rows.map((row, index) => (
              <tr key={index}>
                <th scope="row">{index + 1}</th>
                <td>{row.Type}</td>
                <td class="number">{row.Repeat}</td>
                <td class="number">{row.Stream}</td>
                <td class="number">{row.Slot}</td>
                <td class="number">{formatReal(row.Flush_time, 2)}</td>
              </tr>
            ))}
          </tbody>
        </table>
      )}
      {total > rows.length && rows.length > 0 && (
        <p>
          The instrument has {total} lines; the first {rows.length} are shown.
        </p>
      )}
    </>
  );
}
