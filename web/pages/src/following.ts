// Follows a command: waiting for its effect, under way, over.
import { isOver, type Sight } from './courses';
import type { Status } from './documents';
import { describeError, describeState, isNewError, type Follow } from './follow';

export interface Said {
  kind: 'waiting' | 'good' | 'bad';
  text: string;
}

/** Seconds to wait for the number of a run that is over. */
const numberSeconds = 3;

/** Seconds after which a late effect is no longer looked for. */
const longestSeconds = 3600;

export class Following {
  private phase: 'waiting' | 'under way' | 'over' = 'waiting';
  private last: Sight | undefined;
  private overSince: number | undefined;

  /**
   * `before`: the status when the command was given, at `since`. `doubt`: the text for a command
   * that the instrument may not have received; empty if it was accepted.
   */
  constructor(
    readonly follow: Follow,
    private readonly before: Status | undefined,
    private readonly since: number,
    private readonly doubt = '',
  ) {
    this.last = before && { status: before, time: since };
  }

  /** Whether nothing more will be reported. */
  get isOver(): boolean {
    return this.phase === 'over';
  }

  /** Whether the instrument has done it, or begun to. */
  get isMet(): boolean {
    return this.phase === 'under way' || (this.phase === 'over' && this.overSince !== undefined);
  }

  /** What to say before the first status. */
  begin(): Said {
    return { kind: 'waiting', text: `${this.follow.name}: ${this.doubt || 'accepted.'}` };
  }

  /** What to say after a status. */
  take(status: Status, time: number): Said {
    const said = this.phase === 'waiting' ? this.wait(status, time) : this.watch(status, time);
    if (this.overSince === undefined) {
      this.last = { status, time };
    }
    return said;
  }

  /** What to say without an answer; a later answer may still show the effect. */
  miss(time: number): Said {
    const { name, awaited, limitSeconds } = this.follow;
    if (this.phase === 'under way') {
      const text = `${name}: under way when the instrument answered last. What becomes of it is not known at present: there is no answer.`;
      return { kind: 'waiting', text };
    }
    const isLate = this.seconds(time) > limitSeconds;
    return isLate
      ? {
          kind: 'bad',
          text: `${name}: ${this.but}what became of it is not known: no answer has shown it within ${limitSeconds} s.`,
        }
      : {
          kind: 'waiting',
          text: `${name}: ${this.accepted} Waiting for ${awaited}, but there is no answer at present.`,
        };
  }

  private get accepted(): string {
    return this.doubt || 'accepted.';
  }

  private get but(): string {
    return this.doubt ? '' : 'accepted, but ';
  }

  private seconds(time: number): number {
    return (time - this.since) / 1000;
  }

  private wait(status: Status, time: number): Said {
    const { name, awaited, notDone, limitSeconds, course } = this.follow;
    const seconds = this.seconds(time);
    if (this.follow.isMet(status)) {
      this.phase = course ? 'under way' : 'over';
      this.overSince = course ? undefined : time;
      return course
        ? this.watch(status, time)
        : { kind: 'good', text: `${name}: ${this.follow.done(this.last?.status, status)}.` };
    }
    if (this.follow.endsWithError && isNewError(this.before, status)) {
      this.phase = 'over';
      return { kind: 'bad', text: `${name}: ${notDone}: ${describeError(status)}.` };
    }
    const state = describeState(status);
    if (seconds > limitSeconds) {
      this.phase = seconds > longestSeconds ? 'over' : 'waiting';
      const but = this.doubt ? `${this.doubt} By the status ` : this.but;
      const text = `${name}: ${but}${notDone} within ${limitSeconds} s (${state}).`;
      return { kind: 'bad', text };
    }
    return {
      kind: 'waiting',
      text: `${name}: ${this.accepted} Waiting for ${awaited} (${state}).`,
    };
  }

  private watch(status: Status, time: number): Said {
    const { name } = this.follow;
    if (!isOver(status)) {
      this.overSince = undefined;
      return { kind: 'good', text: `${name}: ${this.follow.done(this.last?.status, status)}.` };
    }
    this.overSince ??= time;
    const isCounted = status.Last_counter !== this.last?.status.Last_counter;
    if (!isCounted && time - this.overSince < numberSeconds * 1000) {
      return { kind: 'waiting', text: `${name}: is over. Waiting for its number.` };
    }
    this.phase = 'over';
    return this.follow.course!({ status, time: this.overSince }, this.last);
  }
}
