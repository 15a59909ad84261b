// Tables that downloads have replaced; the gateway keeps the latest ones.
import { getReport, type Fault } from './api';
import type { BackupList } from './documents';
import { readDocument } from './files';
import type { Table } from './table';
import type { TableKind } from './tables';

/** What is shown of a table; its `number` identifies it and is never reused. */
export type Backup = Pick<BackupList['backups'][number], 'number' | 'time' | 'user'>;

export type Got<T> = { ok: true; value: T } | { ok: false; reason: string };

/** Where backups come from. */
export interface Backups {
  list: () => Promise<Got<readonly Backup[]>>;
  /** One of them, applied to the peaks or lines that the instrument has now. */
  table: (number: number, current: Table) => Promise<Got<Table>>;
}

export function backupsOf(kind: TableKind, describe: (fault: Fault) => string): Backups {
  const path = `/api/backups/${kind.name}`;
  return {
    list: async () => {
      const answer = await getReport<BackupList>(path, 'backups');
      return answer.ok
        ? { ok: true, value: answer.value.backups }
        : { ok: false, reason: describe(answer.fault) };
    },
    table: async (number, current) => {
      const answer = await getReport<{ total: number }>(`${path}/${number}`, 'total');
      if (!answer.ok) {
        const isGone = answer.fault.status === 404;
        const reason = isGone
          ? 'The gateway no longer keeps this table: others have been replaced since.'
          : describe(answer.fault);
        return { ok: false, reason };
      }
      try {
        return { ok: true, value: readDocument(answer.value, kind, current) };
      } catch (error) {
        return { ok: false, reason: `It cannot be used here. ${(error as Error).message}` };
      }
    },
  };
}

/** When the table was replaced, and by whom. */
export function backupName({ time, user }: Backup): string {
  const when = new Date(time);
  return `${Number.isNaN(when.getTime()) ? time : when.toLocaleString()}, by ${user}`;
}
