// @vitest-environment happy-dom
import { act } from 'preact/test-utils';
import { afterEach, beforeEach, describe, expect, it, vi } from 'vitest';
import { AlarmSign, Header } from '../src/components/Header';
import { Versions } from '../src/components/Session';
import { say } from '../src/notices';
import {
  interruptions,
  isSignedIn,
  notices,
  now,
  serverVersion,
  statusFault,
  statusTime,
} from '../src/store';
import { statusWith } from './documents';
import { find, press, settle, show, textOf, textsOf } from './dom';
import type { Gateway } from './gateway';
import { arrange, clear, said, setAge, setStatus } from './world';

let gateway: Gateway;
const running = statusWith({
  GC_state: 'Running 5s',
  Auto_state: 'Running - Automation',
  Run_time: 5,
});
const at = (name: string): string => textOf(find(`[data-testid=${name}]`));
const has = (name: string): boolean => document.querySelector(`[data-testid=${name}]`) !== null;

beforeEach(async () => {
  gateway = await arrange();
});
afterEach(clear);

describe('the header', () => {
  it('shows the instrument and its state', async () => {
    await show(<Header />);
    expect(at('application')).toBe('Natural gas C6+ (simulated)');
    expect(at('state')).toBe('Ready');
    expect(at('automation')).toBe('Automation Idle');
    expect(find('[data-testid=state]').className).toBe('state live');
    expect(textsOf('[role=alert] p')).toEqual([]);
    expect(at('notice')).toBe('');
  });

  it('says when it is simulated', async () => {
    await show(<Header />);
    expect(textsOf('.simulated')).toEqual(['Simulated: this is not a real instrument']);
    await setStatus(statusWith({ Application: 'Natural gas' }));
    expect(textsOf('.simulated')).toEqual([]);
  });

  it('says when an instrument has no name, and has a general name before the first answer', async () => {
    await setStatus(statusWith({ Application: '' }));
    await show(<Header />);
    expect(at('application')).toBe('Instrument without a name');
    await setStatus(undefined);
    expect(at('application')).toBe('Gas chromatograph');
    expect(has('state')).toBe(false);
    expect(has('automation')).toBe(false);
    expect(has('alarm-sign')).toBe(false);
    expect(textsOf('.simulated')).toEqual([]);
  });

  it('marks an error', async () => {
    await setStatus(statusWith({ GC_state: 'Recoverable Error' }));
    await show(<Header />);
    expect(find('[data-testid=state]').className).toBe('state live error');
  });

  it('shows the age of the data, and marks old data', async () => {
    await show(<Header />);
    expect(at('age')).toBe('data 0 s old');
    expect(find('header').className).toBe('');
    expect(find('[data-testid=age]').className).toBe('age');
    await setAge(75);
    expect(at('age')).toBe('data 1 min 15 s old');
    expect(find('header').className).toBe('stale');
    expect(find('[data-testid=age]').className).toBe('age stale-mark');
    await act(() => {
      statusTime.value = 0;
    });
    expect(at('age')).toBe('no data yet');
  });

  it('announces changes of the state to a screen reader, but not every second', async () => {
    await show(<Header />);
    const announced = () => textOf(find('p[role=status]'));
    expect(announced()).toBe('State Ready');
    await setStatus(running);
    expect(announced()).toBe('State Running');
    await setStatus(statusWith({ GC_state: 'Error', Alarm_overall: true }));
    expect(announced()).toBe('State Error, alarm');
    await setStatus(undefined);
    expect(announced()).toBe('');
  });

  it('has an alarm sign, which leads to the alarms', async () => {
    await show(<AlarmSign />);
    const sign = () => find<HTMLAnchorElement>('[data-testid=alarm-sign]');
    expect(textOf(sign())).toBe('No alarm');
    expect(sign().className).toBe('sign');
    await setStatus(statusWith({ Alarm_overall: true }));
    expect(textOf(sign())).toBe('Alarm');
    expect(sign().className).toBe('sign alarm');
    expect(sign().getAttribute('href')).toBe('#/alarms');
    await setStatus(undefined);
    expect(textOf(sign())).toBe('No alarm');
  });

  it('describes a fault of the status, and says that the last values are shown', async () => {
    await show(<Header />);
    const lost = { status: 503, text: 'The instrument is not reachable.', detail: 'No way' };
    await act(() => {
      statusFault.value = lost;
    });
    expect(textsOf('[role=alert] p')).toEqual([
      'The instrument is not reachable. No way. The last values are shown.',
    ]);
    await setStatus(undefined);
    expect(textsOf('[role=alert] p')).toEqual([
      'The instrument is not reachable. No way. If it has never been: its address is var.instrument in /etc/gc-web/lighttpd.conf.',
    ]);
    await act(() => {
      statusFault.value = {
        status: 504,
        text: 'The instrument did not answer in time.',
        detail: '',
      };
    });
    expect(textsOf('[role=alert] p')).toEqual(['The instrument did not answer in time.']);
  });
});

