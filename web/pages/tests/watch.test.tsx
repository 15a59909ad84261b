// @vitest-environment happy-dom
import { act } from 'preact/test-utils';
import { afterEach, beforeEach, describe, expect, it, vi } from 'vitest';
import { SoundSwitch } from '../src/components/SoundSwitch';
import { now, statusFault, statusTime } from '../src/store';
import { isAudible, isSoundOn, switchSound, watchSound } from '../src/sound';
import { titleBegin, troubles, watchIcon } from '../src/watch';
import { statusWith } from './documents';
import { field, find, show, textsOf, tick } from './dom';
import { arrange, clear, setAge, setStatus } from './world';

const alarm = statusWith({ Alarm_overall: true });
const error = statusWith({ GC_state: 'Error' });

/** The parts of an audio context that a sound needs. */
class Context {
  static state = 'running';
  static tones: number[] = [];
  readonly currentTime = 10;
  readonly destination = {};
  get state(): string {
    return Context.state;
  }
  resume = async (): Promise<void> => undefined;
  createGain = () => ({ gain: { value: 0 }, connect: (where: unknown) => where });
  createOscillator = () => ({
    frequency: { value: 0 },
    connect: (where: unknown) => where,
    start: (time: number) => void Context.tones.push(time),
    stop: () => undefined,
  });
}

beforeEach(async () => {
  await arrange();
  Context.state = 'running';
  Context.tones = [];
  vi.stubGlobal('AudioContext', Context);
});
afterEach(async () => {
  vi.unstubAllGlobals();
  isSoundOn.value = false;
  isAudible.value = false;
  localStorage.clear();
  await clear();
});

describe('trouble', () => {
  it.each([
    [statusWith(), [], ''],
    [alarm, ['alarm'], 'ALARM – '],
    [error, ['error'], 'ERROR – '],
    [{ ...error, Alarm_overall: true }, ['error', 'alarm'], 'ERROR, ALARM – '],
  ])('%#: is shown in the title', async (status, expected, title) => {
    await setStatus(status);
    expect(troubles.value).toEqual(expected);
    expect(titleBegin.value).toBe(title);
    await setAge(60);
    expect(troubles.value).toEqual(['lost']);
    expect(titleBegin.value).toBe('NO ANSWER – ');
  });

  it('includes an instrument that has never answered, but not a page that was just opened', async () => {
    await setStatus(undefined);
    await setAge(60);
    expect(troubles.value).toEqual([]);
    statusFault.value = { status: 503, text: 'The instrument is not reachable.', detail: '' };
    expect(troubles.value).toEqual(['lost']);
  });

  it('is shown in the icon', async () => {
    document.head.innerHTML = '<link rel="icon" href="./icon.svg">';
    const stop = watchIcon();
    const icon = (): string | null => document.head.firstElementChild!.getAttribute('href');
    await setStatus(alarm);
    expect(icon()).toBe('./icon-alarm.svg');
    await setStatus({ ...error, Alarm_overall: true });
    expect(icon()).toBe('./icon-error.svg');
    await setAge(60);
    expect(icon()).toBe('./icon-lost.svg');
    await setAge(0);
    await setStatus(statusWith());
    expect(icon()).toBe('./icon.svg');
    stop();
    document.head.innerHTML = '';
    watchIcon()();
  });
});

describe('the sound', () => {
  let stop: () => void;
  const pass = async (seconds: number): Promise<void> => {
    await act(() => {
      // The latest answer is as recent.
      statusTime.value = now.value + seconds * 1000;
      now.value = statusTime.value;
    });
    await setStatus({ ...alarm });
  };

  beforeEach(() => {
    stop = watchSound();
  });
  afterEach(() => stop());

  it('is off until the user switches it on, which is heard and remembered', async () => {
    await setStatus(alarm);
    expect(Context.tones).toEqual([]);
    await show(<SoundSwitch />);
    const name = 'Sound in this browser on an alarm, an error, or no answer';
    expect(field(name).checked).toBe(false);
    await tick(name, true);
    expect(isSoundOn.value).toBe(true);
    expect(localStorage.getItem('sound')).toBe('on');
    expect(Context.tones).toEqual([10, 10.25, 10.5]);
    expect(textsOf('.reason')).toEqual([]);
    await tick(name, false);
    expect(localStorage.getItem('sound')).toBe('off');
    await setStatus(error);
    expect(Context.tones).toHaveLength(3);
  });

  it('comes with every new trouble, and each minute while it lasts', async () => {
    await switchSound(true);
    Context.tones = [];
    await setStatus(alarm);
    expect(Context.tones).toHaveLength(3);
    await pass(59);
    expect(Context.tones).toHaveLength(3);
    await pass(1);
    expect(Context.tones).toHaveLength(6);
    await setStatus({ ...error, Alarm_overall: true });
    expect(Context.tones).toHaveLength(9);
    await setStatus(statusWith());
    expect(Context.tones).toHaveLength(9);
    await setStatus(alarm);
    expect(Context.tones).toHaveLength(12);
  });

  it('that the browser blocks is allowed by a touch, and the page says so', async () => {
    isSoundOn.value = true;
    await show(<SoundSwitch />);
    expect(textsOf('.reason')).toEqual([
      'The browser is silent until somebody clicks in this page.',
    ]);
    Context.state = 'suspended';
    await act(async () => void window.dispatchEvent(new Event('keydown')));
    expect(isAudible.value).toBe(false);
    Context.state = 'running';
    await act(async () => void window.dispatchEvent(new Event('pointerdown')));
    expect(isAudible.value).toBe(true);
    expect(find('.sound').textContent).not.toContain('silent');
    await setStatus(alarm);
    expect(Context.tones).toHaveLength(3);
  });

  it('does not start audio while it is off', async () => {
    window.dispatchEvent(new Event('pointerdown'));
    await Promise.resolve();
    expect(isAudible.value).toBe(false);
  });

  it('stays on until the page is left in a browser that stores nothing', async () => {
    const refuse = vi.spyOn(localStorage, 'setItem').mockImplementation(() => {
      throw new Error('The quota has been exceeded.');
    });
    await switchSound(true);
    expect(isSoundOn.value).toBe(true);
    refuse.mockRestore();
  });
});

describe('a sound that was switched on', () => {
  it.each([
    ['on', true],
    ['off', false],
    [null, false],
  ])('is remembered: %j', async (kept, expected) => {
    vi.stubGlobal('localStorage', { getItem: () => kept });
    vi.resetModules();
    expect((await import('../src/sound')).isSoundOn.value).toBe(expected);
  });

  it('is off in a browser that stores nothing', async () => {
    vi.stubGlobal('localStorage', undefined);
    vi.resetModules();
    expect((await import('../src/sound')).isSoundOn.value).toBe(false);
  });
});
