// Requests to the gateway, and plain descriptions of what went wrong.
import type { Verdict } from './documents';

/** Why a request failed. */
export interface Fault {
  /** HTTP status; 0 when there was no answer at all. */
  status: number;
  /** What happened, as a sentence for the user. */
  text: string;
  /** Details from the gateway or the instrument; may be empty. */
  detail: string;
  /** The error number from the instrument or its library. */
  code?: number;
  /** Whether a command may have been carried out despite the fault. */
  isUnknown?: boolean;
}

export type Answer<T> = (
  { ok: true; value: T; ageSeconds: number } | { ok: false; fault: Fault }
) & {
  /** Number of interrupted commands that nobody has acknowledged, if any. */
  interrupted?: number;
  /** Name of the user who gave the command, from the web server. */
  user?: string;
};

/**
 * Milliseconds that an answer may take: slightly more than the gateway needs at most to report that
 * there is none. For a status, it waits 25 s for another request's report and 20 s for its own.
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

/** A member of an unchecked value, if it is a string or a number. */
function member(value: unknown, key: string): string | undefined {
  if (typeof value !== 'object' || value === null) {
    return undefined;
  }
  const found = (value as Record<string, unknown>)[key];
  return typeof found === 'string' || typeof found === 'number' ? String(found) : undefined;
}

/** Describes an unsuccessful answer; `body` is its parsed document, if it has one. */
export function faultOf(status: number, body: unknown): Fault {
  if (member(body, 'outcome') === 'unknown') {
    // Not a refusal: the instrument may still be carrying out the command.
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
      : // The verdict on a refused solution says "Accepted".
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
    // From the web server itself: the gateway did not finish.
    return { status, text, detail: '', isUnknown: true };
  }
  return { status, text, detail: details.filter(Boolean).join(': '), ...known };
}

/** The document of an answer; undefined if there is none. */
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

/** The text of a percent-encoded header. */
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

/** Requests a report; `key` is a member by which its document is recognized. */
export function getReport<T extends object>(
  path: string,
  key: keyof T & string,
  limit: number = timeLimits.report,
): Promise<Answer<T>> {
  const take = (body: unknown): T | undefined =>
    typeof body === 'object' && body !== null && key in body ? (body as T) : undefined;
  return request(path, { method: 'GET' }, limit, take, 'The web server does not answer.');
}

/**
 * Sends a command; without an answer, its outcome is unknown. Only the HTTP status says whether it
 * succeeded: a stream switch is answered without a document.
 */
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
