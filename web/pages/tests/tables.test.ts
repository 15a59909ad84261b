import { describe, expect, it } from 'vitest';
import { calibrationKind, readFile, sequenceKind } from '../src/tables';
import { fileLimit } from '../src/documents';
import { load } from './documents';

const octets = (text: string): ArrayBuffer => new TextEncoder().encode(text).buffer as ArrayBuffer;
const sequence = sequenceKind.fromReport(load('docs/schemas/examples/sequence.json'));
const calibration = calibrationKind.fromReport(load('docs/schemas/examples/calibration.json'));
const readSequence = (document: unknown) =>
  readFile(octets(JSON.stringify(document)), sequenceKind, sequence);
const readCalibration = (document: unknown) =>
  readFile(octets(JSON.stringify(document)), calibrationKind, calibration);

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

  it('may leave members of a line out', () => {
    const { header, rows } = readSequence(load('docs/schemas/examples/sequence-file.json'));
    expect(header).toEqual({ Table_repeat: 1, Continuous: true });
    expect(rows[1]).toEqual({ Type: 'Analysis', Repeat: 20, Stream: 1, Slot: 0, Flush_time: 0 });
  });

  it('count as many rows as their total says', () => {
    expect(readSequence({ Table_repeat: 1, total: 1, rows: [{}, {}, {}] }).rows.length).toBe(1);
    expect(readSequence({ Table_repeat: 1, total: -1, rows: [{}] }).rows.length).toBe(0);
  });

  it('of amounts leave the peaks alone that they do not name', () => {
    const { rows } = readCalibration({
      total: 2,
      rows: [
        { Channel: 2, ID: 1, Level_amt: 3.5 },
        { Channel: 1, ID: 2, Level_amt: 80 },
        { Channel: 1, ID: 1, Level_amt: 99 },
      ],
    });
    expect(rows.length).toBe(11);
    expect(rows.map(({ Level_amt }) => Level_amt)).toEqual([
      4, 80, 1.5, 6, 3.5, 0.4, 0.4, 0.05, 0.1, 0.1, 0.05,
    ]);
  });

  it.each([
    ['{', 'It is not JSON in UTF-8.'],
    ['', 'It is not JSON in UTF-8.'],
    ['{}', '/Table_repeat is missing, and 1 more.'],
    ['[]', 'The file must be an object.'],
    [
      '{"Table_repeat": 1, "total": 1, "rows": [{"Stream": "1"}]}',
      '/rows/0/Stream must be a whole number.',
    ],
    [
      `{"Table_repeat": 1, "total": 21, "rows": [${Array(21).fill('{}').join()}]}`,
      'It has 21 lines; the instrument takes 20.',
    ],
  ])('that are no sequence are refused: %s', (text, message) => {
    expect(() => readFile(octets(text), sequenceKind, sequence)).toThrow(message);
  });

  it('that are too large or no UTF-8 are refused', () => {
    expect(() => readFile(new ArrayBuffer(65537), sequenceKind, sequence)).toThrow(
      'It has 65537 octets; the gateway takes 65536.',
    );
    const latin = new Uint8Array([0x22, 0xe4, 0x22]).buffer;
    expect(() => readFile(latin, sequenceKind, sequence)).toThrow('It is not JSON in UTF-8.');
  });

  it('that name a peak which the instrument does not have are refused', () => {
    expect(() =>
      readCalibration({ total: 1, rows: [{ Channel: 3, ID: 1, Level_amt: 1 }] }),
    ).toThrow('The instrument has no peak 3/1 (channel/peak).');
  });
});
