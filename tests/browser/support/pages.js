// The pages of the everyday instrument: their addresses, and how to tell that they are complete.

/** `link`: its name in the navigation. `content`: waits for what comes from the instrument. */
export const pages = [
  {
    name: 'status',
    link: 'Status',
    path: '#/status',
    heading: 'Status',
    content: (page) =>
      page.getByRole('region', { name: 'Channel 2 Dimethylpolysiloxane' }).waitFor(),
  },
  {
    name: 'run',
    link: 'Run',
    path: '#/run',
    heading: 'Run',
    content: (page) =>
      page
        .getByRole('combobox', { name: 'On stream' })
        .getByText('4')
        .waitFor({ state: 'attached' }),
  },
  {
    name: 'sequence',
    link: 'Sequence',
    path: '#/sequence',
    heading: 'Sequence',
    content: (page) => page.getByLabel('Runs, line 3').waitFor(),
  },
  {
    name: 'calibration',
    link: 'Calibration',
    path: '#/calibration',
    heading: 'Calibration',
    content: (page) => page.getByLabel('Amount, level 1, peak 11').waitFor(),
  },
  {
    name: 'alarms',
    link: 'Alarms',
    path: '#/alarms',
    heading: 'Alarms',
    content: (page) => page.getByRole('region', { name: 'Not active (5)' }).waitFor(),
  },
  {
    name: 'configuration',
    link: 'Configuration',
    path: '#/configuration',
    heading: 'Configuration',
    content: (page) => page.getByText('120033').waitFor(),
  },
  // Last, as its only link leads to the first page.
  {
    name: 'wall',
    link: 'Wall',
    path: '#/wall',
    heading: 'Natural gas C6+ (simulated)',
    content: (page) => page.getByText('No. 1284').waitFor(),
  },
];
