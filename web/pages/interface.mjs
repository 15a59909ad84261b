// Generates src/interface.d.ts, the gateway's interface in TypeScript, from its description.
import { existsSync, readFileSync, writeFileSync } from 'node:fs';
import openapiTS, { astToString } from 'openapi-typescript';

/**
 * In a schema with members, alternatives only say which members go together. Their types would
 * repeat the members that they restrict, with all others as unknown.
 */
function transform(schema) {
  if (schema.type) {
    delete schema.anyOf;
  }
}

const types = await openapiTS(new URL('../../docs/openapi.json', import.meta.url), { transform });
const text = `// Made by interface.mjs.\n${astToString(types)}`;
const file = new URL('src/interface.d.ts', import.meta.url);
if (!existsSync(file) || readFileSync(file, 'utf8') !== text) {
  writeFileSync(file, text);
}
