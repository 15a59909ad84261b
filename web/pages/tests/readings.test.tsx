// @vitest-environment happy-dom
import { act } from 'preact/test-utils';
import { afterEach, beforeEach, describe, expect, it, vi } from 'vitest';
import type { Alarms, Channel, Status } from '../src/documents';
import { alarms } from '../src/alarms';
import { formatInstant } from '../src/format';
import { ConfigurationPage } from '../src/pages/Configuration';
import { StatusPage } from '../src/pages/Status';
import { WallPage } from '../src/pages/Wall';
import { configuration, now, statusFault, statusTime } from '../src/store';
import { load, statusWith } from './documents';
import { factsOf, find, press, rowsOf, settle, show, textOf, textsOf } from './dom';
import type { Gateway } from './gateway';
import { arrange, clear, exampleConfiguration, setAge, setStatus } from './world';

vi.mock('../src/components/Chart', () => ({ Chart: () => <p>Curves</p> }));

let gateway: Gateway;

beforeEach(async () => {
  gateway = await arrange();
});
afterEach(async () => {
  alarms.value = undefined;
  await clear();
});

const none = { Setpoint: '-', Actual: '-' } as const;
const channelWith = (changes: Partial<Channel>): Channel => ({
  ...statusWith().Channel1!,
  ...changes,
});
const head = ['Quantity', 'Setpoint', 'Actual', 'Deviation'];

