// The instrument's two tables: their layouts, and conversion from and to documents.
import calibrationSchema from '../../../docs/schemas/calibration-file.schema.json';
import sequenceSchema from '../../../docs/schemas/sequence-file.schema.json';
import type { Calibration, Configuration, Sequence } from './documents';
import { lastSlot, lastStream, sequenceLines } from './limits';
import type { Schema } from './schema';
import type { Column, Layout, Table, Values } from './table';

/** One kind of table, and its conversion from and to the gateway's documents. */
export interface TableKind {
  name: 'sequence' | 'calibration';
  title: string;
  /** What sending does beyond the differences shown, and what a refusal leaves behind. */
  effects: readonly string[];
  layout: (configuration: Configuration | undefined) => Layout;
  fromReport: (document: object) => Table;
  /** The file that the gateway accepts, and that is exported. */
  toFile: (table: Table) => string;
  /** A table from a file’s document, checked by its schema; `current` is the instrument’s. */
  fromFile: (document: unknown, current: Table) => Table;
}

const line = '#/definitions/lineToWrite/properties/';
const editable = { isEditable: true, isCompared: true };
const computed = { isEditable: false, isCompared: false };

const emptyLine: Values = { Type: 'Analysis', Repeat: 1, Stream: 1, Slot: 0, Flush_time: 0 };

function sequenceLayout(configuration: Configuration | undefined): Layout {
  const hasSelector = configuration?.Stream_configured ?? true;
  const stream: Column = {
    key: 'Stream',
    label: 'Stream',
    kind: 'integer',
    ...editable,
    schema: `${line}Stream`,
    minimum: 0,
    maximum: configuration && hasSelector ? configuration.Stream_max : lastStream,
  };
  return {
    schema: sequenceSchema as Schema,
    rowName: 'line',
    leastRows: 1,
    // Without a stream selector the instrument shows one line, whatever it was sent.
    mostRows: hasSelector ? sequenceLines : 1,
    emptyRow: hasSelector ? emptyLine : { ...emptyLine, Stream: 0 },
    header: [
      {
        key: 'Table_repeat',
        label: 'Runs of the whole table',
        kind: 'integer',
        ...editable,
        schema: '#/properties/Table_repeat',
        minimum: 0,
        usual: 999,
      },
      {
        key: 'Continuous',
        label: 'Starts again after the last line',
        kind: 'flag',
        ...editable,
        schema: '#/properties/Continuous',
      },
    ],
    columns: [
      {
        key: 'Type',
        label: 'Type',
        kind: 'choice',
        ...editable,
        schema: `${line}Type`,
        // "None" would be written as an analysis.
        choices: ['Analysis', 'Calibration', 'Blank', 'Verification'],
      },
      {
        key: 'Repeat',
        label: 'Runs',
        kind: 'integer',
        ...editable,
        schema: `${line}Repeat`,
        minimum: 0,
        usual: 999,
      },
      stream,
      {
        key: 'Slot',
        label: 'Solution',
        kind: 'integer',
        ...editable,
        schema: `${line}Slot`,
        minimum: 0,
        maximum: lastSlot,
      },
      {
        key: 'Flush_time',
        label: ['Flush time', configuration?.units?.flush_time].filter(Boolean).join(', '),
        kind: 'real',
        ...editable,
        schema: `${line}Flush_time`,
        minimum: 0,
        usual: 60,
      },
    ],
  };
}

/** Missing members have the tool's defaults. */
function sequenceTable(document: Sequence): Table {
  const rows = (document.rows ?? []).slice(0, Math.max(0, document.total));
  return {
    header: { Table_repeat: document.Table_repeat, Continuous: document.Continuous ?? false },
    rows: rows.map((row) => ({
      Type: row.Type ?? 'Analysis',
      Repeat: row.Repeat ?? 0,
      Stream: row.Stream ?? 0,
      Slot: row.Slot ?? 0,
      Flush_time: row.Flush_time ?? 0,
    })),
  };
}

