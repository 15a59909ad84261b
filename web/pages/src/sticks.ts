// Positions of a chromatogram's sticks and their names, as fractions or in the picture's units.

/** Fraction of the height between zero and the logarithmic scale. */
export const zeroGap = 0.17;

/** Decades that are always shown, so that the scale does not change with every key typed. */
const usual = { low: -2, high: 2 };
/** Times that differ by less count as equal. */
const leastSpan = 1e-6;
/** The most marks that the height has room for. */
const mostMarks = 7;

/** A scale from 10^low to 10^high. */
export interface Decades {
  low: number;
  high: number;
}

/** The decades that include all amounts above zero. */
export function decadesOf(amounts: readonly (number | undefined)[]): Decades {
  const logs = amounts.filter((amount) => amount !== undefined && amount > 0) as number[];
  return {
    low: Math.min(usual.low, ...logs.map((amount) => Math.floor(Math.log10(amount)))),
    high: Math.max(usual.high, ...logs.map((amount) => Math.ceil(Math.log10(amount)))),
  };
}

/** Height of a stick, from 0 to 1: 0 for an amount of 0, otherwise at least the gap. */
export function heightOf(amount: number, { low, high }: Decades): number {
  const part = amount > 0 ? (Math.log10(amount) - low) / (high - low) : -1;
  return amount > 0 ? zeroGap + (1 - zeroGap) * part : 0;
}

/** The amounts marked on the scale. */
export function marksOf({ low, high }: Decades): number[] {
  const step = Math.ceil((high - low + 1) / mostMarks);
  const marks: number[] = [];
  for (let power = low; power <= high; power += step) {
    marks.push(Number(`1e${power}`));
  }
  return marks;
}

export interface TimeAxis {
  begin: number;
  end: number;
  marks: number[];
}

/** A time axis from zero for all these times, with round marks and at most `mostSteps` steps. */
export function timeAxisOf(times: readonly number[], mostSteps: number): TimeAxis {
  const low = Math.min(0, ...times);
  const highest = Math.max(0, ...times);
  const high = highest - low < leastSpan ? low + 1 : highest;
  const rough = (high - low) / mostSteps;
  const power = 10 ** Math.floor(Math.log10(rough));
  const step = power * ([1, 2, 5].find((factor) => factor * power >= rough) ?? 10);
  const first = Math.floor(low / step);
  const last = Math.max(first + 1, Math.ceil(high / step));
  const marks = Array.from({ length: last - first + 1 }, (_, n) =>
    Number(((first + n) * step).toPrecision(6)),
  );
  return { begin: first * step, end: last * step, marks };
}

export interface Wish {
  /** The best place for the name. */
  at: number;
  /** Names with a greater weight are placed first. */
  weight: number;
}

/** Moves places as little as possible to be that distance apart, in the same order. */
function spread(places: readonly number[], distance: number, from: number, to: number): number[] {
  // With the distances subtracted, places must only not descend: neighbours that do are merged.
  const groups: { sum: number; count: number }[] = [];
  places.forEach((place, n) => {
    let group = { sum: place - n * distance, count: 1 };
    for (
      let last = groups.at(-1);
      last && last.sum / last.count > group.sum / group.count;
      last = groups.at(-1)
    ) {
      group = { sum: last.sum + group.sum, count: last.count + group.count };
      groups.pop();
    }
    groups.push(group);
  });
  const highest = to - (places.length - 1) * distance;
  const ends = groups.flatMap(({ sum, count }) =>
    Array<number>(count).fill(Math.max(from, Math.min(highest, sum / count))),
  );
  return ends.map((end, n) => end + n * distance);
}

/**
 * Places for names, at least `distance` apart and at most `farthest` from where they belong;
 * undefined for those without room.
 */
export function placeNames(
  wishes: readonly Wish[],
  room: { distance: number; from: number; to: number; farthest: number },
): (number | undefined)[] {
  const { distance, from, to, farthest } = room;
  const most = Math.floor((to - from) / distance) + 1;
  const order = wishes.map((_, n) => n).sort((a, b) => wishes[b]!.weight - wishes[a]!.weight);
  let placed = new Map<number, number>();
  for (const candidate of order) {
    const chosen = [...placed.keys(), candidate].sort(
      (a, b) => wishes[a]!.at - wishes[b]!.at || a - b,
    );
    const places = spread(
      chosen.map((n) => wishes[n]!.at),
      distance,
      from,
      to,
    );
    const isNear = places.every((place, n) => Math.abs(place - wishes[chosen[n]!]!.at) <= farthest);
    if (chosen.length <= most && isNear) {
      placed = new Map(chosen.map((n, place) => [n, places[place]!]));
    }
  }
  return wishes.map((_, n) => placed.get(n));
}

/** Letters as wide as two: East Asian, full-width, and pictographs. */
const wide =
  /[\u1100-\u115f\u2e80-\ua4cf\uac00-\ud7a3\uf900-\ufaff\ufe30-\ufe6f\uff00-\uff60]|\p{Extended_Pictographic}/u;

/** The width of a name, in narrow letters. */
export function widthOf(name: string): number {
  return [...name].reduce((sum, letter) => sum + (wide.test(letter) ? 2 : 1), 0);
}

/** A name, shortened to at most `most` narrow letters. */
export function shortened(name: string, most: number): string {
  if (widthOf(name) <= most) {
    return name;
  }
  const letters = [...name];
  while (widthOf(letters.join('')) >= most) {
    letters.pop();
  }
  return `${letters.join('').trimEnd()}…`;
}
