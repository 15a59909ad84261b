// @vitest-environment happy-dom
import { act } from 'preact/test-utils';
import { afterEach, beforeEach, describe, expect, it, vi } from 'vitest';
import { App } from '../src/App';
import { calibrationEditor, sequenceEditor } from '../src/editors';
import { setCell } from '../src/table';
import { statusWith } from './documents';
import { field, find, rowsOf, settle, show, textOf, textsOf } from './dom';
import type { Gateway } from './gateway';
import { arrange, clear, setAge, setStatus } from './world';

vi.mock('../src/components/Chart', () => ({ Chart: () => <p>Curves</p> }));

let gateway: Gateway;
const scrolled = vi.fn();

beforeEach(async () => {
  gateway = await arrange();
  vi.stubGlobal('scrollTo', scrolled);
  scrolled.mockClear();
  location.hash = '';
});
afterEach(async () => {
  await clear();
  for (const editor of [sequenceEditor, calibrationEditor]) {
    editor.draft.value = undefined;
    editor.message.value = undefined;
    editor.review.value = undefined;
  }
});

/** Goes to an address, as a link of the navigation does. */
async function go(hash: string): Promise<void> {
  await act(async () => {
    location.hash = hash;
    window.dispatchEvent(new Event('hashchange'));
  });
  await settle();
}

async function open(hash: string): Promise<void> {
  location.hash = hash;
  await show(<App />);
  await settle();
}

const current = (): string[] => textsOf('nav [aria-current=page]');

describe('the pages', () => {
  it('have an address each, with a link to it', async () => {
    await open('');
    const links = [...document.querySelectorAll('nav a')];
    expect(links.map((link) => [textOf(link), link.getAttribute('href')])).toEqual([
      ['Status', '#/status'],
      ['Run', '#/run'],
      ['Sequence', '#/sequence'],
      ['Calibration', '#/calibration'],
      ['Alarms', '#/alarms'],
      ['Configuration', '#/configuration'],
      ['Wall', '#/wall'],
    ]);
    expect(find('nav').getAttribute('aria-label')).toBe('Pages');
    expect(current()).toEqual(['Status']);
    expect(textsOf('h1')).toEqual(['Status']);
  });

  it.each([
    ['#/status', 'Status', 'Run type'],
    ['#/run', 'Run', 'Start single run…'],
    ['#/sequence', 'Sequence', 'Add line'],
    ['#/calibration', 'Calibration', 'Retention time, s'],
    ['#/alarms', 'Alarms', 'Reset all alarms…'],
    ['#/configuration', 'Configuration', 'Carrier gas'],
  ])('%s is %s', async (hash, title, content) => {
    await open(hash);
    expect(textsOf('h1')).toEqual([title]);
    expect(current()).toEqual([title]);
    expect(document.title).toBe(`${title} – Natural gas C6+ (simulated)`);
    expect(textOf(find('main'))).toContain(content);
    expect(document.querySelector('header')).not.toBeNull();
    expect(textsOf('.message.bad')).toEqual([]);
  });

  it('explain keyboard navigation in a table', async () => {
    await open('#/sequence');
    const moving =
      'Enter and Shift+Enter go down and up; arrow keys go to the next cell (up and down choose in a list).';
    expect(textsOf('main p.dim')).toEqual([
      `${moving} Alt with up and down moves the line. A line with 0 runs is skipped. Flush times in the instrument’s unit.`,
    ]);
    await go('#/calibration');
    expect(textsOf('main p.dim')).toEqual([
      `${moving} Peaks belong to the instrument’s method: only their amounts can be set.`,
    ]);
    expect(gateway.requests.map(({ path }) => path)).toEqual(['/api/sequence', '/api/calibration']);
  });

  it('keep edits while another page is shown', async () => {
    await open('#/sequence');
    await act(() => {
      sequenceEditor.draft.value = setCell(sequenceEditor.draft.value!, 0, 'Repeat', '77');
    });
    await go('#/calibration');
    expect(rowsOf('tbody')).toHaveLength(11);
    await go('#/sequence');
    expect(field('Runs, line 1').value).toBe('77');
  });

  it('are marked while they have unsent changes', async () => {
    const marked = (): string[] => textsOf('nav a:has(.unsent)');
    await open('#/sequence');
    expect(marked()).toEqual([]);
    const { value: draft } = sequenceEditor.draft;
    await act(() => {
      sequenceEditor.draft.value = setCell(draft!, 0, 'Repeat', '77');
    });
    await go('#/alarms');
    expect(marked()).toEqual(['Sequence● (changes not sent)']);
    expect(find('.unsent').getAttribute('aria-hidden')).toBe('true');
    await go('#/calibration');
    await act(() => {
      sequenceEditor.draft.value = draft;
      calibrationEditor.draft.value = setCell(calibrationEditor.draft.value!, 0, 'Level_amt', '7');
    });
    expect(marked()).toEqual(['Calibration● (changes not sent)']);
  });

  it('give screen readers their heading first', async () => {
    await open('#/status');
    expect(document.activeElement).not.toBe(find('h1'));
    expect(scrolled).not.toHaveBeenCalled();
    await go('#/run');
    expect(document.activeElement).toBe(find('h1'));
    expect(find('h1').tabIndex).toBe(-1);
    expect(scrolled.mock.calls).toEqual([[0, 0]]);
    await setStatus(statusWith({ Run_time: 5 }));
    expect(scrolled).toHaveBeenCalledTimes(1);
  });

  it('can be reached by skipping the header', async () => {
    await open('#/status');
    const skip = find<HTMLAnchorElement>('a.skip');
    expect(textOf(skip)).toBe('Skip to the page');
    const event = new MouseEvent('click', { bubbles: true, cancelable: true });
    skip.dispatchEvent(event);
    expect(event.defaultPrevented).toBe(true);
    expect(document.activeElement).toBe(find('h1'));
  });

  it('are grey while the values are stale', async () => {
    await open('#/status');
    expect(find('main').className).toBe('');
    await setAge(60);
    expect(find('main').className).toBe('stale');
  });

  it('show the wall view without header and navigation', async () => {
    await open('#/wall');
    expect(document.querySelector('nav, header')).toBeNull();
    expect(textsOf('.wall-state')).toEqual(['Ready']);
    expect(document.title).toBe('Wall – Natural gas C6+ (simulated)');
    await go('#/status');
    expect(textsOf('h1')).toEqual(['Status']);
  });

  it('do not exist at an unknown address', async () => {
    await open('#/nothing');
    expect(textsOf('h1')).toEqual(['Unknown page']);
    expect(textsOf('main p')).toEqual(['There is no such page.']);
    expect(current()).toEqual([]);
    expect(document.title).toBe('Unknown page – Natural gas C6+ (simulated)');
  });

  it('have a general title before the first answer', async () => {
    await setStatus(undefined);
    await open('#/run');
    expect(document.title).toBe('Run – Gas chromatograph');
    await setStatus(statusWith({ Application: 'Air' }));
    expect(document.title).toBe('Run – Air');
    await setStatus(statusWith({ Application: '' }));
    expect(document.title).toBe('Run – Gas chromatograph');
  });

  it('follow the address only while they are shown', async () => {
    await open('#/status');
    await show(null);
    const remove = vi.spyOn(window, 'removeEventListener');
    await show(<App />);
    await show(null);
    expect(remove.mock.calls.map(([name]) => name)).toContain('hashchange');
    remove.mockRestore();
  });
});
