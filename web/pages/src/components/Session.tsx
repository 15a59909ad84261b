// The user signed in here, and the versions of the pages and of the web server's side.
import { isSignedIn, serverVersion, signIn, signOut, user } from '../store';

/** Inserted when the pages are built. */
declare const __VERSION__: string;

export function Session() {
  if (!isSignedIn.value) {
    return (
      <button type="button" class="quiet" onClick={() => void signIn()}>
        Sign in
      </button>
    );
  }
  return (
    <span class="session" data-testid="session">
      <span class="text">Signed in{user.value && ` as ${user.value}`}</span>{' '}
      <button type="button" class="quiet" onClick={() => void signOut()}>
        Sign out
      </button>
    </span>
  );
}

/** Also says when the two versions differ, as they do in a page left open during an upgrade. */
export function Versions() {
  const server = serverVersion.value;
  const isOld = server !== undefined && server !== __VERSION__;
  return (
    <footer class="versions dim" data-testid="versions">
      Pages {__VERSION__}
      {server !== undefined && `, web server ${server}`}
      {isOld && '. This page is of another version: load it again.'}
    </footer>
  );
}
