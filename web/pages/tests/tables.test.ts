import { describe, expect, it } from 'vitest';
import { readFile } from '../src/files';
import { calibrationKind, sequenceKind } from '../src/tables';
import { fileLimit } from '../src/limits';
import type { Configuration } from '../src/documents';
import { cellProblem, type Column } from '../src/table';
import { load } from './documents';

const octets = (text: string): ArrayBuffer => new TextEncoder().encode(text).buffer as ArrayBuffer;
const sequence = sequenceKind.fromReport(load('docs/schemas/examples/sequence.json'));
const calibration = calibrationKind.fromReport(load('docs/schemas/examples/calibration.json'));
const readSequence = (document: unknown) =>
  readFile(octets(JSON.stringify(document)), sequenceKind, sequence);
const readCalibration = (document: unknown) =>
  readFile(octets(JSON.stringify(document)), calibrationKind, calibration);

it('shows the unit of flush times in the column header, if there is one', () => {
  const labels = (units?: Configuration['units']): string[] =>
    sequenceKind
      .layout({
        ...load<Configuration>('docs/schemas/examples/configuration.json'),
        ...(units && { units }),
      })
      .columns.map(({ label }) => label);
  expect(labels()).toContain('Flush time');
  expect(labels({ flush_time: 'min' })).toContain('Flush time, min');
});

describe('layouts', () => {
  const configuration = load<Configuration>('docs/schemas/examples/configuration.json');
  const told = (columns: readonly Column[]) =>
    columns.map(({ key, label, kind, isEditable, isCompared, minimum, maximum }) => [
      key,
      label,
      kind,
      isEditable,
      isCompared,
      minimum,
      maximum,
    ]);

  it('of a sequence', () => {
    const layout = sequenceKind.layout(configuration);
    expect([sequenceKind.name, sequenceKind.title]).toEqual(['sequence', 'Sequence']);
    expect([layout.rowName, layout.leastRows, layout.mostRows]).toEqual(['line', 1, 20]);
    expect(told(layout.header)).toEqual([
      ['Table_repeat', 'Runs of the whole table', 'integer', true, true, 0, undefined],
      ['Continuous', 'Starts again after the last line', 'flag', true, true, undefined, undefined],
    ]);
    expect(told(layout.columns)).toEqual([
      ['Type', 'Type', 'choice', true, true, undefined, undefined],
      ['Repeat', 'Runs', 'integer', true, true, 0, undefined],
      ['Stream', 'Stream', 'integer', true, true, 0, 4],
      ['Slot', 'Solution', 'integer', true, true, 0, 10],
      ['Flush_time', 'Flush time', 'real', true, true, 0, undefined],
    ]);
    expect(layout.columns[0]!.choices).toEqual([
      'Analysis',
      'Calibration',
      'Blank',
      'Verification',
    ]);
    expect(layout.emptyRow).toEqual({
      Type: 'Analysis',
      Repeat: 1,
      Stream: 1,
      Slot: 0,
      Flush_time: 0,
    });
  });

  it('of a sequence without a stream selector, or before it is known', () => {
    const bare = sequenceKind.layout({ ...configuration, Stream_configured: false });
    expect(bare.mostRows).toBe(1);
    expect(bare.emptyRow).toEqual({
      Type: 'Analysis',
      Repeat: 1,
      Stream: 0,
      Slot: 0,
      Flush_time: 0,
    });
    expect(bare.columns[2]!.maximum).toBe(46);
    const unknown = sequenceKind.layout(undefined);
    expect(unknown.mostRows).toBe(20);
    expect(unknown.emptyRow.Stream).toBe(1);
    expect(unknown.columns[2]!.maximum).toBe(46);
  });

  it('of a calibration', () => {
    const layout = calibrationKind.layout(configuration);
    expect([calibrationKind.name, calibrationKind.title]).toEqual(['calibration', 'Calibration']);
    expect([layout.rowName, layout.leastRows, layout.mostRows]).toEqual(['peak', 0, 0]);
    expect(layout.header).toEqual([]);
    expect(layout.emptyRow).toEqual({});
    expect(told(layout.columns)).toEqual([
      ['Channel', 'Channel', 'integer', false, true, undefined, undefined],
      ['ID', 'Peak', 'integer', false, true, undefined, undefined],
      ['PkName', 'Name', 'text', false, true, undefined, undefined],
      ['Level_amt', 'Amount, level 1', 'real', true, true, 0, undefined],
      ['Ret_time', 'Retention time, s', 'real', false, false, undefined, undefined],
      ['Linear', 'Linear coefficient', 'real', false, false, undefined, undefined],
    ]);
    const amount = layout.columns[3]!;
    expect(cellProblem('-0.1', amount, layout.schema)).toBe('must be at least 0');
    expect(cellProblem('0', amount, layout.schema)).toBe('');
    expect(cellProblem('many', amount, layout.schema)).toBe('not a number');
  });
});

