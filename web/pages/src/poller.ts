// Repeats a request, with never more than one under way.

export interface PollerOptions<T> {
  /** Makes one request; it must always end, with or without success, and never reject. */
  ask: () => Promise<T>;
  /** Takes the answer. */
  take: (answer: T) => void;
  /** Milliseconds from the start of one request to that of the next; called after each answer. */
  interval: () => number;
  isHidden: () => boolean;
}

export interface Poller {
  /** Makes the first request. */
  begin: () => void;
  /**
   * Makes a request now, or as soon as the one under way has ended, unless the page is hidden. To be
   * called when the page is shown, too.
   */
  wake: () => void;
  /** Makes a request if one is due: a hidden page's timers may be late. */
  check: () => void;
}

export function createPoller<T>(options: PollerOptions<T>): Poller {
  let timer: ReturnType<typeof setTimeout> | undefined;
  let isAsking = false;
  let isWanted = false;
  let due = Infinity;

  const run = async (): Promise<void> => {
    clearTimeout(timer);
    if (isAsking) {
      isWanted = true;
      return;
    }
    isAsking = true;
    const begun = Date.now();
    try {
      options.take(await options.ask());
    } finally {
      isAsking = false;
      const wait = isWanted ? 0 : Math.max(0, begun + options.interval() - Date.now());
      isWanted = false;
      due = Date.now() + wait;
      timer = setTimeout(run, wait);
    }
  };

  return {
    begin: () => void run(),
    wake: () => {
      if (!options.isHidden()) {
        void run();
      }
    },
    check: () => {
      if (!isAsking && Date.now() >= due) {
        void run();
      }
    },
  };
}
