import { describe, expect, it } from 'vitest';
import { load, statusWith } from './documents';
import {
  actions,
  autoStateOf,
  gcStateOf,
  gcStates,
  isOtherInstrument,
  isRunning,
  isSimulated,
  reasonAgainst,
  withoutNothing,
} from '../src/states';

describe('state texts', () => {
  it.each([
    ['Running 37s', 'Running'],
    ['Running', 'Running'],
    ['Running -3s', 'Running'],
    ['Cleaning 0 min', 'Cleaning'],
    ['Wait Ext Rdy', 'Wait Ext Rdy'],
    ['Recoverable Error', 'Recoverable Error'],
    ['Something new', 'Unknown'],
    ['Not 5s Ready', 'Unknown'],
    ['Running 37', 'Unknown'],
  ])('reads %s as %s', (text, state) => {
    expect(gcStateOf(statusWith({ GC_state: text }))).toBe(state);
  });

  it('include every text of the schema', () => {
    const schema = load<{ properties: { GC_state: { anyOf: [{ enum: string[] }] } } }>(
      'docs/schemas/status.schema.json',
    );
    const texts = schema.properties.GC_state.anyOf[0].enum;
    expect([...texts, 'Cleaning'].sort()).toEqual([...gcStates].sort());
  });

  it.each([
    ['Run Delay 90s', 'Run Delay'],
    ['Flushing Stream', 'Flushing Stream'],
    ['Run Delay 90s and more', 'Run Delay 90s and more'],
    ['Running - Single Run', 'Running - Single Run'],
  ])('reads automation %s as %s', (text, state) => {
    expect(autoStateOf(statusWith({ Auto_state: text }))).toBe(state);
  });

  it.each([
    ['Ready', 'Idle', false],
    ['Running 2s', 'Running - Single Run', true],
    ['Ready', 'Run Delay 12s', true],
    ['Flushing', 'Idle', true],
    ['Running 2s', 'Idle', true],
    ['Stabilizing', 'Idle', false],
  ])('%s with automation %s: running %s', (gc, automation, expected) => {
    expect(isRunning(statusWith({ GC_state: gc, Auto_state: automation }))).toBe(expected);
  });

  it('identify a simulated instrument by its application', () => {
    expect(isSimulated(statusWith())).toBe(true);
    expect(isSimulated(statusWith({ Application: 'Natural gas' }))).toBe(false);
  });
});

describe('the text shown for a state', () => {
  it.each([
    ['Flushing Stream 0s', 'Flushing Stream'],
    ['Cleaning 0 min', 'Cleaning'],
    ['Running -2s', 'Running'],
    ['Run Delay 10s', 'Run Delay 10s'],
    ['Cleaning 30 min', 'Cleaning 30 min'],
    ['Flushing Stream 0s and more', 'Flushing Stream 0s and more'],
    ['Ready', 'Ready'],
  ])('of %s is %s', (text, shown) => {
    expect(withoutNothing(text)).toBe(shown);
  });
});

describe('the actions allowed', () => {
  const allowed = (gc: string, automation: string): string[] =>
    actions.filter(
      (one) => reasonAgainst(one, statusWith({ GC_state: gc, Auto_state: automation })) === '',
    );

  const settings = ['abort-now', 'stream', 'solution', 'alarm-reset', 'send-table'];

  it.each([
    ['Ready', 'Idle', ['start-run', 'start-automation', ...settings]],
    ['Stabilizing', 'Idle', settings],
    ['Not Ready', 'Idle', settings],
    ['Wait Ext Rdy', 'Idle', settings],
    ['Error', 'Idle', ['abort-now', 'stream', 'alarm-reset', 'send-table']],
    ['Recoverable Error', 'Idle', ['abort-now', 'stream', 'alarm-reset', 'send-table']],
    ['Unrecoverable Error', 'Idle', ['abort-now', 'alarm-reset']],
    ['Initializing', 'Idle', ['abort-now', 'alarm-reset']],
    ['Cleaning 3 min', 'Idle', ['abort-now', 'alarm-reset']],
    ['Running 5s', 'Running - Single Run', ['abort-now', 'abort-after-run', 'alarm-reset']],
    ['Flushing', 'Flushing Stream 60s', ['abort-now', 'abort-after-run', 'alarm-reset']],
    ['Ready', 'Run Delay 3s', ['abort-now', 'abort-after-run', 'alarm-reset']],
    ['Unknown', 'Unknown', ['abort-now', 'abort-after-run', 'alarm-reset']],
  ])('%s, automation %s', (gc, automation, expected) => {
    expect(allowed(gc, automation)).toEqual(expected);
  });

  it('have a reason otherwise', () => {
    expect(reasonAgainst('start-run', statusWith({ GC_state: 'Stabilizing' }))).toBe(
      'A run starts only from Ready. The state is: Stabilizing.',
    );
    expect(reasonAgainst('start-automation', statusWith({ GC_state: 'Running 5s' }))).toBe(
      'The automation starts only from Ready. The state is: Running 5s.',
    );
    expect(reasonAgainst('stream', statusWith({ GC_state: 'Cleaning 3 min' }))).toBe(
      'The stream can be switched only while nothing runs. The state is: Cleaning 3 min.',
    );
    expect(reasonAgainst('solution', statusWith({ GC_state: 'Error' }))).toBe(
      'A solution can be loaded only while nothing runs and there is no error. The state is: Error.',
    );
    expect(reasonAgainst('send-table', statusWith({ Auto_state: 'Run Delay 3s' }))).toBe(
      'The instrument accepts tables only while nothing runs. The automation is: Run Delay 3s.',
    );
    expect(reasonAgainst('abort-after-run', statusWith({ GC_state: 'Running 1s' }))).toBe(
      'The automation is not under way.',
    );
  });
});

describe('another instrument', () => {
  it('is recognized by its application and its channels, and by nothing that a run changes', () => {
    const before = statusWith();
    expect(isOtherInstrument(before, statusWith({ Run_time: 3, Curr_stream: 2 }))).toBe(false);
    expect(isOtherInstrument(before, statusWith({ Application: 'Air' }))).toBe(true);
    const { Channel2, ...fewer } = before;
    expect(Channel2).toBeDefined();
    expect(isOtherInstrument(before, fewer)).toBe(true);
    expect(isOtherInstrument(fewer, before)).toBe(true);
  });
});
