// Units named by the owner; no others are assumed.
import type { Units } from './documents';
import { configuration } from './store';

export function unitOf(kind: keyof Units): string {
  return configuration.value?.units?.[kind] ?? '';
}

/** A quantity's name with its unit: `Pressure, kPa`. */
export function nameWithUnit(name: string, kind: keyof Units): string {
  return [name, unitOf(kind)].filter(Boolean).join(', ');
}

/** A value with its unit, if it is available: `180.1 kPa`. */
export function valueWithUnit(text: string, kind: keyof Units): string {
  return /\d/.test(text) ? [text, unitOf(kind)].filter(Boolean).join('\u00a0') : text;
}

/** Whether any of these units is unknown. */
export function isUnitMissing(kinds: readonly (keyof Units)[]): boolean {
  return kinds.some((kind) => unitOf(kind) === '');
}
