// Notices about commands, below the header. A notice is removed when it is no longer true.
import { computed, signal } from '@preact/signals';
import type { Status } from './documents';
import type { Following, Said } from './following';

export interface Notice extends Said {
  id: number;
  /** The subject: a later notice on the same subject replaces it. */
  about: string;
  /** When it was said, in milliseconds. */
  time: number;
  following?: Following;
  /** Whether it is still true by a later status. */
  holds?: (status: Status) => boolean;
}

export const notices = signal<readonly Notice[]>([]);

/** The latest. */
export const notice = computed(() => notices.value.at(-1));

/** Whether an effect or an end is awaited. */
export const isAnyAwaited = computed(() => notices.value.some(({ kind }) => kind === 'waiting'));

let count = 0;

function isGoingOn({ kind, following }: Notice): boolean {
  return kind === 'waiting' || (kind === 'good' && following !== undefined && !following.isOver);
}

/** Adds a notice and returns its number; removes those that are over or on the same subject. */
export function say(about: string, said: Said, more: Partial<Notice> = {}): number {
  const stay = notices.value.filter((one) => isGoingOn(one) && one.about !== about);
  notices.value = [...stay, { ...said, ...more, id: ++count, about, time: Date.now() }];
  return count;
}

/** Changes a notice that is still shown. */
export function change(id: number, said: Said, more: Partial<Notice> = {}): void {
  const before = notices.value.find((one) => one.id === id);
  if (before && before.text !== said.text) {
    notices.value = notices.value.map((one) =>
      one === before ? { ...one, ...more, ...said, time: Date.now() } : one,
    );
  }
}

export function dismiss(id: number): void {
  notices.value = notices.value.filter((one) => one.id !== id);
}

/** Updates the notices from a status, and removes those that are no longer true. */
export function takeStatus(status: Status, time: number): void {
  for (const { id, following } of notices.value) {
    if (following && !following.isOver) {
      const said = following.take(status, time);
      change(
        id,
        said,
        following.isOver && following.isMet ? { holds: following.follow.holds } : {},
      );
      if (following.isMet && following.follow.endsOthers) {
        notices.value = notices.value.filter((one) => one.id === id || !one.following);
      }
    }
  }
  const held = notices.value.filter(({ holds }) => holds?.(status) ?? true);
  if (held.length !== notices.value.length) {
    notices.value = held;
  }
}

/** Updates the notices after a request without a good answer. */
export function missStatus(time: number): void {
  for (const { id, following } of notices.value) {
    if (following && !following.isOver) {
      change(id, following.miss(time));
    }
  }
}
