import { describe, expect, it } from 'vitest';
import { problemsOf, schemaAt, type Schema } from '../src/schema';
import { load } from './documents';

const names = ['sequence-file', 'calibration-file'] as const;
const schemas = Object.fromEntries(
  names.map((name) => [name, load<Schema>(`docs/schemas/${name}.schema.json`)]),
) as Record<(typeof names)[number], Schema>;

const check = (name: (typeof names)[number], value: unknown): string[] =>
  problemsOf(value, schemas[name], schemas[name]).map(({ path, text }) => `${path} ${text}`);

/** Every keyword that is used anywhere in a schema. */
function keywordsOf(schema: Record<string, unknown>): string[] {
  const inner = (value: unknown): string[] => keywordsOf(value as Record<string, unknown>);
  return Object.entries(schema).flatMap(([key, value]) => {
    const below =
      key === 'properties' || key === 'definitions'
        ? Object.values(value as object).flatMap(inner)
        : key === 'items'
          ? inner(value)
          : key === 'anyOf'
            ? (value as unknown[]).flatMap(inner)
            : [];
    return [key, ...below];
  });
}

describe('schema', () => {
  it.each(names)('%s: all its keywords are supported', (name) => {
    const annotations = ['$schema', 'title', 'description', 'additionalProperties'];
    const known = [
      '$ref',
      'type',
      'enum',
      'minimum',
      'maximum',
      'anyOf',
      'required',
      'properties',
      'items',
      'definitions',
    ];
    const used = new Set(keywordsOf(schemas[name] as Record<string, unknown>));
    expect([...used].filter((one) => ![...annotations, ...known].includes(one))).toEqual([]);
    expect(JSON.stringify(schemas[name])).not.toContain('"additionalProperties":false');
  });

  it.each(names)('%s: the example is valid', (name) => {
    expect(check(name, load(`docs/schemas/examples/${name}.json`))).toEqual([]);
  });

  it.each(['everyday', 'four-channel', 'bare'])(
    'the documents of %s are valid files',
    (scenario) => {
      const documents = 'tests/system/documents';
      expect(check('sequence-file', load(`${documents}/sequence/${scenario}.json`))).toEqual([]);
    },
  );

  it.each([
    [[], [' must be an object']],
    [{}, ['/Table_repeat is missing', '/total is missing']],
    [{ Table_repeat: 1.5, total: 0 }, ['/Table_repeat must be a whole number']],
    [{ Table_repeat: 2147483648, total: 0 }, ['/Table_repeat must be at most 2147483647']],
    [{ Table_repeat: 2147483647, total: -2147483648 }, []],
    [{ Table_repeat: -2147483649, total: 0 }, ['/Table_repeat must be at least -2147483648']],
    [{ Table_repeat: 1, total: 0, Continuous: 1 }, ['/Continuous must be true or false']],
    [{ Table_repeat: 1, total: 0, rows: {} }, ['/rows must be a list']],
    [
      { Table_repeat: 1, total: 2, rows: [{ Stream: 1 }, { Type: 'analysis', Stream: '2' }] },
      [
        '/rows/1/Type must be one of Analysis, Calibration, Blank, Verification, None',
        '/rows/1/Stream must be a whole number',
      ],
    ],
    [{ Table_repeat: 1, total: 1, rows: [{ Flush_time: '-' }] }, []],
    [
      { Table_repeat: 1, total: 1, rows: [{ Flush_time: '1' }] },
      ['/rows/0/Flush_time must be a number'],
    ],
    [{ Table_repeat: 1, total: 1, rows: [{ Remark: 'ours' }] }, []],
  ])('sequence file %j: %j', (value, expected) => {
    expect(check('sequence-file', value)).toEqual(expected);
  });

  it.each([
    [{ rows: [] }, ['/total is missing']],
    [{ total: 1, rows: [{ Channel: 1, Level_amt: 2 }] }, ['/rows/0/ID is missing']],
    [
      { total: 1, rows: [{ Channel: 1.5, ID: 1, Level_amt: true }] },
      ['/rows/0/Channel must be a whole number', '/rows/0/Level_amt must be a number'],
    ],
  ])('calibration file %j: %j', (value, expected) => {
    expect(check('calibration-file', value)).toEqual(expected);
  });
});

describe('a schema', () => {
  const told = (value: unknown, schema: Schema): string[] =>
    problemsOf(value, schema, schema).map(({ path, text }) => `${path} ${text}`);

  it.each([
    ['object', null, ' must be an object'],
    ['object', 'a text', ' must be an object'],
    ['object', 5, ' must be an object'],
    ['object', {}, ''],
    ['array', { length: 0 }, ' must be a list'],
    ['array', [], ''],
    ['string', 5, ' must be a text'],
    ['string', '', ''],
    ['boolean', 0, ' must be true or false'],
    ['number', '5', ' must be a number'],
    ['number', Infinity, ' must be a number'],
    ['number', NaN, ' must be a number'],
    ['number', 1.5, ''],
    ['integer', 1.5, ' must be a whole number'],
    ['null', 5, ' must be null'],
  ])('of type %s: %j%s', (type, value, problem) => {
    expect(told(value, { type })).toEqual(problem === '' ? [] : [problem]);
  });

  it.each([
    [0, [' must be at least 1']],
    [1, []],
    [3, []],
    [4, [' must be at most 3']],
  ])('with bounds: %d', (value, problems) => {
    expect(told(value, { type: 'integer', minimum: 1, maximum: 3 })).toEqual(problems);
  });

  it('may have only one bound', () => {
    expect(told(-1e300, { maximum: 3 })).toEqual([]);
    expect(told(1e300, { minimum: 3 })).toEqual([]);
  });

  it('accepts one of several, or else reports what the first one requires', () => {
    const anyOf = [{ type: 'number' }, { enum: ['-'] }];
    expect(told(5, { anyOf })).toEqual([]);
    expect(told('-', { anyOf })).toEqual([]);
    expect(told('x', { anyOf })).toEqual([' must be a number']);
  });

  it('checks lists and objects only as far as it describes them', () => {
    expect(told([1, 'x'], { type: 'array' })).toEqual([]);
    expect(told([1, 'x'], { items: { type: 'integer' } })).toEqual(['/1 must be a whole number']);
    const schema = { required: ['a'], properties: { b: { type: 'string' } } };
    expect(told({ b: 5 }, schema)).toEqual(['/a is missing', '/b must be a text']);
    expect(told({ a: 5, c: 6 }, schema)).toEqual([]);
    expect(told({ a: 5 }, {})).toEqual([]);
    for (const value of [null, 5, 'text', true]) {
      expect(told(value, schema)).toEqual([]);
    }
  });

  it('must exist', () => {
    const root = { definitions: { one: { type: 'string' } } };
    expect(schemaAt(root, '#/definitions/one')).toEqual({ type: 'string' });
    expect(schemaAt(root, '#')).toBe(root);
    expect(() => schemaAt(root, '#/definitions/two')).toThrow('no schema at #/definitions/two');
    expect(() => schemaAt(root, '#/other/two/three')).toThrow('no schema at #/other/two/three');
  });
});
