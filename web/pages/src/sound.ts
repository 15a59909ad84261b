// A warning sound, which must be switched on in each browser.
import { effect, signal } from '@preact/signals';
import { now } from './contact';
import { troubles } from './watch';

const place = 'sound';

/** Milliseconds after which it sounds again while the trouble lasts. */
const again = 60_000;

/** Seconds for each tone, and the tones of one sound in hertz. */
const toneSeconds = 0.25;
const tones = [880, 660, 880] as const;

function remembered(): boolean {
  try {
    return localStorage.getItem(place) === 'on';
  } catch {
    return false;
  }
}

export const isSoundOn = signal(remembered());
/** Whether the browser allows sound, which it does only after the user has touched the page. */
export const isAudible = signal(false);

let context: AudioContext | undefined;

async function open(): Promise<void> {
  context ??= new AudioContext();
  await context.resume();
  isAudible.value = context.state === 'running';
}

function play(): void {
  if (!context) {
    return;
  }
  tones.forEach((hertz, index) => {
    const tone = context!.createOscillator();
    const volume = context!.createGain();
    const begin = context!.currentTime + index * toneSeconds;
    volume.gain.value = 0.2;
    tone.frequency.value = hertz;
    tone.connect(volume).connect(context!.destination);
    tone.start(begin);
    tone.stop(begin + toneSeconds);
  });
}

/** To be called on a click; sounds once when switched on, so that the user knows the sound. */
export async function switchSound(isOn: boolean): Promise<void> {
  isSoundOn.value = isOn;
  try {
    localStorage.setItem(place, isOn ? 'on' : 'off');
  } catch {
    // The choice holds until the page is left.
  }
  if (isOn) {
    await open();
    play();
  }
}

/** Sounds when trouble begins or changes, and every minute while it lasts. */
export function watchSound(): () => void {
  let known = '';
  let last = 0;
  const stop = effect(() => {
    const trouble = troubles.value.join();
    const isDue = trouble !== known || now.value - last >= again;
    known = trouble;
    if (trouble !== '' && isDue) {
      last = now.value;
      if (isSoundOn.peek()) {
        play();
      }
    }
  });
  const touch = (): void => {
    if (isSoundOn.peek() && !isAudible.peek()) {
      void open();
    }
  };
  addEventListener('pointerdown', touch);
  addEventListener('keydown', touch);
  return () => {
    stop();
    removeEventListener('pointerdown', touch);
    removeEventListener('keydown', touch);
  };
}
