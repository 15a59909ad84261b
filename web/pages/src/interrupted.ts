// Interrupted commands that nobody has acknowledged yet.
import { signal } from '@preact/signals';
import { getReport, sendCommand, type Answer } from './api';
import { onAnswer } from './contact';
import type { BegunCommand, Unfinished } from './documents';
import { describeFault } from './faults';
import { say } from './notices';
import { noteLogin } from './session';

export const interruptions = signal<readonly BegunCommand[]>([]);

async function load(): Promise<void> {
  const answer = await getReport<Unfinished>('/api/unfinished', 'interrupted');
  if (answer.ok) {
    interruptions.value = answer.value.interrupted;
  }
}

/** Tells the gateway that the user has acknowledged an interrupted command. */
export async function takeNote({ id }: BegunCommand): Promise<void> {
  const answer = await sendCommand('POST', 'seen', JSON.stringify({ id }));
  noteLogin(answer);
  // 404: another user has already acknowledged it.
  if (!answer.ok && answer.fault.status !== 404) {
    const text = `Interrupted command: ${describeFault(answer.fault)}`;
    say(`interrupted ${id}`, { kind: 'bad', text });
  }
  await load();
}

onAnswer((answer: Answer<unknown>) => {
  const isAnswered = answer.ok || answer.fault.status !== 0;
  if (isAnswered && (answer.interrupted ?? 0) !== interruptions.value.length) {
    void load();
  }
});
