// Differences between two tables, row by row.
import type { RowChange, TableDiff } from '../diff';
import type { Layout, Value } from '../table';

const marks = { added: '+ added', removed: '− removed', changed: '~ changed' } as const;

function text(value: Value | undefined): string {
  return value === true ? 'yes' : value === false ? 'no' : String(value ?? '');
}

function Change({ before, after }: { before: Value | undefined; after: Value | undefined }) {
  return (
    <>
      <del>{text(before)}</del> → <ins>{text(after)}</ins>
    </>
  );
}

function Cell({ change, name }: { change: RowChange; name: string }) {
  const { before, after, keys } = change;
  return keys.includes(name) ? (
    <Change before={before![name]} after={after![name]} />
  ) : (
    <>{text((after ?? before)![name])}</>
  );
}

/** An additional column, after those of the layout. */
export interface ExtraColumn {
  label: string;
  /** Its text for a row; may be empty. */
  of: (change: RowChange) => string;
}

interface Props {
  diff: TableDiff;
  layout: Layout;
  extra?: ExtraColumn | undefined;
}

export function DiffTable({ diff, layout, extra }: Props) {
  const columns = layout.columns.filter(({ isCompared }) => isCompared);
  return (
    <>
      {diff.header.map(({ label, before, after }) => (
        <p key={label}>
          {label}: <Change before={before} after={after} />
        </p>
      ))}
      {diff.rows.length > 0 && (
        <div class="scroll">
          <table class="diff">
            <thead>
              <tr>
                <th scope="col">Change</th>
                <th scope="col">Line</th>
                {columns.map(({ key, label }) => (
                  <th key={key} scope="col">
                    {label}
                  </th>
                ))}
                {extra && <th scope="col">{extra.label}</th>}
              </tr>
            </thead>
            <tbody>
              {diff.rows.map((change) => (
                <tr key={`${change.placeBefore} ${change.placeAfter}`} class={change.kind}>
                  <th scope="row">{marks[change.kind]}</th>
                  <td class="number">{change.placeAfter || change.placeBefore}</td>
                  {columns.map(({ key, kind }) => (
                    <td key={key} class={kind === 'text' ? 'text' : undefined}>
                      <Cell change={change} name={key} />
                    </td>
                  ))}
                  {extra && <td class="number">{extra.of(change)}</td>}
                </tr>
              ))}
            </tbody>
          </table>
        </div>
      )}
    </>
  );
}