describe('the status page', () => {
  const overview = (changes: Partial<Status>): Promise<string[][]> =>
    setStatus(statusWith(changes)).then(() => factsOf('dl.columns'));

  it('waits for the first answer', async () => {
    await setStatus(undefined);
    await show(<StatusPage />);
    expect(textOf(document.body)).toBe('Waiting for the first answer of the instrument.');
  });

  it('shows the state of the instrument', async () => {
    await show(<StatusPage />);
    expect(textsOf('h2')).toEqual([
      'Instrument',
      'Gas flow',
      'Channel 1 Porous polymer, 10 m',
      'Channel 2 Dimethylpolysiloxane, 8 m',
      'Sample line and surroundings',
    ]);
    expect(factsOf('dl.inline')[0]).toEqual(['State', 'Ready']);
    expect(factsOf('dl.columns')).toEqual([
      ['Run ends', '–'],
      ['Automation ends', '–'],
      ['Run type', 'Analysis'],
      ['Last analysis', 'No. 1284'],
      ['Automation', 'Idle'],
      ['Sequence', 'not under way'],
      ['Continuous', 'no'],
      ['Error', 'none'],
      ['External ready', 'ready'],
      ['Service switch', 'off'],
      ['Host', 'online'],
      ['Clock', 'CLOCK'],
    ]);
    expect(textsOf('.deviation.off')).toEqual([]);
    expect(textsOf('.cards p')).toEqual([
      'Values without a unit are in the unit that the instrument is set to.',
    ]);
    expect(textsOf('.cards ~ p')).toEqual(['Curves']);
  });

  it.each([
    [{ Continuous: true }, ['Continuous', 'yes']],
    [
      { Seq_line: 2, Line_replicate: 1, Seq_replicate: 1 },
      ['Sequence', 'line 2, run 1 of it, table pass 1'],
    ],
    [{ Ext_ready_in: 'Not Ready' as const }, ['External ready', 'not ready']],
    [{ Service_switch: 'On' as const }, ['Service switch', 'on']],
    [{ Error_code: 1, Error_str: 'No power' }, ['Error', '1: No power']],
  ])('shows %j', async (changes, fact) => {
    await show(<StatusPage />);
    expect(await overview(changes)).toContainEqual(fact);
  });

  it('marks an error', async () => {
    await show(<StatusPage />);
    const look = (): string =>
      [...document.querySelectorAll('dl.columns dd')].map(({ className }) => className)[7]!;
    expect(look()).toBe('text');
    await overview({ Error_code: 502, Error_str: 'Bridge out of balance' });
    expect(look()).toBe('deviation off text');
  });

  it('compares each channel with its setpoints', async () => {
    const cold = { Setpoint: 180, Actual: 12.34 };
    await setStatus(
      statusWith({ Channel1: channelWith({ Column_press: cold, Injector_temp: none }) }),
    );
    await show(<StatusPage />);
    expect(rowsOf('[aria-labelledby=channel-1] table')).toEqual([
      head,
      ['Column temp.', '60.00', '59.98', 'at setpoint'],
      ['Injector temp.', 'not available'],
      ['Pressure', '180.0', '12.3', '167.7 below'],
    ]);
    expect(
      [...document.querySelectorAll('[aria-labelledby=channel-1] .deviation')].map(
        ({ className }) => className,
      ),
    ).toEqual(['deviation good', 'deviation off', 'deviation good']);
  });

  it.each([
    [{ Setpoint: '-', Actual: 60 }, ['not available', '60.00', 'not available']],
    [{ Setpoint: 60, Actual: '-' }, ['60.00', 'not available', 'not available']],
  ] as const)('shows an incomplete pair: %j', async (pair, texts) => {
    await setStatus(statusWith({ Channel1: channelWith({ Column_temp: pair }) }));
    await show(<StatusPage />);
    expect(rowsOf('[aria-labelledby=channel-1] table')[1]).toEqual(['Column temp.', ...texts]);
  });

  it('shows each detector', async () => {
    const off = { Auto_zero: -0.5, State: 'Off', Calibrated: 'X' } as const;
    await setStatus(statusWith({ Channel2: channelWith({ TCD: off }) }));
    await show(<StatusPage />);
    const looks = (card: string): string[] =>
      [...document.querySelectorAll(`${card} dd`)].map(({ className }) => className);
    expect(factsOf('[aria-labelledby=channel-1] dl')).toEqual([
      ['Detector', 'on'],
      ['Auto zero', '1.248'],
      ['Calibrated', 'yes'],
    ]);
    expect(looks('[aria-labelledby=channel-1]')).toEqual(['', 'number', 'deviation good']);
    expect(factsOf('[aria-labelledby=channel-2] dl')).toEqual([
      ['Detector', 'off'],
      ['Auto zero', '−0.500'],
      ['Calibrated', 'no'],
    ]);
    expect(looks('[aria-labelledby=channel-2]')).toEqual([
      'deviation off',
      'number',
      'deviation off',
    ]);
  });

  it('says which channels are disabled, as far as the configuration is known', async () => {
    const { Channel1, Channel2 } = exampleConfiguration;
    configuration.value = {
      ...exampleConfiguration,
      Channel1: { ...Channel1, Disabled: true },
      Channel2: { ...Channel2, Disabled: true, Description: '' },
    };
    await show(<StatusPage />);
    expect(textsOf('h2').slice(2, 4)).toEqual([
      'Channel 1 Porous polymer, 10 m, disabled',
      'Channel 2 disabled',
    ]);
    await act(() => {
      configuration.value = undefined;
    });
    expect(textsOf('h2').slice(2, 4)).toEqual(['Channel 1', 'Channel 2']);
    expect(document.querySelector('.note')).toBeNull();
  });

  it('shows the sample line and the surroundings', async () => {
    await show(<StatusPage />);
    const card = '[aria-labelledby=surroundings]';
    expect(rowsOf(`${card} table`)).toEqual([
      head,
      ['Sample line temp.', '65.00', '64.97', 'at setpoint'],
    ]);
    expect(factsOf(`${card} dl`)).toEqual([
      ['Ambient temperature', '23'],
      ['Ambient pressure', '101.32'],
    ]);
    await setStatus(statusWith({ Sample_line_temp: { Setpoint: 65, Actual: 66.01 } }));
    expect(rowsOf(`${card} table`)[1]).toEqual([
      'Sample line temp.',
      '65.00',
      '66.01',
      '1.01 above',
    ]);
  });
});

