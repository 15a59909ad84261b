// A gateway for tests: gives the answers that it is told to give, and keeps the requests.
import { vi } from 'vitest';
import { load } from './documents';

export interface Request {
  method: string;
  path: string;
  body?: unknown;
}

interface Reply {
  status: number;
  body: unknown;
  headers?: Record<string, string>;
}

const examples: Record<string, unknown> = {
  '/api/status': load('tests/system/documents/everyday.json'),
  '/api/config': load('docs/schemas/examples/configuration.json'),
  '/api/alarms': load('docs/schemas/examples/alarms.json'),
  '/api/sequence': load('docs/schemas/examples/sequence.json'),
  '/api/calibration': load('docs/schemas/examples/calibration.json'),
};
const accepted = { ErrorCode: 0, Msg: 'Accepted' };

/** Replaces `fetch` until vi.unstubAllGlobals(). */
export class Gateway {
  readonly requests: Request[] = [];
  private readonly replies = new Map<string, Reply | 'lost' | Promise<Reply>>();

  constructor() {
    vi.stubGlobal('fetch', (path: string, init: RequestInit) => this.fetch(path, init));
  }

  /** Gives this answer from now on. */
  answer(path: string, body: unknown, status = 200, headers: Record<string, string> = {}): void {
    this.replies.set(path, { status, body, headers });
  }

  /** The connection fails from now on. */
  lose(path: string): void {
    this.replies.set(path, 'lost');
  }

  /** Gives no answer until the returned function is called. */
  hold(path: string): (body: unknown, status?: number) => void {
    let go: (reply: Reply) => void = () => undefined;
    this.replies.set(path, new Promise<Reply>((done) => (go = done)));
    return (body, status = 200) => go({ status, body });
  }

  /** The requests for this path. */
  of(path: string): Request[] {
    return this.requests.filter((request) => request.path === path);
  }

  private async fetch(path: string, init: RequestInit): Promise<Response> {
    const { method = 'GET', body } = init;
    this.requests.push({
      method,
      path,
      ...(typeof body === 'string' && { body: JSON.parse(body) as unknown }),
    });
    const reply = await (this.replies.get(path) ?? {
      status: 200,
      body: examples[path] ?? accepted,
    });
    if (reply === 'lost') {
      throw new TypeError('Failed to fetch');
    }
    const text = reply.body === null ? null : JSON.stringify(reply.body);
    return new Response(text, {
      status: reply.status,
      ...(reply.headers && { headers: reply.headers }),
    });
  }
}
