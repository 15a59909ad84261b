// @vitest-environment happy-dom
import { afterEach, beforeEach, describe, expect, it, vi } from 'vitest';
import { Header } from '../src/components/Header';
import { statusTime } from '../src/store';
import { statusWith } from './documents';
import { button, find, press, reasonOf, settle, show, textOf, textsOf } from './dom';
import type { Gateway } from './gateway';
import { arrange, clear, said, setAge, setHidden, setStatus } from './world';

let gateway: Gateway;
const running = statusWith({
  GC_state: 'Running 5s',
  Auto_state: 'Running - Automation',
  Run_time: 5,
});
const flushing = statusWith({ GC_state: 'Flushing', Auto_state: 'Flushing Stream 0s' });
const aborts = () => gateway.of('/api/command/abort').map(({ method, body }) => [method, body]);
const question = (): string[] => textsOf('dialog .dialog-body p');
const harmless = 'If nothing is running, an abort changes nothing.';
const ends = 'The run ends at once without a result, and the automation with it.';

beforeEach(async () => {
  vi.useFakeTimers({ now: new Date(2026, 2, 5, 14, 32, 7) });
  gateway = await arrange();
});
afterEach(async () => {
  await clear();
  vi.useRealTimers();
});

describe('an abort', () => {
  it('asks first', async () => {
    await setStatus(running);
    await show(<Header />);
    expect(find('[role=group]').getAttribute('aria-label')).toBe('Stop');
    expect(button('Abort now…').className).toBe('danger');
    await press('Abort now…');
    expect(textOf(find('dialog h2'))).toBe('Abort now?');
    expect(question()).toEqual([ends]);
    expect(button('Abort now').className).toBe('danger');
    await press('Cancel');
    expect(document.querySelector('dialog')).toBeNull();
    expect(aborts()).toEqual([]);
  });

  it('is sent, and followed until the instrument has stopped', async () => {
    await setStatus(running);
    await show(<Header />);
    await press('Abort now…');
    await press('Abort now');
    expect(document.querySelector('dialog')).toBeNull();
    expect(said()?.text).toBe('Abort now: being sent.');
    await settle();
    expect(aborts()).toEqual([['POST', { when: 'now' }]]);
    expect(said()).toEqual({ kind: 'waiting', text: 'Abort now: accepted.' });
  });

  it('is possible when nothing seems to be running, and says so', async () => {
    await show(<Header />);
    expect(reasonOf('Abort now…')).toBe('');
    await press('Abort now…');
    expect(question()).toEqual([
      `Nothing seems to be running (state at 14:32:07: Ready). What has begun since then ends at once. ${harmless}`,
    ]);
    await press('Abort now');
    await settle();
    expect(aborts()).toEqual([['POST', { when: 'now' }]]);
  });

  it('is possible when the state is unknown, and says since when', async () => {
    await setStatus(running);
    await setAge(60);
    await show(<Header />);
    await press('Abort now…');
    expect(question()).toEqual([
      `The state of the instrument is not known: no answer since 14:31:07. ${ends} ${harmless}`,
    ]);
    await press('Abort now');
    await settle();
    expect(aborts()).toHaveLength(1);
  });

  it('is possible before the first answer', async () => {
    await setStatus(undefined);
    statusTime.value = 0;
    await show(<Header />);
    await press('Abort now…');
    expect(question()).toEqual([
      `The state of the instrument is not known: it has not answered yet. ${ends} ${harmless}`,
    ]);
    expect(reasonOf('Abort now')).toBe('');
  });

  it('can still be confirmed when the run has ended meanwhile', async () => {
    await setStatus(running);
    await show(<Header />);
    await press('Abort now…');
    await setStatus(statusWith());
    expect(reasonOf('Abort now')).toBe('');
    expect(question()[0]).toMatch(/^Nothing seems to be running/);
  });

  it('can be given again while one is being sent', async () => {
    await setStatus(running);
    await show(<Header />);
    const answer = gateway.hold('/api/command/abort');
    await press('Abort now…');
    expect(question()).toHaveLength(1);
    await press('Abort now');
    await press('Abort now…');
    expect(question()).toEqual([ends, 'A stop is being sent already. Another one does no harm.']);
    await press('Abort now');
    answer({ ErrorCode: 0, Msg: 'Accepted' });
    await settle();
    expect(aborts()).toHaveLength(2);
  });
});

describe('a stop after the run', () => {
  it('is disabled when the automation is known to be idle', async () => {
    await show(<Header />);
    const reason = 'The automation is not under way.';
    expect(reasonOf('Stop after this run')).toBe(reason);
    expect(button('Stop after this run').title).toBe(reason);
    await setAge(60);
    expect(reasonOf('Stop after this run')).toBe('');
  });

  it('does not ask during a run', async () => {
    await setStatus(running);
    await show(<Header />);
    await press('Stop after this run');
    expect(document.querySelector('dialog')).toBeNull();
    expect(said()?.text).toBe('Stop after this run: being sent.');
    await settle();
    expect(aborts()).toEqual([['POST', { when: 'after-run' }]]);
    expect(said()).toEqual({ kind: 'waiting', text: 'Stop after this run: accepted.' });
  });

  it('asks if it would end everything at once', async () => {
    await setStatus(flushing);
    await show(<Header />);
    await press('Stop after this run');
    expect(textOf(find('dialog h2'))).toBe('Stop at once?');
    expect(question()).toEqual([
      'There is no run at present (state: Flushing): everything ends at once, the automation too, without waiting for another run.',
    ]);
    expect(aborts()).toEqual([]);
    await press('Stop');
    await settle();
    expect(aborts()).toEqual([['POST', { when: 'after-run' }]]);
  });

  it('asks if it is unknown whether there is a run', async () => {
    await setStatus(running);
    await setAge(60);
    await show(<Header />);
    await press('Stop after this run');
    expect(question()).toEqual([
      'The state of the instrument is not known: no answer since 14:31:07. A run that is going on is carried to its end; if there is none, the automation ends at once.',
    ]);
    await press('Cancel');
    expect(aborts()).toEqual([]);
  });

  it('cannot be confirmed when the automation has ended meanwhile', async () => {
    await setStatus(flushing);
    await show(<Header />);
    await press('Stop after this run');
    await setStatus(statusWith());
    expect(reasonOf('Stop')).toBe('The automation is not under way.');
    await press('Stop');
    expect(aborts()).toEqual([]);
  });
});

describe('the notice about a stop', () => {
  it.each([
    ['Abort now…', 'Running 5s', 'Idle', /^Abort now: accepted\. Waiting for/],
    ['Abort now…', 'Ready', 'Idle', /^Abort now: the run was aborted at 5 s\.$/],
    [
      'Stop after this run',
      'Running 5s',
      'Idle',
      /^Stop after this run: the automation has ended, and no further run was counted\.$/,
    ],
  ])('%s: state %s, automation %s', async (name, gc, automation, text) => {
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
    expect(said()?.text).toMatch(text);
  });
});
