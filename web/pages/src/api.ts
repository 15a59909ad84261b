// Requests to the gateway, and in plain words what went wrong with one.
import type { Verdict } from './documents';

/** Why there is no good answer. */
export interface Fault {
  /** HTTP status; 0 when there was no answer at all. */
  status: number;
  /** What happened, as a sentence for the person in front. */
  text: string;
  /** Details from the gateway or the instrument; may be empty. */
  detail: string;
  /** The number with which the instrument, or its library, refused. */
  code?: number;
  /** Whether a command may have been carried out all the same. */
  isUnknown?: boolean;
}

export type Answer<T> = (
  { ok: true; value: T; ageSeconds: number } | { ok: false; fault: Fault }
) & {
  /** How many commands were interrupted and nobody has taken note, if there are any. */
  interrupted?: number;
  /** Who has given the command, as the web server knows. */
  user?: string;
};

/**
 * Milliseconds that an answer may take: a little more than the gateway accepts at most to say that
 * there is none. For a status it waits 25 s for somebody else's and 20 s for its own.
 */
export const timeLimits = { status: 48_000, report: 25_000, command: 152_000 } as const;

const textsOfStatus: Readonly<Record<number, string>> = {
  401: 'You are not signed in. Nothing was done.',
  403: 'You are not allowed to do this. Nothing was done.',
  404: 'The web server does not know this address. Is the gateway set up?',
  409: 'The instrument refused.',
  413: 'The file is too large.',
  415: 'The gateway does not accept this kind of file.',
  422: 'The gateway does not accept these values.',
  429: 'Too many requests, or too many wrong passwords. Nothing was done.',
  502: 'The instrument or its tool did not give a usable answer.',
  503: 'The instrument is not reachable.',
  504: 'The instrument did not answer in time.',
};

/** A member of something that came from outside, if it is a text or a number. */
function member(value: unknown, key: string): string | undefined {
  if (typeof value !== 'object' || value === null) {
    return undefined;
  }
  const found = (value as Record<string, unknown>)[key];
  return typeof found === 'string' || typeof found === 'number' ? String(found) : undefined;
}

/** What an answer that is no success means; `body` is its parsed document, if it is one. */
export function faultOf(status: number, body: unknown): Fault {
  if (member(body, 'outcome') === 'unknown') {
    // No refusal: the instrument may be at work.
    const parts = [member(body, 'detail'), member(body, 'message')];
    const text = 'The outcome of the command is not known.';
    return { status, text, detail: parts.filter(Boolean).join(' '), isUnknown: true };
  }
  let text = textsOfStatus[status] ?? `The web server answered with HTTP status ${status}.`;
  const code = member(body, 'ErrorCode');
  const words = member(body, 'Msg');
  const details =
    code === undefined
      ? [member(body, 'title'), member(body, 'detail')]
      : // A solution that was refused says "Accepted".
        [
          words === undefined || words === 'Accepted'
            ? `error ${code}`
            : `${words} (error ${code})`,
        ];
  const instrument = member(body, 'status-of-instrument');
  if (instrument !== undefined) {
    details.push(`status of the instrument: ${instrument}`);
  }
  if (status === 409 && code === undefined && instrument === undefined) {
    text = 'The gateway rejected the command.';
  }
  const number = Number(code ?? instrument);
  const known = Number.isNaN(number) ? {} : { code: number };
  if (status >= 500 && body === undefined) {
    // The web server's own: the gateway has not come to its end.
    return { status, text, detail: '', isUnknown: true };
  }
  return { status, text, detail: details.filter(Boolean).join(': '), ...known };
}

/** The document of an answer; undefined where there is none. */
function parsed(response: Response): Promise<unknown> {
  return response.json().catch(() => undefined);
}

function readHeaders(headers: Headers): { interrupted?: number; user?: string } {
  const count = headers.get('X-GC-Interrupted');
  const user = headers.get('X-GC-User');
  return {
    ...(count !== null && { interrupted: Number(count) }),
    ...(user && { user: decoded(user) }),
  };
}

/** A header's text, which is percent-encoded. */
function decoded(text: string): string {
  try {
    return decodeURIComponent(text);
  } catch {
    return text;
  }
}

async function request<T>(
  path: string,
  init: RequestInit,
  limit: number,
  take: (body: unknown) => T | undefined,
  withoutAnswer: string,
): Promise<Answer<T>> {
  let response: Response;
  let body: unknown;
  try {
    response = await fetch(path, {
      ...init,
      cache: 'no-store',
      credentials: 'same-origin',
      signal: AbortSignal.timeout(limit),
    });
    body = await parsed(response);
  } catch (error) {
    const isLate = error instanceof DOMException && error.name === 'TimeoutError';
    const detail = isLate ? `No answer within ${limit / 1000} s` : 'The connection failed';
    return { ok: false, fault: { status: 0, text: withoutAnswer, detail } };
  }
  const fromHeaders = readHeaders(response.headers);
  if (response.status !== 200 && response.status !== 204) {
    return { ok: false, fault: faultOf(response.status, body), ...fromHeaders };
  }
  const value = take(body);
  if (value === undefined) {
    const text = 'The answer is not what was requested.';
    return { ok: false, fault: { status: response.status, text, detail: path }, ...fromHeaders };
  }
  const age = Number(response.headers.get('Age'));
  return { ok: true, value, ageSeconds: Math.max(0, age) || 0, ...fromHeaders };
}

/** Asks for a report; `key` is a member that tells its document from any other. */
export function getReport<T extends object>(
  path: string,
  key: keyof T & string,
  limit: number = timeLimits.report,
): Promise<Answer<T>> {
  const take = (body: unknown): T | undefined =>
    typeof body === 'object' && body !== null && key in body ? (body as T) : undefined;
  return request(path, { method: 'GET' }, limit, take, 'The web server does not answer.');
}

/** Gives a command, of which nobody knows what became when no answer comes. Only the HTTP status says whether it succeeded; a stream switch answers nothing. */
export async function sendCommand(
  method: 'POST' | 'PUT',
  name: string,
  body: string,
): Promise<Answer<Verdict | null>> {
  const headers = { 'Content-Type': 'application/json', 'X-GC-Request': '1' };
  const answer = await request<Verdict | null>(
    `/api/command/${name}`,
    { method, headers, body },
    timeLimits.command,
    (verdict) => (verdict as Verdict | undefined) ?? null,
    'No answer came. The command may have been carried out: check the state.',
  );
  return answer.ok || answer.fault.status !== 0
    ? answer
    : { ...answer, fault: { ...answer.fault, isUnknown: true } };
}
