// Finds where a text stops being JSON, and why. Browsers describe that differently, if at all.

export interface SyntaxFault {
  /** Both count from 1. */
  line: number;
  column: number;
  text: string;
}

const space = /[ \t\n\r]*/y;
const number = /-?(0|[1-9]\d*)(\.\d+)?([eE][+-]?\d+)?/y;
const word = /true|false|null/y;
/** The inside of a string, up to its end or the first character that is not allowed. */
const textPart = /([^"\\\u0000-\u001f]|\\(["\\/bfnrt]|u[0-9a-fA-F]{4}))*/y;

/** Thrown at the first fault. */
class Stop extends Error {}

class Reader {
  at = 0;

  constructor(private readonly text: string) {}

  document(): void {
    this.value('a value');
    this.skip(space);
    if (this.at < this.text.length) {
      this.stop('there is something after the end');
    }
  }

  private value(what: string): void {
    this.skip(space);
    const next = this.text[this.at];
    if (next === '{') {
      this.list('}', () => {
        this.string('a name in quotation marks');
        this.expect(':', 'a colon');
        this.value('a value');
      });
    } else if (next === '[') {
      this.list(']', () => this.value('a value'));
    } else if (next === '"') {
      this.string(what);
    } else if (!this.skip(number) && !this.skip(word)) {
      this.missing(what);
    }
  }

  private list(end: string, item: () => void): void {
    this.at++;
    this.skip(space);
    if (this.text[this.at] !== end) {
      item();
      this.skip(space);
      while (this.text[this.at] === ',') {
        this.at++;
        item();
        this.skip(space);
      }
    }
    this.expect(end, `a comma or ${end}`);
  }

  private string(what: string): void {
    this.skip(space);
    if (this.text[this.at] !== '"') {
      this.missing(what);
    }
    this.at++;
    this.skip(textPart);
    if (this.text[this.at] === '\\') {
      this.stop('a backslash stands before something that it cannot stand before');
    }
    this.expect('"', 'the quotation mark at the end of a text');
  }

  private expect(character: string, what: string): void {
    if (character !== '"') {
      this.skip(space);
    }
    if (this.text[this.at] !== character) {
      this.missing(what);
    }
    this.at++;
  }

  /** Skips what matches; returns whether anything did. */
  private skip(pattern: RegExp): boolean {
    pattern.lastIndex = this.at;
    const length = pattern.exec(this.text)?.[0].length ?? 0;
    this.at += length;
    return length > 0;
  }

  private missing(what: string): never {
    const isEnd = this.at >= this.text.length;
    this.stop(isEnd ? `the file ends where ${what} is expected` : `${what} is expected`);
  }

  private stop(text: string): never {
    throw new Stop(text);
  }
}

/** The first fault of a text that is not JSON; undefined if none is found. */
export function syntaxFaultOf(text: string): SyntaxFault | undefined {
  const reader = new Reader(text);
  try {
    reader.document();
    return undefined;
  } catch (error) {
    if (!(error instanceof Stop)) {
      // The brackets are nested so deeply that the stack overflowed.
      return { line: 1, column: 1, text: 'there are too many brackets inside of brackets' };
    }
    const lines = text.slice(0, reader.at).split(/\r\n|\r|\n/);
    return { line: lines.length, column: [...lines.at(-1)!].length + 1, text: error.message };
  }
}
