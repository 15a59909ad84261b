// @vitest-environment happy-dom
import { act } from 'preact/test-utils';
import { afterEach, beforeEach, describe, expect, it, vi } from 'vitest';
import type { Status } from '../src/documents';
import { sequenceEditor } from '../src/editors';
import { RunPage } from '../src/pages/Run';
import { configuration, notice, returns } from '../src/store';
import { setCell } from '../src/table';
import { statusWith } from './documents';
import {
  choose,
  factsOf,
  field,
  find,
  press,
  reasonOf,
  rowsOf,
  settle,
  show,
  textOf,
  textsOf,
} from './dom';
import type { Gateway } from './gateway';
import { arrange, clear, exampleConfiguration, setAge, setHidden, setStatus } from './world';

let gateway: Gateway;

beforeEach(async () => {
  gateway = await arrange();
});
afterEach(clear);

const optionsOf = (name: string): string[] =>
  [...field(name).querySelectorAll('option')].map(textOf);
const commands = () => gateway.requests.filter(({ path }) => path.startsWith('/api/command/'));
const question = (): string => textOf(find('.dialog-body'));

async function open(changes: Partial<Status> = {}): Promise<void> {
  await setStatus(statusWith(changes));
  await show(<RunPage />);
}

/**
 * Answers the question with yes; returns what was sent, the notice after that, and the notice after
 * this effect on the instrument.
 */
