// Pages in a document without a browser: what the user sees and does there.
import { render, type ComponentChild } from 'preact';
import { act } from 'preact/test-utils';

/** Shows this instead of what was shown before. */
export function show(what: ComponentChild): Promise<void> {
  return act(() => render(what, document.body));
}

/** The text as it is read: without hidden parts, and with runs of spaces as one. */
export function textOf(element: Element | null | undefined): string {
  return (element?.textContent ?? '').replace(/\s+/g, ' ').trim();
}

export function find<T extends Element = HTMLElement>(selector: string): T {
  const found = document.querySelector<T>(selector);
  if (!found) {
    throw new Error(`There is no ${selector} in: ${document.body.innerHTML}`);
  }
  return found;
}

export function textsOf(selector: string): string[] {
  return [...document.querySelectorAll(selector)].map(textOf);
}

/** The name for screen readers: the label, or else the text. */
export function nameOf(element: Element): string {
  const labels = (element as HTMLInputElement).labels;
  return element.getAttribute('aria-label') ?? (labels?.[0] ? textOf(labels[0]) : textOf(element));
}

/** The only one of these elements with that name. */
function named<T extends Element>(selector: string, name: string): T {
  const all = [...document.querySelectorAll<T>(selector)];
  const found = all.filter((one) => nameOf(one) === name);
  if (found.length !== 1) {
    throw new Error(`${found.length} of ${selector} are called ${name}: ${all.map(nameOf).join()}`);
  }
  return found[0]!;
}

export const button = (name: string): HTMLButtonElement => named('button', name);
export const field = (name: string): HTMLInputElement => named('input, select', name);

/** Why the button is disabled; empty if it is not. */
export function reasonOf(name: string): string {
  const element = button(name);
  const id = element.getAttribute('aria-describedby');
  const isOff = element.getAttribute('aria-disabled') === 'true';
  return isOff && id ? textOf(document.getElementById(id)) : isOff ? 'off' : '';
}

/** The texts of a table, row by row. */
export function rowsOf(table: string): string[][] {
  return [...find(table).querySelectorAll('tr')].map((row) =>
    [...row.querySelectorAll('th, td')].map(textOf),
  );
}

/** Terms and their descriptions. */
export function factsOf(list: string): string[][] {
  const details = [...find(list).querySelectorAll('dd')];
  return [...find(list).querySelectorAll('dt')].map((term, n) => [
    textOf(term),
    textOf(details[n]),
  ]);
}

export function press(name: string): Promise<void> {
  return act(async () => button(name).click());
}

function fire(element: Element, event: Event): Promise<void> {
  return act(async () => {
    element.dispatchEvent(event);
  });
}

export function choose(name: string, value: string): Promise<void> {
  const select = field(name);
  select.value = value;
  return fire(select, new Event('change', { bubbles: true }));
}

export function type(name: string, text: string): Promise<void> {
  const input = field(name);
  input.value = text;
  return fire(input, new Event('input', { bubbles: true }));
}

export function tick(name: string, isOn: boolean): Promise<void> {
  const box = field(name);
  box.checked = isOn;
  return fire(box, new Event('change', { bubbles: true }));
}

/** Presses a key on the focused element; returns whether the page has handled it. */
export async function key(name: string, modifiers: KeyboardEventInit = {}): Promise<boolean> {
  const event = new KeyboardEvent('keydown', {
    key: name,
    bubbles: true,
    cancelable: true,
    ...modifiers,
  });
  await fire(document.activeElement!, event);
  return event.defaultPrevented;
}

/** Lets everything that waits for an answer continue. */
export function settle(): Promise<void> {
  return act(async () => {
    for (let turn = 0; turn < 50; turn++) {
      await Promise.resolve();
    }
  });
}
