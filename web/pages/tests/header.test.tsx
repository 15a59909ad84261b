// @vitest-environment happy-dom
import { act } from 'preact/test-utils';
import { afterEach, beforeEach, describe, expect, it } from 'vitest';
import { AlarmSign, Header } from '../src/components/Header';
import { interruptions, isSignedIn, notice, status, statusFault, statusTime } from '../src/store';
import { statusWith } from './documents';
import { button, find, press, reasonOf, settle, show, textOf, textsOf } from './dom';
import type { Gateway } from './gateway';
import { arrange, clear, setAge, setHidden, setStatus } from './world';

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

describe('the top', () => {
  it('says which instrument it is and what it does', async () => {
    await show(<Header />);
    expect(at('application')).toBe('Natural gas C6+ (simulated)');
    expect(at('state')).toBe('Ready');
    expect(at('automation')).toBe('Automation Idle');
    expect(find('[data-testid=state]').className).toBe('state live');
    expect(textsOf('[role=alert] p')).toEqual([]);
    expect(at('notice')).toBe('');
  });

  it('says so when it is simulated', async () => {
    await show(<Header />);
    expect(textsOf('.simulated')).toEqual(['Simulated: this is not a real instrument']);
    await setStatus(statusWith({ Application: 'Natural gas' }));
    expect(textsOf('.simulated')).toEqual([]);
  });

  it('calls an instrument without a name so, and none by what it will be', async () => {
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

  it('says how old that is, and marks what is too old', async () => {
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

  it('tells a screen reader of a change of the state, but not of each second', async () => {
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

  it('has a sign for an alarm, which leads to the alarms', async () => {
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

  it('says what is wrong with the status, and that the last values are shown', async () => {
    await show(<Header />);
    const lost = { status: 503, text: 'The instrument is not reachable.', detail: 'No way' };
    await act(() => {
      statusFault.value = lost;
    });
    expect(textsOf('[role=alert] p')).toEqual([
      'The instrument is not reachable. No way. The last values are shown.',
    ]);
    await setStatus(undefined);
    expect(textsOf('[role=alert] p')).toEqual(['The instrument is not reachable. No way.']);
  });
});

describe('the notice', () => {
  it('can be dismissed when nothing is waited for', async () => {
    await show(<Header />);
    await act(() => {
      notice.value = { kind: 'waiting', text: 'Reset: being sent.' };
    });
    expect(at('notice')).toBe('Reset: being sent.');
    expect(find('[data-testid=notice]').getAttribute('role')).toBe('status');
    expect(find('[data-testid=notice] p').className).toBe('message waiting');
    await act(() => {
      notice.value = { kind: 'bad', text: 'Reset: refused.' };
    });
    expect(at('notice')).toBe('Reset: refused.Dismiss');
    expect(find('[data-testid=notice] p').className).toBe('message bad');
    await press('Dismiss');
    expect(notice.value).toBeUndefined();
    expect(at('notice')).toBe('');
  });
});

describe('interrupted commands', () => {
  const begun = (id: string, ...command: string[]) => ({
    time: 'yesterday',
    id,
    user: 'anna',
    command,
  });
  const at = (): string[] => textsOf('[data-testid=interruptions] p .text');

  it('are told until somebody has seen them', async () => {
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

describe('signing in', () => {
  it('is offered until it is done', async () => {
    gateway.answer('/api/command/login', null, 204);
    await show(<Header />);
    await press('Sign in');
    await settle();
    expect(gateway.requests).toEqual([{ method: 'POST', path: '/api/command/login', body: {} }]);
    expect(isSignedIn.value).toBe(true);
    expect(textsOf('button')).not.toContain('Sign in');
  });
});

describe('stopping', () => {
  const aborts = () => gateway.of('/api/command/abort').map(({ method, body }) => [method, body]);

  it('has nothing to stop in an idle instrument', async () => {
    await show(<Header />);
    expect(reasonOf('Abort now…')).toBe('Nothing is running.');
    expect(button('Abort now…').title).toBe('Nothing is running.');
    expect(reasonOf('Stop after this run')).toBe('The automation is not under way.');
    expect(button('Stop after this run').title).toBe('The automation is not under way.');
    expect(find('[role=group]').getAttribute('aria-label')).toBe('Stop');
    await press('Abort now…');
    expect(document.querySelector('dialog')).toBeNull();
  });

  it('asks before it aborts', async () => {
    await setStatus(running);
    await show(<Header />);
    expect(button('Abort now…').className).toBe('danger');
    await press('Abort now…');
    expect(textOf(find('dialog h2'))).toBe('Abort now?');
    expect(textOf(find('dialog p'))).toBe(
      'The run ends at once without a result, and the automation with it.',
    );
    expect(button('Abort now').className).toBe('danger');
    await press('Cancel');
    expect(document.querySelector('dialog')).toBeNull();
    expect(aborts()).toEqual([]);
  });

  it('aborts, and waits until the instrument has stopped', async () => {
    await setStatus(running);
    await show(<Header />);
    await press('Abort now…');
    await press('Abort now');
    expect(document.querySelector('dialog')).toBeNull();
    expect(notice.value?.text).toBe('Abort now: being sent.');
    await settle();
    expect(aborts()).toEqual([['POST', { when: 'now' }]]);
    expect(notice.value).toEqual({ kind: 'waiting', text: 'Abort now: accepted.' });
  });

  it('stops after the run without asking', async () => {
    await setStatus(running);
    await show(<Header />);
    await press('Stop after this run');
    expect(document.querySelector('dialog')).toBeNull();
    expect(notice.value?.text).toBe('Stop after this run: being sent.');
    await settle();
    expect(aborts()).toEqual([['POST', { when: 'after-run' }]]);
    expect(notice.value).toEqual({ kind: 'waiting', text: 'Stop after this run: accepted.' });
  });

  it.each([
    ['Abort now…', 'Running 5s', 'Idle', /^Abort now: accepted\. Waiting for/],
    ['Abort now…', 'Ready', 'Idle', /^Abort now: the instrument has stopped/],
    ['Stop after this run', 'Running 5s', 'Idle', /^Stop after this run: the automation has ended/],
  ])('%s is over when the state is %s, automation %s', async (name, gc, automation, text) => {
    await setStatus(running);
    await show(<Header />);
    setHidden(false);
    const answer = gateway.hold('/api/status');
    await press(name);
    if (name === 'Abort now…') {
      await press('Abort now');
    }
    await settle();
    answer(statusWith({ GC_state: gc, Auto_state: automation }));
    await settle();
    expect(notice.value?.text).toMatch(text);
  });

  it('cannot be confirmed when nothing runs any more', async () => {
    await setStatus(running);
    await show(<Header />);
    await press('Abort now…');
    await setStatus(statusWith());
    expect(reasonOf('Abort now')).toBe('Nothing is running.');
    await press('Abort now');
    expect(aborts()).toEqual([]);
    expect(status.value?.GC_state).toBe('Ready');
  });
});
