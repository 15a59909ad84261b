// The pages by address, with the header and navigation around them.
import { useEffect, useRef, useState } from 'preact/hooks';
import type { ComponentChildren } from 'preact';
import { amountChange } from './changes';
import { CalibrationPicture } from './components/CalibrationPicture';
import { Header } from './components/Header';
import { SequencePicture } from './components/SequencePicture';
import { Versions } from './components/Session';
import type { Editor } from './editor';
import { calibrationEditor, sequenceEditor } from './editors';
import { AlarmsPage } from './pages/Alarms';
import { ConfigurationPage } from './pages/Configuration';
import { RunPage } from './pages/Run';
import { StatusPage } from './pages/Status';
import { TablePage } from './pages/TablePage';
import { WallPage } from './pages/Wall';
import { isStale, status } from './store';
import { titleBegin } from './watch';

interface Page {
  name: string;
  title: string;
  render: () => ComponentChildren;
  /** Only on pages whose changes are not sent at once. */
  editor?: Editor;
}

function Unsent() {
  return (
    <>
      <span class="unsent" aria-hidden="true">
        ●
      </span>
      <span class="hidden"> (changes not sent)</span>
    </>
  );
}

const moving =
  'Enter and Shift+Enter go down and up; arrow keys go to the next cell (up and down choose in a list).';

const pages: readonly Page[] = [
  { name: 'status', title: 'Status', render: () => <StatusPage /> },
  { name: 'run', title: 'Run', render: () => <RunPage /> },
  {
    name: 'sequence',
    title: 'Sequence',
    editor: sequenceEditor,
    render: () => (
      <TablePage
        key="sequence"
        editor={sequenceEditor}
        picture={SequencePicture}
        hint={`${moving} Alt with up and down moves the line. A line with 0 runs is skipped. Flush times in the instrument’s unit.`}
      />
    ),
  },
  {
    name: 'calibration',
    title: 'Calibration',
    editor: calibrationEditor,
    render: () => (
      <TablePage
        key="calibration"
        editor={calibrationEditor}
        picture={CalibrationPicture}
        extra={amountChange}
        hint={`${moving} Peaks belong to the instrument’s method: only their amounts can be set.`}
      />
    ),
  },
  { name: 'alarms', title: 'Alarms', render: () => <AlarmsPage /> },
  { name: 'configuration', title: 'Configuration', render: () => <ConfigurationPage /> },
];

function pageName(): string {
  return location.hash.replace(/^#\//, '') || 'status';
}

function usePageName(): string {
  const [name, setName] = useState(pageName());
  useEffect(() => {
    const change = (): void => setName(pageName());
    window.addEventListener('hashchange', change);
    return () => window.removeEventListener('hashchange', change);
  }, []);
  return name;
}

export function App() {
  const name = usePageName();
  const heading = useRef<HTMLHeadingElement>(null);
  const isFirst = useRef(true);
  const page = pages.find((one) => one.name === name);
  const title = name === 'wall' ? 'Wall' : (page?.title ?? 'Unknown page');
  const application = status.value?.Application || 'Gas chromatograph';
  const begin = titleBegin.value;

  useEffect(() => {
    document.title = `${begin}${title} – ${application}`;
  }, [begin, title, application]);
  // A screen reader continues at the start of the new page.
  useEffect(() => {
    if (!isFirst.current) {
      heading.current?.focus();
      scrollTo(0, 0);
    }
    isFirst.current = false;
  }, [name]);

  if (name === 'wall') {
    return (
      <main>
        <WallPage />
      </main>
    );
  }
  return (
    <>
      <a
        href="#main"
        class="skip"
        onClick={(event) => {
          event.preventDefault();
          heading.current?.focus();
        }}
      >
        Skip to the page
      </a>
      <Header />
      <nav aria-label="Pages">
        {pages.map((one) => (
          <a key={one.name} href={`#/${one.name}`} aria-current={one === page ? 'page' : undefined}>
            {one.title}
            {one.editor?.isDirty.value && <Unsent />}
          </a>
        ))}
        <a href="#/wall">Wall</a>
      </nav>
      <main id="main" class={isStale.value ? 'stale' : undefined}>
        <h1 ref={heading} tabIndex={-1}>
          {title}
        </h1>
        {page ? page.render() : <p>There is no such page.</p>}
      </main>
      <Versions />
    </>
  );
}
