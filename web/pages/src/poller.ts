// Asks again and again: never twice at once, and not while nobody looks.

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
  /** Begins, or asks at once if no request is under way; to be called when the page is shown, too. */
  wake: () => void;
}

export function createPoller<T>(options: PollerOptions<T>): Poller {
  let timer: ReturnType<typeof setTimeout> | undefined;
  let isAsking = false;
  let isWanted = false;

  const run = async (): Promise<void> => {
    clearTimeout(timer);
    if (isAsking) {
      isWanted = true;
      return;
    }
    if (options.isHidden()) {
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
      timer = setTimeout(run, wait);
    }
  };

  return { wake: () => void run() };
}
