// An instrument with its web server, in a separate process that ends with this one.
import { execFile, spawn } from 'node:child_process';
import { rm } from 'node:fs/promises';
import { createInterface } from 'node:readline';
import { fileURLToPath } from 'node:url';
import { promisify } from 'node:util';

const run = promisify(execFile);
const tests = fileURLToPath(new URL('../..', import.meta.url));
const pages = process.env.GC_PAGES ?? `${tests}../build/web/pages`;

export class Instrument {
  /** `options`: for serve.py. */
  static async start(...options) {
    const server = spawn('/usr/bin/python3', [`${tests}browser/serve.py`, pages, ...options], {
      stdio: ['pipe', 'pipe', 'inherit'],
      env: {
        ...process.env,
        PYTHONPATH: `${tests}system:${tests}web`,
        PYTHONDONTWRITEBYTECODE: '1',
      },
    });
    const lines = createInterface({ input: server.stdout })[Symbol.asyncIterator]();
    const { value, done } = await lines.next();
    if (done) {
      throw new Error('no instrument');
    }
    return new Instrument(server, lines, JSON.parse(value));
  }

  constructor(server, lines, { origin, user, password, state, control }) {
    this.server = server;
    this.lines = lines;
    this.origin = origin;
    this.credentials = { username: user, password };
    this.state = state;
    this.program = control;
  }

  /** Passes a verb to gc-simctl and returns the controller's answer. */
  async control(...verb) {
    const [program, ...options] = this.program;
    const { stdout } = await run(program, [...options, ...verb.map(String)], {
      maxBuffer: 16 * 1024 * 1024,
    });
    return JSON.parse(stdout);
  }

  /** Loads a scenario, and waits until the gateway's answers are about it. */
  async load(scenario) {
    await this.control('load', scenario);
    // The gateway may still be about to store the status of the previous scenario.
    let isKept = true;
    while (isKept) {
      await this.forgetStatus();
      const answer = await fetch(`${this.origin}/api/status`);
      await answer.arrayBuffer();
      isKept = answer.headers.has('age');
    }
    this.seen = (await this.control('journal', 1)).lines.at(-1)?.connection ?? 0;
  }

  /** Removes the status that the gateway keeps for a second and shares. */
  forgetStatus() {
    return rm(`${this.state}/status.answer`, { force: true });
  }

  /** Gives a command, as an operator at the front panel would. */
  command(number) {
    return this.control('command', number);
  }

  set(name, value) {
    return this.control('set', name, value);
  }

  fault(fault) {
    return this.control('fault', JSON.stringify(fault));
  }

  /** Every parameter by name. */
  async parameters() {
    return (await this.control('snapshot')).parameters;
  }

  /** Instrument commands and batches written since the scenario was loaded. */
  async changes() {
    const { lines } = await this.control('journal');
    return lines.filter(
      ({ call, connection }) => connection > this.seen && ['Command', 'Write'].includes(call),
    );
  }

  /** The gateway's answer to a report, bypassing the browser. */
  async report(name) {
    return (await fetch(`${this.origin}/api/${name}`)).text();
  }

  /**
   * `stop` or `start`: the controller, not the web server; `kill-gateway`: kills the gateway of the
   * command under way, but not its tool.
   */
  async tell(word) {
    this.server.stdin.write(`${word}\n`);
    const { value } = await this.lines.next();
    if (value !== 'done') {
      throw new Error(`the controller does not ${word}`);
    }
  }

  /** Ends the server process; fails if it reports an error. */
  async stop() {
    const ended = new Promise((resolve) => this.server.once('exit', resolve));
    this.server.stdin.end();
    const status = await ended;
    if (status !== 0) {
      throw new Error(`the instrument ended with ${status}`);
    }
  }
}
