// Asks again and again, and never twice at once.

export interface PollerOptions<T> {
  /** One request; it must end by itself, in success or not, and never reject. */
  ask: () => Promise<T>;
  /** Takes the answer. */
  take: (answer: T) => void;
  /** Milliseconds from the begin of one request to that of the next, asked after each answer. */
  interval: () => number;
  isHidden: () => boolean;
}

export interface Poller {
  /** Begins: asks at once. */
  begin: () => void;
  /** Asks at once if no request is under way and somebody looks; to be called when the page is shown, too. */
  wake: () => void;
  /** Asks if it is time: a hidden page's timers may be late. */
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
