// Checks the description of the gateway's interface against the rules of OpenAPI and of good style.
import { createConfig, formatProblems, getTotals, lint } from '@redocly/openapi-core';

const [description] = process.argv.slice(2);
const config = await createConfig({
  extends: ['recommended-strict'],
  rules: {
    // No licence has been chosen.
    'info-license': 'off',
    // Reports need none.
    'operation-4xx-response': 'off',
    // OpenAPI has no place for what a path answers to methods that it does not have.
    'no-unused-components': 'off',
    // A logout has no answer but a refusal.
    'operation-2xx-response': 'off',
    // The schemas say themselves that they take no more members.
    'no-invalid-media-type-examples': { severity: 'error', allowAdditionalProperties: true },
  },
});
const problems = await lint({ ref: description, config });
formatProblems(problems, { totals: getTotals(problems), version: '' });
process.exit(problems.length === 0 ? 0 : 1);
