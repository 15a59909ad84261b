// Documents of an everyday instrument, with changes for tests.
import { readFileSync } from 'node:fs';
import { dirname, resolve } from 'node:path';
import { fileURLToPath } from 'node:url';
import type { Status } from '../src/documents';

const root = resolve(dirname(fileURLToPath(import.meta.url)), '../../..');

/** A document of the system tests or the schemas' examples. */
export function load<T>(path: string): T {
  return JSON.parse(readFileSync(resolve(root, path), 'utf8')) as T;
}

const everyday = load<Status>('tests/system/documents/everyday.json');

export function statusWith(changes: Partial<Status> = {}): Status {
  return { ...everyday, ...changes };
}
