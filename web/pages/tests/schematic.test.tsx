// @vitest-environment happy-dom
import { act } from 'preact/test-utils';
import { afterEach, beforeEach, describe, expect, it } from 'vitest';
import { Schematic } from '../src/components/Schematic';
import type { Channel, Configuration, Status } from '../src/documents';
import { schematicOf, type Part, type Schematic as Model } from '../src/schematic';
import { configuration } from '../src/store';
import { statusWith } from './documents';
import { find, show, textOf, textsOf } from './dom';
import { arrange, clear, exampleConfiguration } from './world';

const none = { Setpoint: '-', Actual: '-' } as const;
const channelWith = (changes: Partial<Channel>): Channel => ({
  ...statusWith().Channel1!,
  ...changes,
});
const configurationWith = (changes: Partial<Configuration>): Configuration => ({
  ...exampleConfiguration,
  ...changes,
});

const model = (
  changes: Partial<Status> = {},
  known: Configuration | undefined = undefined,
): Model => schematicOf(statusWith(changes), known ?? exampleConfiguration);
/** The parts as a user reads them. */
const textsOfPart = ({ name, readings }: Part): string =>
  [name, ...readings.flatMap(({ value, state, level }) => [value, state, level])]
    .filter(Boolean)
    .join(' ');

describe('the gas flow', () => {
  it('leads from the valve to the detectors', () => {
    const { inlet, branches, remarks } = model();
    expect(inlet.map(textsOfPart)).toEqual([
      'Stream valve Stream 1 of 4 good',
      'Sample line 64.97 at setpoint good',
    ]);
    expect(branches.map(({ title, note }) => [title, note])).toEqual([
      ['Channel 1', 'Porous polymer, 10 m, Helium'],
      ['Channel 2', 'Dimethylpolysiloxane, 8 m, Helium'],
    ]);
    expect(branches[0]!.parts.map(textsOfPart)).toEqual([
      'Injector 69.97 at setpoint good',
      'Column 59.98 at setpoint good 180.1 at setpoint good',
      'Detector on good calibrated good',
    ]);
    expect(remarks).toEqual(['Channels 3, 4: not installed.']);
  });

  it.each([
    [{ Curr_stream: 5 }, {}, 'Stream 5 the selector has 4 off'],
    [{ Curr_stream: 4 }, {}, 'Stream 4 of 4 good'],
    [{ Curr_stream: 0 }, {}, 'Stream 0 of 4 good'],
    [{ Curr_stream: -1 }, {}, 'Stream -1 the selector has 4 off'],
    [{ Curr_stream: 9 }, { Stream_configured: false }, 'Stream 9 no stream selector none'],
  ])('shows the position of the valve: %j, %j', (status, known, text) => {
    const [valve] = model(status, configurationWith(known)).inlet;
    expect(textsOfPart(valve!)).toBe(`Stream valve ${text}`);
  });

  it('says what is unknown without the configuration', () => {
    const { inlet, branches, remarks } = schematicOf(statusWith(), undefined);
    expect(textsOfPart(inlet[0]!)).toBe('Stream valve Stream 1 streams not known yet none');
    expect(branches.map(({ note, isDisabled }) => [note, isDisabled])).toEqual([
      ['', false],
      ['', false],
    ]);
    expect(remarks[1]).toMatch(/^The configuration is not known yet/);
  });

  it.each([
    [{ Setpoint: 65, Actual: 66.01 }, '66.01 1.01 above off'],
    [{ Setpoint: 65, Actual: 66 }, '66.00 at setpoint good'],
    [{ Setpoint: '-', Actual: 64 }, '64.00 no setpoint none'],
    [{ Setpoint: 65, Actual: '-' }, 'not available none'],
    [none, 'not heated none'],
  ] as const)('shows a sample line %j', (Sample_line_temp, text) => {
    expect(textsOfPart(model({ Sample_line_temp }).inlet[1]!)).toBe(`Sample line ${text}`);
  });

  it('reports what is not as it should be, and marks only that', () => {
    const Channel1 = channelWith({
      Injector_temp: { Setpoint: 70, Actual: 60 },
      Column_press: none,
      TCD: { Auto_zero: 0, State: 'Off', Calibrated: 'X' },
    });
    expect(model({ Channel1 }).branches[0]!.parts.map(textsOfPart)).toEqual([
      'Injector 60.00 10.00 below off',
      'Column 59.98 at setpoint good not available none',
      'Detector off off not calibrated off',
    ]);
  });

  it('marks nothing in a disabled channel', () => {
    const Channel1 = channelWith({ TCD: { Auto_zero: 0, State: 'Off', Calibrated: 'X' } });
    const disabled = { ...exampleConfiguration.Channel1, Disabled: true, Gas: 'Unknown' as const };
    const [branch] = model({ Channel1 }, configurationWith({ Channel1: disabled })).branches;
    expect(branch).toMatchObject({ isDisabled: true, note: 'Porous polymer, 10 m, disabled' });
    expect(branch!.parts.flatMap(({ readings }) => readings.map(({ level }) => level))).toEqual(
      Array(5).fill('none'),
    );
    expect(textsOfPart(branch!.parts[2]!)).toBe('Detector off none not calibrated none');
  });

  it('says which channels are missing from the status', () => {
    const status = statusWith();
    delete status.Channel2;
    expect(schematicOf(status, exampleConfiguration).remarks).toEqual([
      'Channels 3, 4: not installed.',
      'Channel 2: installed, but the status tells nothing of it.',
    ]);
    const { Channel1: Channel3, Channel2: Channel4 } = statusWith();
    const full = statusWith({ Channel3, Channel4 } as Partial<Status>);
    expect(schematicOf(full, exampleConfiguration).remarks).toEqual([]);
    expect(schematicOf(full, exampleConfiguration).branches).toHaveLength(4);
  });
});