describe('reports', () => {
  it('may omit members', () => {
    expect(sequenceKind.fromReport({ Table_repeat: 1, total: 2, rows: [{}] })).toEqual({
      header: { Table_repeat: 1, Continuous: false },
      rows: [{ Type: 'Analysis', Repeat: 0, Stream: 0, Slot: 0, Flush_time: 0 }],
    });
    expect(sequenceKind.fromReport({ Table_repeat: 1, total: 2 }).rows).toEqual([]);
    expect(
      calibrationKind.fromReport({ total: 1, rows: [{ Channel: 1, ID: 2, Level_amt: 3 }] }),
    ).toEqual({
      header: {},
      rows: [{ Channel: 1, ID: 2, PkName: '', Ret_time: '-', Level_amt: 3, Linear: '-' }],
    });
    expect(calibrationKind.fromReport({ total: 0 })).toEqual({ header: {}, rows: [] });
  });
});

describe('files', () => {
  it('of a sequence are the document', () => {
    expect(JSON.parse(sequenceKind.toFile(sequence))).toEqual(
      load('docs/schemas/examples/sequence.json'),
    );
  });

  it('of a calibration are the document', () => {
    expect(JSON.parse(calibrationKind.toFile(calibration))).toEqual(
      load('docs/schemas/examples/calibration.json'),
    );
  });

  it('have room for the fullest calibration', () => {
    const peak = (n: number) => ({
      Channel: Math.floor(n / 100) + 1,
      ID: (n % 100) + 1,
      PkName: 'trans-2-Butenoic aci',
      Ret_time: 157.20000000000003 + n,
      Level_amt: 0.12345678901234567,
      Linear: 0.000012345678901234567,
    });
    const rows = Array.from({ length: 400 }, (_, n) => peak(n));
    const file = calibrationKind.toFile(calibrationKind.fromReport({ total: 400, rows }));
    expect(new TextEncoder().encode(file).length).toBeLessThanOrEqual(fileLimit);
  });

  it('that were exported can be imported', () => {
    expect(readFile(octets(sequenceKind.toFile(sequence)), sequenceKind, sequence)).toEqual(
      sequence,
    );
    expect(
      readFile(octets(calibrationKind.toFile(calibration)), calibrationKind, calibration),
    ).toEqual(calibration);
  });

  it('may omit members of a line', () => {
    const { header, rows } = readSequence(load('docs/schemas/examples/sequence-file.json'));
    expect(header).toEqual({ Table_repeat: 1, Continuous: true });
    expect(rows[1]).toEqual({ Type: 'Analysis', Repeat: 20, Stream: 1, Slot: 0, Flush_time: 0 });
  });

  it.each([
    [1, 3, '"total" is 1, but there are 3 rows.'],
    [3, 1, '"total" is 3, but there is 1 row.'],
    [-1, 1, '"total" is -1, but there is 1 row.'],
    [2, undefined, '"total" is 2, but there are 0 rows.'],
  ])('with a total of %d and %d rows are refused', (total, count, text) => {
    const of = <T>(row: T) => (count === undefined ? {} : { rows: Array<T>(count).fill(row) });
    expect(() => readSequence({ Table_repeat: 1, total, ...of({}) })).toThrow(text);
    const peak = { Channel: 1, ID: 1, Level_amt: 99 };
    expect(() => readCalibration({ total, ...of(peak) })).toThrow(text);
  });

  it('of amounts do not change the peaks that they omit', () => {
    const { rows } = readCalibration({
      total: 2,
      rows: [
        { Channel: 2, ID: 1, Level_amt: 3.5 },
        { Channel: 1, ID: 2, Level_amt: 80 },
      ],
    });
    expect(rows.length).toBe(11);
    expect(rows.map(({ Level_amt }) => Level_amt)).toEqual([
      4, 80, 1.5, 6, 3.5, 0.4, 0.4, 0.05, 0.1, 0.1, 0.05,
    ]);
  });

  it('of amounts without rows change nothing', () => {
    expect(readCalibration({ total: 0 })).toEqual(calibration);
    expect(readCalibration({ total: 0, rows: [] })).toEqual(calibration);
  });

  it('may have 20 lines, and as many octets as the gateway accepts', () => {
    const lines = Array.from({ length: 20 }, () => ({}));
    expect(readSequence({ Table_repeat: 1, total: 20, rows: lines }).rows).toHaveLength(20);
    const text = '{"Table_repeat": 1, "total": 0}';
    expect(readFile(octets(text.padEnd(65536)), sequenceKind, sequence).rows).toEqual([]);
  });

  it.each([
    [
      '{',
      'It is not JSON. Line 1, column 2: the file ends where a name in quotation marks is expected.',
    ],
    ['{}', /^Table_repeat: is missing\. total: is missing\.$/],
    ['[]', /^The file must be an object\.$/],
    [
      '{"Table_repeat": 1, "total": 1, "rows": [{}, {}, {"Stream": "1"}]}',
      /^row 3, Stream: must be a whole number\.$/,
    ],
    ['{"Table_repeat": 1, "total": 1, "rows": [3]}', /^row 1: must be an object\.$/],
    ['{"Table_repeat": 1, "total": 1, "rows": 3}', /^rows: must be a list\.$/],
    [
      '{"Table_repeat": 1, "total": 5, "rows": [3, 3, 3, 3, 3]}',
      /^row 1: must be an object\..*row 5: must be an object\.$/,
    ],
    [
      '{"Table_repeat": 1, "total": 7, "rows": [3, 3, 3, 3, 3, 3, 3]}',
      /row 5: must be an object\. There are 2 more faults\.$/,
    ],
    [
      `{"Table_repeat": 1, "total": 21, "rows": [${Array(21).fill('{}').join()}]}`,
      'It has 21 lines; the instrument accepts 20.',
    ],
  ])('that are not a sequence are refused: %s', (text, message) => {
    expect(() => readFile(octets(text), sequenceKind, sequence)).toThrow(message);
  });

  it('that are too large or not UTF-8 are refused', () => {
    expect(() => readFile(new ArrayBuffer(65537), sequenceKind, sequence)).toThrow(
      'It has 65537 octets; the gateway accepts 65536.',
    );
    const latin = new Uint8Array([0x22, 0xe4, 0x22]).buffer;
    expect(() => readFile(latin, sequenceKind, sequence)).toThrow('It is not text in UTF-8.');
  });

  it('that name a peak that the instrument does not have are refused', () => {
    expect(() =>
      readCalibration({ total: 1, rows: [{ Channel: 3, ID: 1, Level_amt: 1 }] }),
    ).toThrow('The instrument has no peak 3/1 (channel/peak).');
    const rows = Array.from({ length: 7 }, (_, n) => ({ Channel: 4, ID: n + 1, Level_amt: 1 }));
    expect(() => readCalibration({ total: 7, rows })).toThrow(
      'The instrument has no peak 4/1, 4/2, 4/3, 4/4, 4/5 (channel/peak).',
    );
  });
});
