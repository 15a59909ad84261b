import { describe, expect, it } from 'vitest';
import { syntaxFaultOf } from '../src/jsonPlace';

describe('the place where a text stops being JSON', () => {
  it.each([
    ['', 1, 1, 'the file ends where a value is expected'],
    ['  \n', 2, 1, 'the file ends where a value is expected'],
    ['{', 1, 2, 'the file ends where a name in quotation marks is expected'],
    ['{"a": 1,\n  "b" 2}', 2, 7, 'a colon is expected'],
    ['{"a": 1,\r\n  "b": 2,}', 2, 10, 'a name in quotation marks is expected'],
    ['{a: 1}', 1, 2, 'a name in quotation marks is expected'],
    ["{'a': 1}", 1, 2, 'a name in quotation marks is expected'],
    ['{"a": 1,5}', 1, 9, 'a name in quotation marks is expected'],
    ['{"a": 1\n "b": 2}', 2, 2, 'a comma or } is expected'],
    ['[1 2]', 1, 4, 'a comma or ] is expected'],
    ['[1,\r]', 2, 1, 'a value is expected'],
    ['[1, 2', 1, 6, 'the file ends where a comma or ] is expected'],
    ['[01]', 1, 3, 'a comma or ] is expected'],
    ['[.5]', 1, 2, 'a value is expected'],
    ['[tru]', 1, 2, 'a value is expected'],
    ['{"a": "x\ny"}', 1, 9, 'the quotation mark at the end of a text is expected'],
    ['{"a": "x', 1, 9, 'the file ends where the quotation mark at the end of a text is expected'],
    ['["C:\\x"]', 1, 5, 'a backslash stands before something that it cannot stand before'],
    ['["\\u12"]', 1, 3, 'a backslash stands before something that it cannot stand before'],
    ['{} {}', 1, 4, 'there is something after the end'],
    // Counted in characters, as users do.
    ['["😀" 1]', 1, 6, 'a comma or ] is expected'],
    ['['.repeat(60_000), 1, 1, 'there are too many brackets inside of brackets'],
  ])('%j', (text, line, column, reason) => {
    expect(() => JSON.parse(text) as unknown).toThrow();
    expect(syntaxFaultOf(text)).toEqual({ line, column, text: reason });
  });

  it.each([
    '{"a": [1, -2.5e-3, 0, 1E5, 1e+5], "b": {"c": {}}, "d": [], "e": [[], {}]}',
    ' [true , false,null, "" ]\n',
    '"\\" \\\\ \\/ \\b\\f\\n\\r\\t \\u00E4 ä"',
    '{ }',
    '[ ]',
    '0',
  ])('is nowhere in %j', (text) => {
    expect(() => JSON.parse(text) as unknown).not.toThrow();
    expect(syntaxFaultOf(text)).toBeUndefined();
  });
});
