// Documents of an everyday instrument, as the tests change them.
import { readFileSync } from 'node:fs';
import type { Status } from '../src/documents';

/** A document of the system tests or the schemas' examples. */
export function load<T>(path: string): T {
  return JSON.parse(readFileSync(new URL(`../../../${path}`, import.meta.url), 'utf8')) as T;
}

const everyday = load<Status>('tests/system/documents/everyday.json');

export function statusWith(changes: Partial<Status> = {}): Status {
  return { ...everyday, ...changes };
}
