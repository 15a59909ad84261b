// What all pages share, exported from one place.
import { beginContact } from './contact';
import './interrupted';
import { loadAbout } from './session';

export * from './contact';
export * from './commands';
export * from './faults';
export { interruptions, takeNote } from './interrupted';
export { dismiss, notice, notices } from './notices';
export { isSignedIn, serverVersion, signIn, signOut, user } from './session';

/** Starts to request the status; called once. */
export function start(): void {
  beginContact();
  void loadAbout();
}
