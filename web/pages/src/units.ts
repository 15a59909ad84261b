// Units that the owner has named: nothing is assumed where there is none.
import type { Units } from './documents';
import { configuration } from './store';

export function unitOf(kind: keyof Units): string {
  return configuration.value?.units?.[kind] ?? '';
}

/** A name with the unit of what it names: `Pressure, kPa`. */
export function nameWithUnit(name: string, kind: keyof Units): string {
  return [name, unitOf(kind)].filter(Boolean).join(', ');
}

/** A value that is there with its unit: `180.1 kPa`. */
export function valueWithUnit(text: string, kind: keyof Units): string {
  return /\d/.test(text) ? [text, unitOf(kind)].filter(Boolean).join('\u00a0') : text;
}

/** Whether any of these is of unknown unit. */
export function isUnitMissing(kinds: readonly (keyof Units)[]): boolean {
  return kinds.some((kind) => unitOf(kind) === '');
}
