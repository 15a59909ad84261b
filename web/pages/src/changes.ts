// The relative change of an amount.
import type { RowChange } from './diff';
import type { Value } from './table';

const digits = 3;

export function changeText(before: Value | undefined, after: Value | undefined): string {
  if (typeof before !== 'number' || typeof after !== 'number') {
    return 'not known';
  }
  if (before === 0) {
    return after === 0 ? '' : 'from 0';
  }
  if (after === 0) {
    return 'to 0';
  }
  const percent = ((after - before) / Math.abs(before)) * 100;
  // Three significant digits are enough, even for a large change.
  const size = Number(Math.abs(percent).toPrecision(digits));
  return `${percent > 0 ? '+' : '−'}${size} %`;
}

/** A column for comparisons of calibration tables. */
export const amountChange = {
  label: 'Relative change',
  of: ({ before, after, keys }: RowChange): string =>
    keys.includes('Level_amt') ? changeText(before?.Level_amt, after?.Level_amt) : '',
};