async function confirm(yes: string, effect: Partial<Status>): Promise<unknown[]> {
  setHidden(false);
  const answer = gateway.hold('/api/status');
  await press(yes);
  expect(document.querySelector('dialog')).toBeNull();
  const said = notice.value?.text;
  await settle();
  const [{ method, path, body }] = commands() as [ReturnType<typeof commands>[0]];
  answer(statusWith(effect));
  await settle();
  return [method, path, body, said, notice.value?.text.replace(/\.? \(.*|\.$/, '')];
}

describe('the run page', () => {
  it('marks old values as such', async () => {
    vi.useFakeTimers({ now: new Date(2026, 2, 5, 14, 32, 7) });
    await setAge(0);
    await show(<RunPage />);
    expect(textsOf('#now')).toEqual(['Now']);
    await setAge(60);
    expect(textsOf('#now')).toEqual(['Last values, from 14:31:07']);
    vi.useRealTimers();
  });

  it('no longer says why the sequence could not be read when the instrument is back', async () => {
    await show(<RunPage />);
    gateway.answer('/api/sequence', {}, 503);
    await press('Start automation…');
    await settle();
    expect(textsOf('[role=alert] p')).toEqual(['The instrument is not reachable.']);
    await act(() => {
      returns.value++;
    });
    expect(textsOf('[role=alert] p')).toEqual([]);
  });

  it('waits for the first answer', async () => {
    await setStatus(undefined);
    await show(<RunPage />);
    expect(textOf(document.body)).toBe('Waiting for the first answer of the instrument.');
  });

  it('shows the state of the instrument, and the possible actions', async () => {
    await open({ Curr_stream: 3 });
    expect(textsOf('h2')).toEqual([
      'Now',
      'Start a run',
      'Start the automation',
      'Stream valve',
      'Solution',
    ]);
    expect(factsOf('dl')[1]).toEqual(['Stream', '3']);
    expect(textsOf('button')).toEqual([
      'Start single run…',
      'Start calibration…',
      'Start automation…',
      'Switch',
      'Load…',
    ]);
    expect(textsOf('.act button.primary')).toEqual(['Start single run…', 'Start automation…']);
    expect(textsOf('section p').filter((text) => text.length > 30)).toEqual([
      'Runs the sequence that the instrument has.',
      'No report shows which solution is in use.',
    ]);
    expect(textsOf('[role=alert]')).toEqual(['']);
  });

  it('disables the actions that the state forbids', async () => {
    await open({ GC_state: 'Error' });
    expect(reasonOf('Start single run…')).toMatch(/^A run starts only from Ready/);
    expect(reasonOf('Start calibration…')).toMatch(/^A run starts only from Ready/);
    expect(reasonOf('Start automation…')).toMatch(/^The automation starts only from Ready/);
    expect(reasonOf('Switch')).toBe('');
    expect(reasonOf('Load…')).toMatch(/^A solution can be loaded only/);
  });
});

describe('streams', () => {
  it('are those of the configuration, with the current one selected', async () => {
    await open({ Curr_stream: 3 });
    expect(optionsOf('On stream')).toEqual(['1', '2', '3', '4']);
    expect(field('On stream').value).toBe('3');
    expect(field('Stream').value).toBe('3');
    expect(reasonOf('Switch')).toBe('');
  });

  it.each([
    [{ Stream_max: 99 }, 2, Array.from({ length: 46 }, (_, n) => `${n + 1}`)],
    [{ Stream_max: -3 }, 2, ['2']],
    [{ Stream_max: 2 }, 7, ['7', '1', '2']],
    [{ Stream_configured: false }, 2, ['2']],
  ])('with %j and stream %d', async (changes, stream, options) => {
    configuration.value = { ...exampleConfiguration, ...changes };
    await open({ Curr_stream: stream });
    expect(optionsOf('On stream')).toEqual(options);
    expect(optionsOf('Stream')).toEqual(options);
  });

  it('are only the current one before the configuration is known', async () => {
    configuration.value = undefined;
    await open({ Curr_stream: 2 });
    expect(optionsOf('Stream')).toEqual(['2']);
    expect(reasonOf('Switch')).toBe('The instrument has no stream selector.');
  });

  it('stay selected, whatever the valve does', async () => {
    await open();
    await choose('On stream', '4');
    await setStatus(statusWith({ Curr_stream: 2 }));
    expect(field('On stream').value).toBe('4');
    expect(field('Stream').value).toBe('2');
  });
});

describe('a single run', () => {
  it('is confirmed, and started on the selected stream', async () => {
    await open();
    await choose('On stream', '3');
    await press('Start single run…');
    expect(textOf(find('dialog h2'))).toBe('Start a single run?');
    expect(question()).toBe('One analysis on stream 3, 3 min 00 s.');
    expect(await confirm('Start', { GC_state: 'Running 1s' })).toEqual([
      'POST',
      '/api/command/run',
      { type: 'single', stream: 3 },
      'Single run on stream 3: being sent.',
      'Single run on stream 3: the run has begun',
    ]);
  });

  it('is not started when it is cancelled', async () => {
    await open();
    await press('Start single run…');
    await press('Cancel');
    expect(document.querySelector('dialog')).toBeNull();
    expect(commands()).toEqual([]);
  });

  it('is not started when the state has changed meanwhile', async () => {
    await open();
    await press('Start single run…');
    await setStatus(statusWith({ GC_state: 'Not Ready' }));
    expect(reasonOf('Start')).toBe('A run starts only from Ready. The state is: Not Ready.');
    await setStatus(undefined);
    expect(textsOf('dialog')).toEqual([]);
  });
});

describe('a calibration', () => {
  it('is confirmed, and started on the selected stream', async () => {
    await open({ Curr_stream: 4 });
    await press('Start calibration…');
    expect(textOf(find('dialog h2'))).toBe('Start a calibration?');
    expect(question()).toBe(
      'Two calibration runs at level 1 on stream 4, 3 min 00 s each. The calibration gas must be connected there. The coefficients of all peaks are set anew.',
    );
    expect(await confirm('Start', { Auto_state: 'Running Calibration' })).toEqual([
      'POST',
      '/api/command/run',
      { type: 'calibration', stream: 4 },
      'Calibration on stream 4: being sent.',
      'Calibration on stream 4: the calibration has begun',
    ]);
  });

  it('is not started when it is cancelled', async () => {
    await open();
    await press('Start calibration…');
    await press('Cancel');
    expect(document.querySelector('dialog')).toBeNull();
    expect(commands()).toEqual([]);
  });
});

describe('the automation', () => {
  it('is confirmed with its sequence, and started', async () => {
    await open();
    await press('Start automation…');
    await settle();
    expect(gateway.requests).toEqual([{ method: 'GET', path: '/api/sequence' }]);
    expect(textOf(find('dialog h2'))).toBe('Start the automation?');
    expect(rowsOf('dialog table')).toHaveLength(4);
    expect(await confirm('Start', { Auto_state: 'Flushing Stream 60s' })).toEqual([
      'POST',
      '/api/command/run',
      { type: 'automation' },
      'Automation: being sent.',
      'Automation: the automation has begun',
    ]);
  });

  it('is confirmed with a warning about unsent edits', async () => {
    const words =
      'The sequence has changes here that have not been sent. The automation runs the table that the instrument has:';
    await open();
    await sequenceEditor.load();
    const { value: draft } = sequenceEditor.draft;
    await press('Start automation…');
    await settle();
    expect(textsOf('dialog p')).not.toContain(words);
    await press('Cancel');
    sequenceEditor.draft.value = setCell(draft!, 0, 'Repeat', '77');
    await press('Start automation…');
    await settle();
    expect(textsOf('dialog p')).toContain(words);
    // The dialog shows the table that the instrument has.
    expect(rowsOf('dialog table')[1]).not.toContain('77');
    sequenceEditor.draft.value = draft;
  });

  it('is not started when it is cancelled', async () => {
    await open();
    await press('Start automation…');
    await settle();
    await press('Cancel');
    expect(document.querySelector('dialog')).toBeNull();
    expect(commands()).toEqual([]);
  });

  it('is not started without its sequence', async () => {
    await open();
    gateway.answer('/api/sequence', {}, 503);
    await press('Start automation…');
    await settle();
    expect(textsOf('[role=alert] p')).toEqual(['The instrument is not reachable.']);
    expect(document.querySelector('dialog')).toBeNull();
    gateway.answer('/api/sequence', { total: 0 });
    await press('Start automation…');
    await settle();
    expect(textsOf('[role=alert] p')).toEqual([
      'The answer is not what was requested. /api/sequence.',
    ]);
    gateway.answer('/api/sequence', { Table_repeat: 1, total: 0 });
    await press('Start automation…');
    await settle();
    expect(textsOf('[role=alert] p')).toEqual([]);
    expect(textsOf('dialog')).toHaveLength(1);
  });
});

describe('the valve and the solution', () => {
  it('switches the stream without a question', async () => {
    await open();
    await choose('Stream', '4');
    expect(await confirm('Switch', { Curr_stream: 4 })).toEqual([
      'PUT',
      '/api/command/stream',
      { stream: 4 },
      'Stream 4: being sent.',
      'Stream 4: the current stream is 4',
    ]);
  });

  it('offers every slot, and loads the solution after a question', async () => {
    await open();
    expect(optionsOf('Slot')).toEqual(['0', '1', '2', '3', '4', '5', '6', '7', '8', '9', '10']);
    expect(field('Slot').value).toBe('0');
    await choose('Slot', '5');
    await press('Load…');
    expect(textOf(find('dialog h2'))).toBe('Load solution 5?');
    expect(question()).toBe('The solution of slot 5 replaces the one in use.');
    expect(await confirm('Load', { GC_state: 'Not Ready' })).toEqual([
      'PUT',
      '/api/command/solution',
      { solution: 5 },
      'Solution 5: being sent.',
      'Solution 5: accepted. No report tells whether it is in use already',
    ]);
  });

  it('does not load it when it is cancelled', async () => {
    await open();
    await press('Load…');
    await press('Cancel');
    expect(document.querySelector('dialog')).toBeNull();
    expect(commands()).toEqual([]);
  });

  it.each([
    ['Start single run…', 'Start', 'start-run'],
    ['Start calibration…', 'Start', 'start-run'],
    ['Start automation…', 'Start', 'start-automation'],
    ['Load…', 'Load', 'solution'],
  ])('%s cannot be confirmed while something is running', async (ask, yes) => {
    await open();
    await press(ask);
    await settle();
    await act(async () => undefined);
    await setStatus(statusWith({ Auto_state: 'Run Delay 3s' }));
    const reason = reasonOf(yes);
    expect(reason).toBe(reasonOf(ask));
    expect(reason).toMatch(/The automation is: Run Delay 3s\.$/);
  });
});
