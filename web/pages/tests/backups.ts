// Backups of tables, for tests of something else.
import type { Backups } from '../src/backups';

export const noBackups: Backups = {
  list: async () => ({ ok: true, value: [] }),
  table: async () => ({ ok: false, reason: 'There is none.' }),
};
