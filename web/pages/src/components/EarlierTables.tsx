// Tables that were replaced on the instrument: when, by whom, their differences, and a way back.
import { useEffect, useState } from 'preact/hooks';
import { backupName, type Backup, type Got } from '../backups';
import { isEmptyDiff, type TableDiff } from '../diff';
import type { Editor } from '../editor';
import { keptBackups } from '../limits';
import type { Table } from '../table';
import { Dialog } from './Dialog';
import { DiffTable, type ExtraColumn } from './DiffTable';

/** What has been read so far. */
interface Found {
  list?: Got<readonly Backup[]>;
  /** The instrument's present table. */
  present?: Got<Table>;
  tables: Readonly<Record<number, Got<Table>>>;
}

/** Reads all of it, one request after the other. */
function useEarlier(editor: Editor, attempt: number): Found {
  const [found, setFound] = useState<Found>({ tables: {} });
  useEffect(() => {
    let isWanted = true;
    const add = (part: (before: Found) => Partial<Found>): void => {
      if (isWanted) {
        setFound((before) => ({ ...before, ...part(before) }));
      }
    };
    const ask = async (): Promise<void> => {
      const { backups, describe, read } = editor.instrument;
      const list = await backups.list();
      add(() => ({ list }));
      for (const { number } of list.ok ? list.value : []) {
        if (isWanted) {
          const table = await backups.table(number, editor.base.value!);
          add(({ tables }) => ({ tables: { ...tables, [number]: table } }));
        }
      }
      if (isWanted && list.ok) {
        const answer = await read();
        const present: Got<Table> = answer.ok
          ? { ok: true, value: answer.table }
          : { ok: false, reason: describe(answer.fault) };
        add(() => ({ present }));
      }
    };
    setFound({ tables: {} });
    void ask();
    return () => {
      isWanted = false;
    };
  }, [attempt]);
  return found;
}

/** How many rows differ: `2 changed, 1 removed`. */
function summary({ header, rows }: TableDiff): string {
  const kinds = ['changed', 'added', 'removed'] as const;
  const counts = kinds
    .map((kind) => ({ kind, count: rows.filter((row) => row.kind === kind).length }))
    .filter(({ count }) => count > 0)
    .map(({ kind, count }) => `${count} ${kind}`);
  return [...header.map(({ label }) => label), ...counts].join(', ');
}

function Difference(props: {
  editor: Editor;
  table: Got<Table> | undefined;
  present: Got<Table> | undefined;
  extra: ExtraColumn | undefined;
}) {
  const { editor, table, present, extra } = props;
  if (table?.ok === false) {
    return <>{table.reason}</>;
  }
  if (present?.ok === false) {
    return <>not known</>;
  }
  if (!table || !present) {
    return <>being read</>;
  }
  const diff = editor.diff(present.value, table.value);
  return isEmptyDiff(diff) ? (
    <>none</>
  ) : (
    <details>
      <summary>{summary(diff)}</summary>
      <DiffTable diff={diff} layout={editor.layout.value} extra={extra} />
    </details>
  );
}

interface Props {
  editor: Editor;
  extra: ExtraColumn | undefined;
  onClose: () => void;
}

export function EarlierTables({ editor, extra, onClose }: Props) {
  const [attempt, setAttempt] = useState(0);
  const { list, present, tables } = useEarlier(editor, attempt);
  const open = (backup: Backup, table: Table): void => {
    const name = backupName(backup);
    onClose();
    editor.replace(
      table,
      `loading of the earlier table (${name})`,
      `The table that was replaced on ${name} is in the editor. Nothing has been sent yet.`,
    );
  };
  const actions = (
    <button type="button" onClick={onClose}>
      Close
    </button>
  );
  return (
    <Dialog title={`Earlier tables: ${editor.kind.name}`} onClose={onClose} actions={actions}>
      <p>
        As the instrument had them before they were replaced from here. The gateway keeps the last{' '}
        {keptBackups}. A difference is what sending that table would change now.
      </p>
      <div role="status" data-testid="earlier">
        {!list && <p>Reading the list.</p>}
        {list?.ok === true && list.value.length === 0 && <p>No table has been replaced yet.</p>}
        {present?.ok === false && (
          <p class="message bad">
            The instrument’s present table could not be read. {present.reason}
          </p>
        )}
        {list?.ok === false && (
          <p class="message bad">
            {list.reason}
            <button type="button" onClick={() => setAttempt(attempt + 1)}>
              Try again
            </button>
          </p>
        )}
      </div>
      {list?.ok && list.value.length > 0 && (
        <table class="earlier">
          <thead>
            <tr>
              <th scope="col">Replaced</th>
              <th scope="col">Difference</th>
              <th scope="col">Editor</th>
            </tr>
          </thead>
          <tbody>
            {list.value.map((backup) => {
              const table = tables[backup.number];
              return (
                <tr key={backup.number}>
                  <th scope="row" class="text">
                    {backupName(backup)}
                  </th>
                  <td>
                    <Difference editor={editor} table={table} present={present} extra={extra} />
                  </td>
                  <td>
                    <button
                      type="button"
                      disabled={!table?.ok}
                      onClick={() => table?.ok && open(backup, table.value)}
                    >
                      Load into the editor
                      <span class="hidden"> ({backupName(backup)})</span>
                    </button>
                  </td>
                </tr>
              );
            })}
          </tbody>
        </table>
      )}
    </Dialog>
  );
}
