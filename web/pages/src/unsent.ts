// Unsent edits, kept in this tab while a page is reloaded, separately for each instrument.
import type { Unsent } from './editing';
import type { TableKind } from './tables';

/** What identifies an instrument. */
interface Identity {
  Inst_name: string;
  Inst_serial: number;
}

export function placeOf(
  kind: TableKind,
  { Inst_name: name, Inst_serial: serial }: Identity,
): string {
  return `unsent ${kind.name} of ${JSON.stringify([name, serial])}`;
}

/** Keeps the edits, or forgets those that were kept. */
export function keep(place: string, unsent: Unsent | undefined): void {
  try {
    if (unsent) {
      sessionStorage.setItem(place, JSON.stringify(unsent));
    } else {
      sessionStorage.removeItem(place);
    }
  } catch {
    // Pages may not store anything, or there is no room: the browser asks before the page is left.
  }
}

const isTable = (value: unknown): boolean => {
  const { header, rows } = (value ?? {}) as { header?: unknown; rows?: unknown };
  return typeof header === 'object' && header !== null && Array.isArray(rows);
};

export function kept(place: string): Unsent | undefined {
  try {
    const unsent = JSON.parse(sessionStorage.getItem(place) ?? 'null') as Unsent | null;
    return unsent && isTable(unsent.base) && isTable(unsent.draft) ? unsent : undefined;
  } catch {
    return undefined;
  }
}
