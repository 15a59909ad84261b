// The calibrated peaks of a table being edited, and the sums of their amounts.
import { cellProblem, textIn, valueOf, type Draft, type Layout } from './table';

export interface CalibratedPeak {
  rowId: number;
  /** Its row in the table, from 0. */
  index: number;
  channel: string;
  name: string;
  /** Undefined if the instrument has none. */
  time: number | undefined;
  /** Undefined while its cell is not valid. */
  amount: number | undefined;
}

/** Sum of all amounts of a certified gas, by unit. */
const wholes: Readonly<Record<string, number>> = { ppm: 1e6, ppb: 1e9 };
const fewestDecimals = 2;
const mostDecimals = 9;
/** Significant digits that a real keeps when it is sent to the instrument and read back. */
const digits = 7;

export function peaksOf(draft: Draft, layout: Layout): CalibratedPeak[] {
  const columns = new Map(layout.columns.map((column) => [column.key, column]));
  return draft.rows.map(({ id, cells }, index) => {
    const text = (key: string): string => textIn(cells, columns.get(key)!);
    const number = (key: string): number | undefined => {
      const value = valueOf(text(key), 'real');
      return typeof value === 'number' && Number.isFinite(value) ? value : undefined;
    };
    const isRight = cellProblem(text('Level_amt'), columns.get('Level_amt')!, layout.schema) === '';
    return {
      rowId: id,
      index,
      channel: text('Channel'),
      name: text('PkName').trim() || `Peak ${text('ID')}`,
      time: number('Ret_time'),
      amount: isRight ? number('Level_amt') : undefined,
    };
  });
}

/** The channels that have peaks, each with its peaks, in the order of the table. */
export function channelsOf(
  peaks: readonly CalibratedPeak[],
): { channel: string; peaks: CalibratedPeak[] }[] {
  const found = new Map<string, CalibratedPeak[]>();
  for (const peak of peaks) {
    found.set(peak.channel, [...(found.get(peak.channel) ?? []), peak]);
  }
  return [...found].map(([channel, own]) => ({ channel, peaks: own }));
}

function rounded(amount: number): number {
  return Number(amount.toPrecision(digits));
}

/** The largest number of decimals that any of the amounts needs. */
export function decimalsOf(peaks: readonly CalibratedPeak[]): number {
  let decimals = fewestDecimals;
  for (const { amount = 0 } of peaks) {
    while (
      decimals < mostDecimals &&
      Number(rounded(amount).toFixed(decimals)) !== rounded(amount)
    ) {
      decimals++;
    }
  }
  return decimals;
}

/** The sum of the amounts; undefined while one of them is. */
export function sumOf(peaks: readonly CalibratedPeak[]): number | undefined {
  return peaks.reduce<number | undefined>(
    (sum, { amount }) =>
      sum === undefined || amount === undefined ? undefined : sum + rounded(amount),
    0,
  );
}

/** The sum of a certified gas: 100 without a unit or in percent; undefined for unknown units. */
export function wholeIn(unit: string): number | undefined {
  return unit === '' || unit.includes('%') ? 100 : wholes[unit];
}

/** How a sum compares with the whole: `0.05 above`. */
export function differenceText(sum: number, whole: number, decimals: number): string {
  const difference = Number((sum - whole).toFixed(decimals));
  if (difference === 0) {
    return 'exactly that';
  }
  const side = difference > 0 ? 'above' : 'below';
  return `${Math.abs(difference).toFixed(decimals)} ${side}`;
}

/** Groups of peaks with the same retention time, which no picture can show apart. */
export function togetherIn(peaks: readonly CalibratedPeak[]): CalibratedPeak[][] {
  const found = new Map<number, CalibratedPeak[]>();
  for (const peak of peaks) {
    if (peak.time !== undefined) {
      found.set(peak.time, [...(found.get(peak.time) ?? []), peak]);
    }
  }
  return [...found.values()].filter(({ length }) => length > 1);
}

/** A value of the table, rounded to its significant digits. */
export function shortNumber(value: number): string {
  return String(rounded(value)).replace('-', '−');
}