describe('a notice about a command', () => {
  it('has its time, and can be dismissed when nothing is awaited', async () => {
    vi.useFakeTimers({ now: new Date(2026, 2, 5, 14, 32, 7) });
    await setAge(0);
    await show(<Header />);
    await act(() => void say('reset', { kind: 'waiting', text: 'Reset: being sent.' }));
    expect(at('notice')).toBe('14:32:07 Reset: being sent.');
    expect(find('[data-testid=notice]').getAttribute('role')).toBe('status');
    // Of several lines, a screen reader reads only the new one.
    expect(find('[data-testid=notice]').getAttribute('aria-atomic')).toBe('false');
    expect(find('[data-testid=notice] p').className).toBe('message waiting');
    vi.setSystemTime(new Date(2026, 2, 5, 14, 32, 9));
    await act(() => void say('reset', { kind: 'bad', text: 'Reset: refused.' }));
    expect(at('notice')).toBe('14:32:09 Reset: refused.Dismiss');
    expect(find('[data-testid=notice] p').className).toBe('message bad');
    await act(() => {
      now.value = new Date(2026, 2, 6, 8, 0, 0).getTime();
    });
    expect(at('notice')).toBe('14:32:09 on 5 March Reset: refused.Dismiss');
    await press('Dismiss');
    expect(notices.value).toEqual([]);
    expect(at('notice')).toBe('');
    vi.useRealTimers();
  });
});

describe('interrupted commands', () => {
  const begun = (id: string, ...command: string[]) => ({
    time: 'yesterday',
    id,
    event: 'begun' as const,
    user: 'anna',
    address: '192.0.2.9',
    command,
  });
  const at = (): string[] => textsOf('[data-testid=interruptions] p .text');

  it('are shown until they are acknowledged', async () => {
    await show(<Header />);
    expect(at()).toEqual([]);
    await act(() => {
      interruptions.value = [begun('one', '-P'), begun('two', '-V', '3')];
    });
    expect(at().map((text) => text.replace(/, was.*/, ''))).toEqual([
      'Reset of all alarms, given by anna on yesterday',
      'Switch to stream 3, given by anna on yesterday',
    ]);
    expect(find('[data-testid=interruptions]').getAttribute('role')).toBe('alert');
    expect(textsOf('[data-testid=interruptions] button')).toEqual([
      'I have seen it',
      'I have seen it',
    ]);
    gateway.answer('/api/unfinished', { going_on: [], interrupted: [begun('one', '-P')] });
    await act(async () => {
      document.querySelectorAll<HTMLElement>('[data-testid=interruptions] button')[1]!.click();
    });
    await settle();
    expect(gateway.of('/api/command/seen').map(({ body }) => body)).toEqual([{ id: 'two' }]);
    expect(at()).toHaveLength(1);
  });
});

describe('the user', () => {
  it('can sign in, and then sign out', async () => {
    gateway.answer('/api/command/login', null, 204, { 'X-GC-User': 'J%C3%BCrgen' });
    await show(<Header />);
    await press('Sign in');
    await settle();
    expect(gateway.of('/api/command/login')).toHaveLength(1);
    expect(isSignedIn.value).toBe(true);
    expect(textsOf('button')).not.toContain('Sign in');
    expect(at('session')).toBe('Signed in as Jürgen Sign out');
    gateway.answer('/api/command/logout', {}, 401);
    await press('Sign out');
    await settle();
    expect(gateway.of('/api/command/logout').map(({ method, body }) => [method, body])).toEqual([
      ['POST', {}],
    ]);
    expect(textsOf('button')).toContain('Sign in');
    expect(said()).toEqual({
      kind: 'good',
      text: 'Signed out. The next command asks who you are.',
    });
  });

  it('has no name if the web server gives none', async () => {
    await show(<Header />);
    await act(() => {
      isSignedIn.value = true;
    });
    expect(at('session')).toBe('Signed in Sign out');
  });
});

describe('the versions', () => {
  const versions = (): string => at('versions');

  it('are those of the pages and of the web server', async () => {
    await show(<Versions />);
    expect(versions()).toMatch(/^Pages \d+\.\d+\.\d+$/);
    const own = versions().slice('Pages '.length);
    await act(() => {
      serverVersion.value = own;
    });
    expect(versions()).toBe(`Pages ${own}, web server ${own}`);
    await act(() => {
      serverVersion.value = '99.0.0';
    });
    expect(versions()).toBe(
      `Pages ${own}, web server 99.0.0. This page is of another version: load it again.`,
    );
    serverVersion.value = undefined;
  });
});
