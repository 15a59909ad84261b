// Stands in for the gateway while somebody works on the pages: starts the tool for every request.
// It is as good as a page needs, without users and locks; docs/gateway.md describes the real one.
import { execFile } from 'node:child_process';
import { mkdtemp, rm, writeFile } from 'node:fs/promises';
import type { IncomingMessage, ServerResponse } from 'node:http';
import { tmpdir } from 'node:os';
import { join, resolve } from 'node:path';
import type { Connect, Plugin } from 'vite';

const tool = process.env.GC_WEB_TOOL ?? resolve('../../build/release/bin/GC_Web');
const address = process.env.GC_WEB_ADDRESS ?? '127.0.0.1';

const reports: Readonly<Record<string, string>> = {
  status: '-t',
  config: '-g',
  alarms: '-a',
  sequence: '-q',
  calibration: '-c',
};

type Body = Record<string, unknown>;

const runs: Readonly<Record<string, string>> = {
  single: 'single',
  calibration: 'calib',
  automation: 'auto',
};

/** Method, and options of the tool; a body that is a file is given to it by name. */
const commands: Readonly<Record<string, [string, (body: Body, file: string) => string[]]>> = {
  run: [
    'POST',
    ({ type, stream }) => [
      '-R',
      runs[String(type)] ?? '',
      ...(stream === undefined ? [] : ['-v', String(stream)]),
    ],
  ],
  abort: ['POST', ({ when }) => ['-A', when === 'now' ? 'now' : 'auto']],
  stream: ['PUT', ({ stream }) => ['-V', String(stream)]],
  solution: ['PUT', ({ solution }) => ['-M', String(solution)]],
  'alarm-reset': ['POST', () => ['-P']],
  sequence: ['PUT', (_, file) => ['-Q', file]],
  calibration: ['PUT', (_, file) => ['-C', file]],
};

interface Outcome {
  status: number;
  body: string;
  /** Set for the gateway's own errors. */
  isProblem?: boolean;
}

function problem(status: number, title: string, more: object = {}): Outcome {
  return { status, body: JSON.stringify({ title, status, ...more }), isProblem: true };
}

function judge(out: string, err: string, isCommand: boolean): Outcome {
  const failed = /Execute failed (-?\d+)/.exec(err);
  if (out === '') {
    if (failed) {
      const more = { 'status-of-instrument': Number(failed[1]) };
      return problem(isCommand ? 409 : 502, 'The instrument refused', more);
    }
    return isCommand ? { status: 204, body: '' } : problem(502, 'The tool said nothing');
  }
  const { ErrorCode: code, Msg: words } = JSON.parse(out) as { ErrorCode?: number; Msg?: string };
  const isUnreachable = code === 1 || code === 10053;
  const isRefused = (code ?? 0) !== 0 || words === 'Format Invalid' || failed !== null;
  return { status: isUnreachable ? 503 : isRefused ? 409 : 200, body: out };
}

function runTool(options: string[], isCommand: boolean): Promise<Outcome> {
  return new Promise((done) => {
    execFile(tool, ['-s', address, ...options], { timeout: 20_000 }, (error, out, err) => {
      const isBroken = error !== null && out === '' && !err.includes('Execute failed');
      done(
        isBroken ? problem(502, `The tool failed: ${error.message}`) : judge(out, err, isCommand),
      );
    });
  });
}

async function bodyOf(request: IncomingMessage): Promise<string> {
  const chunks: Buffer[] = [];
  for await (const chunk of request) {
    chunks.push(chunk as Buffer);
  }
  return Buffer.concat(chunks).toString();
}

async function answer(request: IncomingMessage): Promise<Outcome> {
  const [, kind = '', name = ''] = (request.url ?? '').split('/');
  const report = reports[kind];
  if (report !== undefined) {
    return runTool([report], false);
  }
  const found = kind === 'command' ? commands[name] : undefined;
  if (!found || found[0] !== request.method) {
    return problem(404, 'No such request');
  }
  if (request.headers['x-gc-request'] !== '1') {
    return problem(403, 'X-GC-Request is missing');
  }
  const body = await bodyOf(request);
  const folder = await mkdtemp(join(tmpdir(), 'gc-web-dev-'));
  try {
    const file = join(folder, 'file.json');
    await writeFile(file, body);
    return await runTool(found[1](JSON.parse(body) as Body, file), true);
  } finally {
    await rm(folder, { recursive: true });
  }
}

const handle: Connect.SimpleHandleFunction = (request, response: ServerResponse) => {
  answer(request)
    .catch((error: unknown) => problem(400, String(error)))
    .then(({ status, body, isProblem }) => {
      const type = isProblem ? 'application/problem+json' : 'application/json';
      response.writeHead(status, { 'Content-Type': type, 'Cache-Control': 'no-store' });
      response.end(body);
    });
};

export function gateway(): Plugin {
  return {
    name: 'gateway',
    configureServer: (server) => void server.middlewares.use('/api', handle),
    configurePreviewServer: (server) => void server.middlewares.use('/api', handle),
  };
}
