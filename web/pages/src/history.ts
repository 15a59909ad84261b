// The last hour of the measured values, kept in the browser's memory.
import { channelKeys, type Real, type Status } from './documents';

export const historySeconds = 3600;

/** Seconds without a value after which a curve is broken. */
const longestGap = 20;

export type Points = { times: number[]; values: (number | null)[] };

/** A ring buffer of samples: when it is full, the newest replaces the oldest. */
export class History {
  private readonly times: Float64Array;
  private readonly series = new Map<string, Float64Array>();
  private begin = 0;
  private count = 0;

  constructor(private readonly capacity: number) {
    this.times = new Float64Array(capacity);
  }

  /** Adds a sample; `time` is in seconds, by a clock that may be set back. */
  add(time: number, values: ReadonlyMap<string, Real>): void {
    // After the clock was set back, the latest samples would lie in the future.
    while (this.count > 0 && this.lastTime() > time) {
      this.count--;
    }
    if (this.count > 0 && time - this.lastTime() > longestGap) {
      this.append((this.lastTime() + time) / 2, new Map());
    }
    this.append(time, values);
    while (this.times[this.begin]! < time - historySeconds) {
      this.begin = (this.begin + 1) % this.capacity;
      this.count--;
    }
  }

  /** The samples of one series, oldest first; null where it has no value. */
  points(name: string): Points {
    return this.recent(name, -Infinity);
  }

  /** The same, without samples older than `since`. */
  recent(name: string, since: number): Points {
    const column = this.series.get(name);
    const points: Points = { times: [], values: [] };
    let first = this.count;
    while (first > 0 && this.times[this.place(first - 1)]! >= since) {
      first--;
    }
    for (let index = first; index < this.count; index++) {
      const place = this.place(index);
      const value = column?.[place] ?? NaN;
      points.times.push(this.times[place]!);
      points.values.push(Number.isNaN(value) ? null : value);
    }
    return points;
  }

  /** All samples as a text, for the page after a reload. */
  save(): string {
    const names = [...this.series.keys()];
    const series = names.map((name) => [name, this.points(name).values]);
    return JSON.stringify({ times: this.allTimes(), series });
  }

  /** Adds the samples that `save` returned, up to the present; ignores any other text. */
  restore(text: string | null, now: number): void {
    try {
      const { times, series } = JSON.parse(String(text)) as {
        times: number[];
        series: [string, (number | null)[]][];
      };
      times.forEach((time, index) => {
        // If the clock was set back, these would come after new samples.
        if (time < now) {
          this.add(time, new Map(series.map(([name, values]) => [name, values[index] ?? '-'])));
        }
      });
    } catch {
      // The curves begin now.
    }
  }

  /** Where the samples are, oldest first. */
  private places(): number[] {
    return Array.from({ length: this.count }, (_, index) => this.place(index));
  }

  private allTimes(): number[] {
    return this.places().map((place) => this.times[place]!);
  }

  private lastTime(): number {
    return this.times[this.place(this.count - 1)]!;
  }

  private place(index: number): number {
    return (this.begin + index) % this.capacity;
  }

  private append(time: number, values: ReadonlyMap<string, Real>): void {
    for (const name of values.keys()) {
      if (!this.series.has(name)) {
        this.series.set(name, new Float64Array(this.capacity).fill(NaN));
      }
    }
    const place = this.place(this.count);
    this.times[place] = time;
    for (const [name, column] of this.series) {
      // A value that is not available becomes NaN.
      column[place] = Number(values.get(name));
    }
    if (this.count < this.capacity) {
      this.count++;
    } else {
      this.begin = (this.begin + 1) % this.capacity;
    }
  }
}

/** The measured values of a status by name: `Channel1.Column_temp.Actual`, `Ambient_temp`, ... */
export function measurementsOf(status: Status): Map<string, Real> {
  const values = new Map<string, Real>([
    ['Ambient_temp', status.Ambient_temp],
    ['Ambient_press', status.Ambient_press],
    ['Sample_line_temp.Setpoint', status.Sample_line_temp.Setpoint],
    ['Sample_line_temp.Actual', status.Sample_line_temp.Actual],
  ]);
  for (const key of channelKeys) {
    const channel = status[key];
    if (channel) {
      for (const quantity of ['Column_temp', 'Column_press', 'Injector_temp'] as const) {
        values.set(`${key}.${quantity}.Setpoint`, channel[quantity].Setpoint);
        values.set(`${key}.${quantity}.Actual`, channel[quantity].Actual);
      }
      values.set(`${key}.Auto_zero`, channel.TCD.Auto_zero);
    }
  }
  return values;
}