describe('the configuration page', () => {
  const open = async (document: unknown = exampleConfiguration): Promise<void> => {
    gateway.answer('/api/config', document);
    await show(<ConfigurationPage />);
    await settle();
  };
  const channelHead = [
    'Channel',
    'Installed',
    'Column',
    'Carrier gas',
    'Part number',
    'Serial number',
  ];

  it('shows the configuration', async () => {
    await open();
    expect(textsOf('h2')).toEqual(['Instrument', 'Channels']);
    expect(factsOf('dl')).toEqual([
      ['Name', 'gc-12-simulated'],
      ['Site', 'Metering station 12, stream house'],
      ['Serial number', '120033'],
      ['Stream selector', 'streams up to 4'],
    ]);
    expect(rowsOf('table')).toEqual([
      channelHead,
      ['1', 'yes', 'Porous polymer, 10 m', 'Helium', '7300', '210411'],
      ['2', 'yes', 'Dimethylpolysiloxane, 8 m', 'Helium', '7420', '210587'],
      ['3', 'no', ''],
      ['4', 'no', ''],
    ]);
    expect([...document.querySelectorAll('tbody tr')].map(({ className }) => className)).toEqual([
      '',
      '',
      'dim',
      'dim',
    ]);
  });

  it('says what is missing', async () => {
    const { Channel1 } = exampleConfiguration;
    await open({
      ...exampleConfiguration,
      Inst_name: '',
      Site_info: '',
      Stream_configured: false,
      Channel1: { ...Channel1, Disabled: true, Description: '' },
    });
    expect(factsOf('dl')).toEqual([
      ['Name', 'none'],
      ['Site', 'none'],
      ['Serial number', '120033'],
      ['Stream selector', 'not configured'],
    ]);
    expect(rowsOf('table')[1]!.slice(0, 3)).toEqual(['1', 'yes, disabled', 'not available']);
  });

  it('reads it again when it is opened, and on demand', async () => {
    await open();
    expect(gateway.requests).toEqual([{ method: 'GET', path: '/api/config' }]);
    gateway.answer('/api/config', { ...exampleConfiguration, Inst_name: 'gc-13' });
    await press('Reload');
    await settle();
    expect(factsOf('dl')[0]).toEqual(['Name', 'gc-13']);
    expect(gateway.requests).toHaveLength(2);
  });

  it('says why there is none', async () => {
    configuration.value = undefined;
    gateway.answer('/api/config', {}, 503);
    await show(<ConfigurationPage />);
    expect(textsOf('h2, [role=alert] p')).toEqual([]);
    await settle();
    expect(textsOf('[role=alert] p')).toEqual(['The instrument is not reachable.']);
    expect(textsOf('h2')).toEqual([]);
    gateway.answer('/api/config', exampleConfiguration);
    await press('Reload');
    await settle();
    expect(textsOf('[role=alert] p')).toEqual([]);
  });
});

