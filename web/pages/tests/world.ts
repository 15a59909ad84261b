// The contents of the store for showing a part of a page by itself.
import { render } from 'preact';
import { act } from 'preact/test-utils';
import { vi } from 'vitest';
import type { Configuration, Status } from '../src/documents';
import * as store from '../src/store';
import { load, statusWith } from './documents';
import { Gateway } from './gateway';

export const exampleConfiguration = load<Configuration>('docs/schemas/examples/configuration.json');

// A browser converts a number to a text before it looks for the option.
const selectValue = Object.getOwnPropertyDescriptor(HTMLSelectElement.prototype, 'value')!;
Object.defineProperty(HTMLSelectElement.prototype, 'value', {
  ...selectValue,
  set(value: unknown) {
    selectValue.set!.call(this, String(value));
  },
});

export function setHidden(isHidden: boolean): void {
  Object.defineProperty(document, 'hidden', { value: isHidden, configurable: true });
}

/** Makes the status fresh, or so many seconds old. */
export function setAge(seconds: number): Promise<void> {
  return act(() => {
    const present = Date.now();
    store.now.value = present;
    store.statusTime.value = present - seconds * 1000;
  });
}

export function setStatus(status: Status | undefined): Promise<void> {
  return act(() => {
    store.status.value = status;
  });
}

/** A fresh status, the configuration, and a gateway; the status is not requested. */
export async function arrange(status: Status | undefined = statusWith()): Promise<Gateway> {
  setHidden(true);
  store.configuration.value = exampleConfiguration;
  await setStatus(status);
  await setAge(0);
  return new Gateway();
}

/** What is said of the latest command, without the time. */
export function said(): { kind: string; text: string } | undefined {
  const latest = store.notice.value;
  return latest && { kind: latest.kind, text: latest.text };
}

export async function clear(): Promise<void> {
  setHidden(true);
  await act(() => render(null, document.body));
  store.status.value = undefined;
  store.statusTime.value = 0;
  store.statusFault.value = undefined;
  store.configuration.value = undefined;
  store.notices.value = [];
  store.isSignedIn.value = false;
  store.user.value = undefined;
  store.interruptions.value = [];
  vi.unstubAllGlobals();
  // Requests after the test get no answer.
  vi.stubGlobal('fetch', async () => {
    throw new TypeError('Failed to fetch');
  });
}
