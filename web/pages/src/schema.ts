// Checks values against the files' JSON Schemas; supports only the keywords that these use.

export interface Schema {
  $ref?: string;
  type?: string;
  enum?: readonly unknown[];
  minimum?: number;
  maximum?: number;
  anyOf?: readonly Schema[];
  required?: readonly string[];
  properties?: Readonly<Record<string, Schema>>;
  items?: Schema;
  definitions?: Readonly<Record<string, Schema>>;
}

export interface Problem {
  /** Place in the value, as a JSON pointer; empty for the value itself. */
  path: string;
  text: string;
}

const typeTexts: Readonly<Record<string, string>> = {
  object: 'an object',
  array: 'a list',
  string: 'a text',
  boolean: 'true or false',
  number: 'a number',
  integer: 'a whole number',
};

function isOfType(value: unknown, type: string): boolean {
  switch (type) {
    case 'object':
      return typeof value === 'object' && value !== null && !Array.isArray(value);
    case 'array':
      return Array.isArray(value);
    case 'integer':
      return Number.isInteger(value);
    case 'number':
      return Number.isFinite(value);
    default:
      return typeof value === type;
  }
}

/** The schema at a JSON pointer of the form `#/definitions/line`. */
export function schemaAt(root: Schema, reference: string): Schema {
  let node: unknown = root;
  for (const key of reference.split('/').slice(1)) {
    node = (node as Record<string, unknown> | undefined)?.[key];
  }
  if (node === undefined) {
    throw new Error(`no schema at ${reference}`);
  }
  return node as Schema;
}

/** The faults of a value by its schema, which is a part of `root`; empty if there are none. */
export function problemsOf(value: unknown, schema: Schema, root: Schema, path = ''): Problem[] {
  if (schema.$ref !== undefined) {
    return problemsOf(value, schemaAt(root, schema.$ref), root, path);
  }
  if (schema.type !== undefined && !isOfType(value, schema.type)) {
    return [{ path, text: `must be ${typeTexts[schema.type] ?? schema.type}` }];
  }
  if (schema.enum && !schema.enum.includes(value)) {
    return [{ path, text: `must be one of ${schema.enum.join(', ')}` }];
  }
  if ((value as number) < (schema.minimum ?? -Infinity)) {
    return [{ path, text: `must be at least ${schema.minimum}` }];
  }
  if ((value as number) > (schema.maximum ?? Infinity)) {
    return [{ path, text: `must be at most ${schema.maximum}` }];
  }
  if (schema.anyOf) {
    const each = schema.anyOf.map((one) => problemsOf(value, one, root, path));
    return each.find((problems) => problems.length === 0) ?? each[0]!;
  }
  if (Array.isArray(value)) {
    const { items } = schema;
    return items ? value.flatMap((item, n) => problemsOf(item, items, root, `${path}/${n}`)) : [];
  }
  if (typeof value !== 'object' || value === null) {
    return [];
  }
  const members = value as Record<string, unknown>;
  const missing = (schema.required ?? []).filter((key) => !(key in members));
  return [
    ...missing.map((key) => ({ path: `${path}/${key}`, text: 'is missing' })),
    ...Object.entries(schema.properties ?? {}).flatMap(([key, property]) =>
      key in members ? problemsOf(members[key], property, root, `${path}/${key}`) : [],
    ),
  ];
}