describe('the drawing', () => {
  beforeEach(async () => void (await arrange()));
  afterEach(clear);

  it('is a list for screen readers', async () => {
    await show(<Schematic status={statusWith()} />);
    expect(textsOf('ol[aria-label="All channels"] > li')).toEqual([
      'Stream valveStream 1 of 4',
      'Sample line64.97 at setpoint',
    ]);
    expect(textsOf('ul[aria-label="Channels"] > li > h3')).toEqual([
      'Channel 1 Porous polymer, 10 m, Helium',
      'Channel 2 Dimethylpolysiloxane, 8 m, Helium',
    ]);
    expect(textsOf('ul[aria-label="Channels"] > li:first-child li')).toEqual([
      'Injector69.97 at setpoint',
      'Column59.98 at setpointPressure 180.1 at setpoint',
      'Detectoroncalibrated',
    ]);
    expect(textsOf('section > p')).toEqual(['Channels 3, 4: not installed.']);
    expect(document.querySelectorAll('svg')).toHaveLength(8);
    expect(document.querySelectorAll('svg:not([aria-hidden=true])')).toHaveLength(0);
    expect(document.querySelectorAll('.off, .disabled, .none')).toHaveLength(0);
  });

  it('marks what is not as it should be', async () => {
    const TCD = { Auto_zero: 0, State: 'Off', Calibrated: 'OK' } as const;
    await show(<Schematic status={statusWith({ Channel1: channelWith({ TCD }) })} />);
    expect(textsOf('.part.off .name')).toEqual(['Detector']);
    expect(textsOf('.reading.off')).toEqual(['off']);
    const Channel1 = { ...exampleConfiguration.Channel1, Disabled: true };
    await act(() => {
      configuration.value = configurationWith({ Channel1 });
    });
    expect(textsOf('.off')).toEqual([]);
    expect(textsOf('.disabled h3 .note')).toEqual(['Porous polymer, 10 m, Helium, disabled']);
  });

  it('has units where they are known', async () => {
    configuration.value = configurationWith({ units: { temperature: '°C', pressure: 'kPa' } });
    await show(<Schematic status={statusWith()} />);
    expect(textsOf('.branch:first-child .part')[1]).toBe(
      'Column59.98 °C at setpointPressure 180.1 kPa at setpoint',
    );
    expect(textOf(find('.inlet .part'))).toBe('Stream valveStream 1 of 4');
  });

  it('has a valve that points to its stream', async () => {
    const hands = (): string[] =>
      [...document.querySelectorAll('.symbol .strong')].map((path) => path.getAttribute('d')!);
    await show(<Schematic status={statusWith()} />);
    expect(hands()).toEqual(['M20 20L20.0 7.0']);
    expect(document.querySelectorAll('.inlet li:first-child circle')).toHaveLength(6);
    expect(document.querySelectorAll('.inlet li:first-child circle.filled')).toHaveLength(2);
    await show(<Schematic status={statusWith({ Curr_stream: 2 })} />);
    expect(hands()).toEqual(['M20 20L33.0 20.0']);
    for (const Curr_stream of [0, 5, -1]) {
      await show(<Schematic status={statusWith({ Curr_stream })} />);
      expect(hands()).toEqual([]);
    }
  });

  it.each([
    [{ Stream_max: 12 }, 14],
    [{ Stream_max: 13 }, 2],
    [{ Stream_max: -1 }, 2],
    [{ Stream_configured: false }, 2],
  ])('has as many ports as can be told apart: %j', async (known, circles) => {
    configuration.value = configurationWith(known);
    await show(<Schematic status={statusWith()} />);
    expect(document.querySelectorAll('.inlet li:first-child circle')).toHaveLength(circles);
  });

  it('has no ports before the configuration is known', async () => {
    configuration.value = undefined;
    await show(<Schematic status={statusWith()} />);
    expect(document.querySelectorAll('.inlet li:first-child circle')).toHaveLength(2);
  });
});
