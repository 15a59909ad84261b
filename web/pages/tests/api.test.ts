import { afterEach, describe, expect, it, vi } from 'vitest';
import { faultOf, getReport, sendCommand, timeLimits } from '../src/api';
import type { Status } from '../src/documents';

const answerWith = (status: number, body: string | null, headers: Record<string, string> = {}) => {
  const fake = vi.fn(
    async (_path: string, _init: RequestInit) => new Response(body, { status, headers }),
  );
  vi.stubGlobal('fetch', fake);
  return fake;
};
const getStatus = () => getReport<Status>('/api/status', 'GC_state');

afterEach(() => {
  vi.unstubAllGlobals();
});

describe('time limits', () => {
  it('leave the gateway time to say that the instrument does not answer', () => {
    // It takes 20 s for a report, 25 s for a status that another request is waiting for, and 120 s for a
    // command, which may have waited 29 s to begin.
    expect(timeLimits.report).toBeGreaterThan(20_000);
    expect(timeLimits.status).toBeGreaterThan(25_000);
    expect(timeLimits.command).toBeGreaterThan(149_000);
  });
});

describe('reports', () => {
  it('are documents, with their age if they were shared', async () => {
    answerWith(200, '{"GC_state": "Ready"}', { Age: '2' });
    expect(await getStatus()).toEqual({ ok: true, value: { GC_state: 'Ready' }, ageSeconds: 2 });
  });

  it('carry the number of interrupted commands', async () => {
    answerWith(200, '{"GC_state": "Ready"}', { 'X-GC-Interrupted': '2' });
    expect((await getStatus()).interrupted).toBe(2);
    answerWith(503, '{}', { 'X-GC-Interrupted': '1' });
    expect((await getStatus()).interrupted).toBe(1);
    answerWith(200, '[]', { 'X-GC-Interrupted': '3' });
    expect((await getStatus()).interrupted).toBe(3);
  });

  it.each([
    [undefined, 0],
    ['0', 0],
    ['0.5', 0.5],
    ['-3', 0],
    ['long ago', 0],
  ])('have an age by the Age header: %s is %d s', async (age, seconds) => {
    answerWith(200, '{"GC_state": "Ready"}', age === undefined ? {} : { Age: age });
    const answer = await getStatus();
    expect(answer.ok && answer.ageSeconds).toBe(seconds);
  });

  it('come from the gateway itself, never from the browser cache', async () => {
    const fetched = answerWith(200, '{"GC_state": "Ready"}');
    await getStatus();
    const [path, init] = fetched.mock.calls[0]!;
    expect(path).toBe('/api/status');
    expect(init).toMatchObject({ method: 'GET', cache: 'no-store', credentials: 'same-origin' });
  });

  it.each([
    new DOMException('Gone', 'AbortError'),
    Object.assign(new Error('Late'), { name: 'TimeoutError' }),
  ])('that fail for other reasons than time are lost: %s', async (error) => {
    vi.stubGlobal('fetch', async () => {
      throw error;
    });
    const answer = await getStatus();
    expect(!answer.ok && answer.fault.detail).toBe('The connection failed');
  });

  it.each(['<html>', '{"other": 1}', '[]', 'null', ''])('do not accept %j', async (body) => {
    answerWith(200, body);
    expect(await getStatus()).toEqual({
      ok: false,
      fault: { status: 200, text: 'The answer is not what was requested.', detail: '/api/status' },
    });
  });

  it('say that the instrument is not reachable', async () => {
    answerWith(503, '{"ErrorCode": 10053, "Msg": "Unable to connect to GC!"}');
    expect(await getStatus()).toEqual({
      ok: false,
      fault: {
        status: 503,
        code: 10053,
        text: 'The instrument is not reachable.',
        detail: 'Unable to connect to GC! (error 10053)',
      },
    });
  });

  it('say that there is no answer', async () => {
    vi.stubGlobal('fetch', async () => {
      throw new TypeError('Failed to fetch');
    });
    expect(await getStatus()).toEqual({
      ok: false,
      fault: {
        status: 0,
        text: 'The web server does not answer.',
        detail: 'The connection failed',
      },
    });
  });

  it('are aborted after their time limit', async () => {
    vi.stubGlobal('fetch', (_: string, { signal }: RequestInit) => {
      return new Promise((_done, fail) =>
        signal!.addEventListener('abort', () => fail(signal!.reason)),
      );
    });
    expect(await getReport<Status>('/api/status', 'GC_state', 20)).toEqual({
      ok: false,
      fault: {
        status: 0,
        text: 'The web server does not answer.',
        detail: 'No answer within 0.02 s',
      },
    });
  });
});

describe('a command without an outcome', () => {
  it('does not count as refused', () => {
    const detail = 'No answer from the instrument: the connection was lost.';
    expect(faultOf(504, { title: 'Gateway Timeout', detail, outcome: 'unknown' })).toEqual({
      status: 504,
      text: 'The outcome of the command is not known.',
      isUnknown: true,
      detail,
    });
    const message = 'Refused: Unable to set new level for chan[1] peak[6]';
    expect(faultOf(504, { detail, message, outcome: 'unknown' }).detail).toBe(
      `${detail} ${message}`,
    );
  });
});