/** Writes each row on one line: people read and compare these files. */
function writeFile(members: Record<string, unknown>, rows: readonly Values[]): string {
  const head = Object.entries({ ...members, total: rows.length })
    .map(([key, value]) => `  ${JSON.stringify(key)}: ${JSON.stringify(value)},\n`)
    .join('');
  const body = rows.map((row) => `    ${JSON.stringify(row)}`).join(',\n');
  return `{\n${head}  "rows": [\n${body}\n  ]\n}\n`;
}

/** The instrument would store only as many rows as the total says, so a mismatch is a mistake. */
function checkTotal({ rows = [], total }: { rows?: readonly unknown[]; total: number }): void {
  if (total !== rows.length) {
    const count = rows.length === 1 ? 'there is 1 row' : `there are ${rows.length} rows`;
    throw new Error(`"total" is ${total}, but ${count}.`);
  }
}

export const sequenceKind: TableKind = {
  name: 'sequence',
  title: 'Sequence',
  effects: [
    'Every line gets the calibration flag, whether it had it before or not: no report shows that flag.',
    'The instrument clears its table and then stores the new one line by line. If it refuses a line, the lines before it are stored and the others are not; the previous table can be restored, except for the calibration flags.',
  ],
  layout: sequenceLayout,
  fromReport: (document) => sequenceTable(document as Sequence),
  toFile: (table) => writeFile(table.header, table.rows),
  fromFile: (document) => {
    checkTotal(document as Sequence);
    const table = sequenceTable(document as Sequence);
    if (table.rows.length > sequenceLines) {
      throw new Error(
        `It has ${table.rows.length} lines; the instrument accepts ${sequenceLines}.`,
      );
    }
    return table;
  },
};

const peakKey = (row: { Channel?: unknown; ID?: unknown }): string => `${row.Channel}/${row.ID}`;

export const calibrationKind: TableKind = {
  name: 'calibration',
  title: 'Calibration',
  effects: [
    'The instrument clears all amounts first. The amounts of all peaks are sent.',
    'If it refuses an amount, the peaks before it have theirs, and the others stay cleared; the previous amounts can be restored.',
  ],
  layout: () => ({
    schema: calibrationSchema as Schema,
    rowName: 'peak',
    // Peaks come from the instrument's method: a download can only set their amounts.
    leastRows: 0,
    mostRows: 0,
    emptyRow: {},
    header: [],
    columns: [
      { key: 'Channel', label: 'Channel', kind: 'integer', isEditable: false, isCompared: true },
      { key: 'ID', label: 'Peak', kind: 'integer', isEditable: false, isCompared: true },
      { key: 'PkName', label: 'Name', kind: 'text', isEditable: false, isCompared: true },
      {
        key: 'Level_amt',
        label: 'Amount, level 1',
        kind: 'real',
        ...editable,
        schema: '#/definitions/level/properties/Level_amt',
        minimum: 0,
        usual: 1_000_000,
      },
      { key: 'Ret_time', label: 'Retention time, s', kind: 'real', ...computed },
      { key: 'Linear', label: 'Linear coefficient', kind: 'real', ...computed },
    ],
  }),
  fromReport: (document) => ({
    header: {},
    rows: ((document as Calibration).rows ?? []).map((row) => ({
      Channel: row.Channel,
      ID: row.ID,
      PkName: row.PkName ?? '',
      Ret_time: row.Ret_time ?? '-',
      Level_amt: row.Level_amt,
      Linear: row.Linear ?? '-',
    })),
  }),
  toFile: (table) => writeFile({}, table.rows),
  // A download clears all amounts first, so peaks missing from the file are sent with theirs.
  fromFile: (document, current) => {
    const { rows = [] } = document as Calibration;
    checkTotal(document as Calibration);
    const amounts = new Map(rows.map((row) => [peakKey(row), row.Level_amt]));
    const known = new Set(current.rows.map(peakKey));
    const unknown = [...amounts.keys()].filter((key) => !known.has(key));
    if (unknown.length > 0) {
      throw new Error(
        `The instrument has no peak ${unknown.slice(0, 5).join(', ')} (channel/peak).`,
      );
    }
    const isChanged = (row: Values): boolean => amounts.has(peakKey(row));
    return {
      header: {},
      rows: current.rows.map((row) =>
        isChanged(row) ? { ...row, Level_amt: amounts.get(peakKey(row))! } : row,
      ),
    };
  },
};
