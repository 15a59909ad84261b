// Where the sticks of a chromatogram and their names stand, in parts of the picture or in its units.

/** Zero stands apart from the logarithmic scale, by this part of the height. */
export const zeroGap = 0.17;

/** Decades that are always shown, so that the scale stays while somebody types. */
const usual = { low: -2, high: 2 };
/** Times that differ by less are all at one place. */
const leastSpan = 1e-6;
/** More marks than these are too many for the height. */
const mostMarks = 7;

/** A scale from 10 to the `low` to 10 to the `high`. */
export interface Decades {
  low: number;
  high: number;
}

/** The decades of all amounts above zero. */
export function decadesOf(amounts: readonly (number | undefined)[]): Decades {
  const logs = amounts.filter((amount) => amount !== undefined && amount > 0) as number[];
  return {
    low: Math.min(usual.low, ...logs.map((amount) => Math.floor(Math.log10(amount)))),
    high: Math.max(usual.high, ...logs.map((amount) => Math.ceil(Math.log10(amount)))),
  };
}

/** How high a stick is, from 0 to 1: 0 for nothing, the gap at least for whatever there is. */
export function heightOf(amount: number, { low, high }: Decades): number {
  const part = amount > 0 ? (Math.log10(amount) - low) / (high - low) : -1;
  return amount > 0 ? zeroGap + (1 - zeroGap) * part : 0;
}

/** The amounts that the scale has marks for. */
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

/** A time axis for all of these that begins at zero, with round marks, at most so many steps. */
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
  /** Where the name would best stand. */
  at: number;
  /** The greater, the sooner it gets its place. */
  weight: number;
}

/** Moves places, in their order, as little as possible to be that far from each other. */
function spread(places: readonly number[], distance: number, from: number, to: number): number[] {
  // Places less their distances need only not to descend: neighbours that do are put together.
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
 * Where names stand so that none is nearer than `distance` to another, nor further than `farthest`
 * from where it belongs; undefined for those that there is no room for.
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

/** Letters that take the room of two: of East Asia, full width, and pictures. */
const wide =
  /[\u1100-\u115f\u2e80-\ua4cf\uac00-\ud7a3\uf900-\ufaff\ufe30-\ufe6f\uff00-\uff60]|\p{Extended_Pictographic}/u;

/** How many narrow letters the name is wide. */
export function widthOf(name: string): number {
  return [...name].reduce((sum, letter) => sum + (wide.test(letter) ? 2 : 1), 0);
}

/** A name that is not wider than so many narrow letters. */
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