describe('commands', () => {
  it('have the headers that the gateway requires', async () => {
    const fetched = answerWith(200, '{"ErrorCode": 0, "Msg": "Accepted"}');
    await sendCommand('POST', 'run', '{"type":"single","stream":2}');
    const [path, init] = fetched.mock.calls[0]!;
    expect(path).toBe('/api/command/run');
    expect(init.method).toBe('POST');
    expect(init.body).toBe('{"type":"single","stream":2}');
    expect(init.headers).toEqual({ 'Content-Type': 'application/json', 'X-GC-Request': '1' });
  });

  it('succeed by HTTP status, whatever the text', async () => {
    answerWith(200, '{"ErrorCode": 0, "Msg": "Refused"}');
    expect(await sendCommand('PUT', 'solution', '{"solution":1}')).toEqual({
      ok: true,
      value: { ErrorCode: 0, Msg: 'Refused' },
      ageSeconds: 0,
    });
    answerWith(204, null);
    expect(await sendCommand('PUT', 'stream', '{"stream":1}')).toEqual({
      ok: true,
      value: null,
      ageSeconds: 0,
    });
    for (const status of [201, 203, 205, 199 + 100]) {
      answerWith(status, null);
      expect((await sendCommand('PUT', 'stream', '{"stream":1}')).ok).toBe(false);
    }
    answerWith(409, '{"ErrorCode": 207, "Msg": "Accepted"}');
    expect((await sendCommand('PUT', 'solution', '{"solution":1}')).ok).toBe(false);
  });

  it('without an answer may have been carried out', async () => {
    vi.stubGlobal('fetch', async () => {
      throw new TypeError('Failed to fetch');
    });
    const answer = await sendCommand('POST', 'abort', '{"when":"now"}');
    expect(!answer.ok && answer.fault.text).toBe(
      'No answer came. The command may have been carried out: check the state.',
    );
  });
});

describe('faults', () => {
  it.each([
    [409, { ErrorCode: 207, Msg: 'Refused' }, 'The instrument refused.', 'Refused (error 207)'],
    [409, { ErrorCode: 207, Msg: 'Accepted' }, 'The instrument refused.', 'error 207'],
    [
      409,
      { title: 'Refused', detail: 'the stream was not switched', 'status-of-instrument': 216 },
      'The instrument refused.',
      'Refused: the stream was not switched: status of the instrument: 216',
    ],
    [
      403,
      { title: 'Not allowed', detail: 'The password of the operator is not set up.' },
      'You are not allowed to do this. Nothing was done.',
      'Not allowed: The password of the operator is not set up.',
    ],
    [
      409,
      { title: 'Another command is running', detail: 'Try again.' },
      'The gateway rejected the command.',
      'Another command is running: Try again.',
    ],
    [
      429,
      { title: 'Too Many Requests', status: 429, detail: 'Wait a few seconds and try again.' },
      'Too many requests, or too many wrong passwords. Nothing was done.',
      'Too Many Requests: Wait a few seconds and try again.',
    ],
    [401, undefined, 'You are not signed in. Nothing was done.', ''],
    [404, null, 'The web server does not know this address. Is the gateway set up?', ''],
    [413, {}, 'The file is too large.', ''],
    [415, [], 'The gateway does not accept this kind of file.', ''],
    [422, 'no', 'The gateway does not accept these values.', ''],
    [
      502,
      { ErrorCode: 28 },
      'The instrument or its tool did not give a usable answer.',
      'error 28',
    ],
    [503, { ErrorCode: true }, 'The instrument is not reachable.', ''],
    [504, 7, 'The instrument did not answer in time.', ''],
    [418, 'tea', 'The web server answered with HTTP status 418.', ''],
  ])('HTTP %d with %j', (status, body, text, detail) => {
    const { code: _, ...fault } = faultOf(status, body);
    expect(fault).toEqual({ status, text, detail });
  });
});

describe('the number of an error', () => {
  it.each([
    [{ ErrorCode: 207, Msg: 'Refused' }, 207],
    [{ ErrorCode: 0, Msg: 'Format Invalid' }, 0],
    [{ title: 'Refused', 'status-of-instrument': 216 }, 216],
    [{ title: 'Too late' }, undefined],
    [undefined, undefined],
  ])('of %j is %j', (body, code) => {
    expect(faultOf(409, body).code).toBe(code);
  });
});

describe('an answer that does not come from the gateway', () => {
  it.each([
    [500, undefined, true],
    [502, undefined, true],
    [500, { title: 'No log' }, undefined],
    [404, undefined, undefined],
  ])('HTTP %d with %j: unknown %j', (status, body, isUnknown) => {
    expect(faultOf(status, body).isUnknown).toBe(isUnknown);
  });
});

describe('a command', () => {
  it.each([
    ['J%C3%BCrgen', 'Jürgen'],
    ['100%', '100%'],
  ])('knows the user name from its answer: %s', async (header, user) => {
    const response = new Response('{}', { status: 200, headers: { 'X-GC-User': header } });
    vi.stubGlobal('fetch', async () => response);
    expect((await sendCommand('POST', 'login', '{}')).user).toBe(user);
  });

  it('has an unknown outcome without an answer, but not if it was refused', async () => {
    vi.stubGlobal('fetch', async () => {
      throw new TypeError('Failed to fetch');
    });
    const lost = await sendCommand('POST', 'run', '{}');
    expect(!lost.ok && lost.fault.isUnknown).toBe(true);
    vi.stubGlobal('fetch', async () => new Response('{}', { status: 409 }));
    const refused = await sendCommand('POST', 'run', '{}');
    expect(!refused.ok && refused.fault.isUnknown).toBeUndefined();
  });
});
