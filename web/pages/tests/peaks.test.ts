import { describe, expect, it } from 'vitest';
import { amountChange, changeText } from '../src/changes';
import { diffTables } from '../src/diff';
import {
  channelsOf,
  decimalsOf,
  differenceText,
  peaksOf,
  shortNumber,
  sumOf,
  togetherIn,
  wholeIn,
  type CalibratedPeak,
} from '../src/peaks';
import { draftOf, setCell } from '../src/table';
import { calibrationKind } from '../src/tables';
import { load } from './documents';

const layout = calibrationKind.layout(undefined);
const table = calibrationKind.fromReport(load('docs/schemas/examples/calibration.json'));
const draft = draftOf(table);
const peaks = peaksOf(draft, layout);
const withAmount = (text: string) => peaksOf(setCell(draft, 1, 'Level_amt', text), layout)[1]!;
const of = (...amounts: (number | undefined)[]): CalibratedPeak[] =>
  amounts.map((amount) => ({ ...peaks[0]!, amount }));

describe('the peaks of a table being edited', () => {
  it('are its rows', () => {
    expect(peaks).toHaveLength(11);
    expect(peaks[1]).toEqual({
      rowId: 1,
      index: 1,
      channel: '1',
      name: 'Methane',
      time: 28.2,
      amount: 84.95,
    });
    expect(peaksOf({ ...draft, rows: draft.rows.slice(3) }, layout)[0]).toMatchObject({
      rowId: 3,
      index: 0,
    });
  });

  it('have an amount if it can be sent', () => {
    expect(withAmount('0').amount).toBe(0);
    expect(withAmount(' 1e-3 ').amount).toBe(0.001);
    expect(withAmount('1,5').amount).toBe(1.5);
    for (const text of ['', '-', 'x', '-1', '1e999', '1.2.3']) {
      expect(withAmount(text).amount, text).toBeUndefined();
    }
  });

  it('always have a name, but no retention time if it is unknown', () => {
    const nameless = setCell(setCell(draft, 1, 'PkName', '  '), 1, 'Ret_time', '-');
    expect(peaksOf(nameless, layout)[1]).toMatchObject({ name: 'Peak 2', time: undefined });
    const endless = setCell(draft, 1, 'Ret_time', '1e999');
    expect(peaksOf(endless, layout)[1]!.time).toBeUndefined();
  });

  it('are grouped by channel', () => {
    const names = channelsOf(peaks).map(({ channel, peaks: own }) => [channel, own.length]);
    expect(names).toEqual([
      ['1', 4],
      ['2', 7],
    ]);
    expect(channelsOf(peaks)[1]!.peaks[0]!.name).toBe('Propane');
    expect(channelsOf([])).toEqual([]);
  });

  it('are reported if they have the same retention time', () => {
    expect(togetherIn(peaks)).toEqual([]);
    const same = setCell(setCell(draft, 2, 'Ret_time', '25.2'), 3, 'Ret_time', '25.2');
    expect(togetherIn(peaksOf(same, layout)).map((one) => one.map(({ name }) => name))).toEqual([
      ['Nitrogen', 'Carbon dioxide', 'Ethane'],
    ]);
    const unknown = setCell(setCell(draft, 2, 'Ret_time', '-'), 3, 'Ret_time', '-');
    expect(togetherIn(peaksOf(unknown, layout))).toEqual([]);
  });
});

describe('the sum of amounts', () => {
  it('includes all of them', () => {
    expect(sumOf(peaks)!.toFixed(decimalsOf(peaks))).toBe('100.05');
    expect(sumOf([])).toBe(0);
  });

  it('is unknown while one of them is', () => {
    expect(sumOf(of(1, undefined, 2))).toBeUndefined();
    expect(sumOf(of(undefined))).toBeUndefined();
    expect(sumOf(of(0, 0))).toBe(0);
  });

  it('has the decimals of the amounts, without rounding errors', () => {
    expect(decimalsOf(of(1, 2))).toBe(2);
    expect(decimalsOf([])).toBe(2);
    expect(decimalsOf(of(undefined, 0.125))).toBe(3);
    expect(decimalsOf(of(100, 0.0005))).toBe(4);
    // Stored as the instrument stores 84.95 and 0.1.
    const kept = of(84.94999694824219, 0.10000000149011612);
    expect(decimalsOf(kept)).toBe(2);
    expect(sumOf(kept)!.toFixed(2)).toBe('85.05');
    expect(decimalsOf(of(1e-30))).toBe(9);
  });

  it('is compared with the whole', () => {
    expect(differenceText(100.05, 100, 2)).toBe('0.05 above');
    expect(differenceText(98.4, 100, 2)).toBe('1.60 below');
    expect(differenceText(0.1 + 0.2 + 99.7, 100, 2)).toBe('exactly that');
    expect(differenceText(99.999, 100, 3)).toBe('0.001 below');
  });

  it('has a whole that depends on the unit', () => {
    expect(wholeIn('')).toBe(100);
    expect(wholeIn('%')).toBe(100);
    expect(wholeIn('mol %')).toBe(100);
    expect(wholeIn('ppm')).toBe(1e6);
    expect(wholeIn('ppb')).toBe(1e9);
    expect(wholeIn('mg/m³')).toBeUndefined();
  });
});

describe('numbers', () => {
  it('have no insignificant digits', () => {
    expect(shortNumber(40.800000000000007)).toBe('40.8');
    expect(shortNumber(-0.5)).toBe('−0.5');
    expect(shortNumber(0)).toBe('0');
  });
});

describe('the change of an amount', () => {
  it('is relative to the amount before', () => {
    expect(changeText(50, 51)).toBe('+2 %');
    expect(changeText(84.95, 85.125)).toBe('+0.206 %');
    expect(changeText(0.4, 0.3)).toBe('−25 %');
    expect(changeText(0.05, 5)).toBe('+9900 %');
    expect(changeText(3, 4)).toBe('+33.3 %');
  });

  it('is in words if it cannot be relative', () => {
    expect(changeText(0, 5)).toBe('from 0');
    expect(changeText(5, 0)).toBe('to 0');
    expect(changeText(0, 0)).toBe('');
    expect(changeText('-', 5)).toBe('not known');
    expect(changeText(5, '-')).toBe('not known');
    expect(changeText(undefined, 5)).toBe('not known');
  });

  it('is shown only for amounts', () => {
    expect(amountChange.label).toBe('Relative change');
    const rows = table.rows.map((row, n) =>
      n === 1 ? { ...row, Level_amt: 85.125 } : n === 2 ? { ...row, PkName: 'CO2' } : row,
    );
    const { rows: changes } = diffTables(table, { header: {}, rows: [...rows] }, layout);
    expect(changes.map((change) => amountChange.of(change))).toEqual(['+0.206 %', '']);
    const added = { kind: 'added', placeBefore: 0, placeAfter: 1, keys: [] } as const;
    expect(amountChange.of({ ...added, keys: [], after: rows[0]! })).toBe('');
  });
});