describe('the wall view', () => {
  it('shows the state in large letters', async () => {
    await show(<WallPage />);
    expect(textsOf('h1')).toEqual(['Natural gas C6+ (simulated)']);
    expect(textsOf('.wall-state')).toEqual(['Ready']);
    expect(find('.wall-state').className).toBe('wall-state live');
    expect(factsOf('dl')).toEqual([
      ['Run', 'no run'],
      ['Stream', '1'],
      ['Automation', 'Idle'],
      ['Sequence', 'not under way'],
      ['Run ends', '–'],
      ['Automation ends', '–'],
      ['Last analysis', 'No. 1284'],
    ]);
    expect(textsOf('caption')).toEqual(['Temperatures and pressures']);
    expect(rowsOf('table')).toEqual([
      ['', 'Column temp.', 'Injector temp.', 'Pressure'],
      ['Channel 1', '59.98 at setpoint', '69.97 at setpoint', '180.1 at setpoint'],
      ['Channel 2', '75.01 at setpoint', '79.96 at setpoint', '150.1 at setpoint'],
      ['Sample line', '64.97 at setpoint'],
    ]);
    expect(
      [...document.querySelectorAll('td[colspan]')].map((td) => td.getAttribute('colspan')),
    ).toEqual(['1', '1', '1', '1', '1', '1', '3']);
    expect(textsOf('[data-testid=alarm-sign]')).toEqual(['No alarm']);
    expect(textsOf('.simulated')).toEqual(['Simulated: this is not a real instrument']);
    expect(textsOf('footer')).toEqual(['Data 0 s oldAll pages']);
  });

  it('says only once that a value is not available', async () => {
    await setStatus(statusWith({ Channel1: channelWith({ Column_temp: none }) }));
    await show(<WallPage />);
    expect(rowsOf('table')[1]!.slice(0, 2)).toEqual(['Channel 1', 'not available']);
  });

  it('marks values that are off their setpoints', async () => {
    await setStatus(load<Status>('tests/system/documents/warming-up.json'));
    await show(<WallPage />);
    expect(document.querySelectorAll('td.deviation.off')).toHaveLength(7);
  });

  it('shows an error', async () => {
    await setStatus(statusWith({ GC_state: 'Error', Error_code: 502, Error_str: 'No balance' }));
    await show(<WallPage />);
    expect(find('.wall-state').className).toBe('wall-state live error');
    expect(textsOf('p.text')).toEqual(['Error 502: No balance']);
    await setStatus(statusWith({ Error_code: 3, Application: '' }));
    expect(textsOf('p.text')).toEqual([]);
    expect(textsOf('h1')).toEqual(['Instrument without a name']);
  });

  it('names active alarms, as many as there is room for', async () => {
    const { rows } = load<Alarms>('docs/schemas/examples/alarms.json');
    alarms.value = { total: 5, rows: rows!.map((row) => ({ ...row, Triggered: true })) };
    await setStatus(statusWith({ Alarm_overall: true }));
    await show(<WallPage />);
    expect(textsOf('.wall-alarm li')).toEqual([
      'GC Status: Instrument Error',
      'GC Status: Cabinet Temperature',
      'GC Status: Ambient Pressure',
      'and 2 more',
    ]);
    await show(<StatusPage />);
    expect(textsOf('[aria-labelledby=instrument] li')).toHaveLength(5);
  });

  it('says since when there is no answer, and the last known state', async () => {
    await setStatus(statusWith({ GC_state: 'Error', Error_code: 502, Error_str: 'No balance' }));
    await show(<WallPage />);
    await setAge(60);
    const time = formatInstant(statusTime.value, now.value);
    expect(textsOf('.wall-state')).toEqual([`No answer since ${time}`]);
    expect(find('.wall-state').className).toBe('wall-state lost');
    expect(textsOf('.wall-alarm > *')).toEqual(['Last known: Error', 'No alarm']);
    expect(textsOf('p.text.live')).toEqual(['Error 502: No balance']);
    await setAge(0);
    expect(textsOf('.wall-state')).toEqual(['Error']);
    expect(textsOf('.wall-alarm > *')).toEqual(['No alarm']);
    await show(<StatusPage />);
    expect(textsOf('.lost, .lost + p')).toEqual([]);
    await setAge(60);
    expect(textsOf('.lost, .lost + p')).toEqual([
      `No answer since ${formatInstant(statusTime.value, now.value)}`,
      'These are the last values:',
    ]);
    expect(document.querySelector('.live .lost')).toBeNull();
  });

  it('shows units where they are known', async () => {
    configuration.value = {
      ...exampleConfiguration,
      units: { temperature: '°C', pressure: 'kPa', auto_zero: 'mV', ambient_pressure: 'hPa' },
    };
    await show(<WallPage />);
    expect(rowsOf('table')[0]).toEqual([
      '',
      'Column temp., °C',
      'Injector temp., °C',
      'Pressure, kPa',
    ]);
    expect(rowsOf('table')[3]).toEqual(['Sample line', '64.97 °C at setpoint']);
    await show(<StatusPage />);
    expect(rowsOf('[aria-labelledby=channel-1] table').map(([first]) => first)).toEqual([
      'Quantity',
      'Column temp., °C',
      'Injector temp., °C',
      'Pressure, kPa',
    ]);
    expect(factsOf('[aria-labelledby=channel-1] dl')[1]).toEqual(['Auto zero', '1.248 mV']);
    expect(factsOf('[aria-labelledby=surroundings] dl')).toEqual([
      ['Ambient temperature', '23 °C'],
      ['Ambient pressure', '101.32 hPa'],
    ]);
    expect(textsOf('[aria-labelledby=surroundings] p')).toEqual([]);
  });

  it('shows the age of the data, and what is wrong', async () => {
    await show(<WallPage />);
    expect(find('.wall').className).toBe('wall');
    expect(find('footer p').className).toBe('dim');
    await setAge(60);
    await act(() => {
      statusFault.value = { status: 503, text: 'The instrument is not reachable.', detail: '' };
    });
    expect(textsOf('footer p')).toEqual([
      'Data 1 min 00 s old',
      'The instrument is not reachable.',
    ]);
    expect(find('.wall').className).toBe('wall stale');
    expect(find('footer p').className).toBe('stale-mark');
    await setStatus(undefined);
    await act(() => {
      statusTime.value = 0;
    });
    expect(textsOf('footer p')[0]).toBe('No data yet');
    expect(textsOf('h1')).toEqual([]);
    expect(textsOf('.wall-state')).toEqual(['No answer yet']);
  });
});
