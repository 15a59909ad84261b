// The user who gives commands from this page, and the version of the web server's side.
import { signal } from '@preact/signals';
import { getReport, sendCommand, type Answer } from './api';
import type { About } from './documents';
import { describeFault } from './faults';
import { say } from './notices';

/** The key under which this tab keeps the name while a page is reloaded. */
const place = 'user';

function remembered(): string | undefined {
  try {
    return sessionStorage.getItem(place) ?? undefined;
  } catch {
    return undefined;
  }
}

/** The user's name, as the web server knows it; undefined if it has given none. */
export const user = signal<string | undefined>(remembered());
/** Whether the web server has accepted a command from this page. */
export const isSignedIn = signal(user.value !== undefined);

function remember(name: string | undefined): void {
  user.value = name;
  try {
    if (name === undefined) {
      sessionStorage.removeItem(place);
    } else {
      sessionStorage.setItem(place, name);
    }
  } catch {
    // The browser does not let pages store anything.
  }
}

/** Notes from the answer to a command whether the user is signed in, and the name. */
export function noteLogin(answer: Answer<unknown>): void {
  if (!answer.ok && answer.fault.status === 0) {
    return;
  }
  isSignedIn.value = answer.ok || ![401, 403].includes(answer.fault.status);
  remember(isSignedIn.value ? (answer.user ?? user.value) : undefined);
}

/** Makes the browser ask for the password before it is needed. */
export async function signIn(): Promise<void> {
  say('session', { kind: 'waiting', text: 'Signing in. The browser asks who you are.' });
  const answer = await sendCommand('POST', 'login', '{}');
  noteLogin(answer);
  say(
    'session',
    answer.ok
      ? { kind: 'good', text: 'Signed in until the browser is closed.' }
      : { kind: 'bad', text: `Sign in: ${describeFault(answer.fault)}` },
  );
}

/** Makes the browser forget the password; an answer of 401 is then a success. */
export async function signOut(): Promise<void> {
  const answer = await sendCommand('POST', 'logout', '{}');
  const isOut = !answer.ok && answer.fault.status === 401;
  if (isOut) {
    noteLogin(answer);
  }
  say(
    'session',
    isOut
      ? { kind: 'good', text: 'Signed out. The next command asks who you are.' }
      : {
          kind: 'bad',
          text: `Sign out: ${answer.ok ? 'the web server did not do it.' : describeFault(answer.fault)} Close the browser to be signed out.`,
        },
  );
}

/** The version of the web server's side. */
export const serverVersion = signal<string | undefined>(undefined);

export async function loadAbout(): Promise<void> {
  const answer = await getReport<About>('/api/about', 'version');
  if (answer.ok) {
    serverVersion.value = answer.value.version;
  }
}
