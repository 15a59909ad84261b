// What users must notice without looking at the page: an alarm, an error, or no answer.
import { computed, effect } from '@preact/signals';
import { isError } from './states';
import { isStale, status, statusFault } from './contact';

export type Trouble = 'lost' | 'error' | 'alarm';

const words: Readonly<Record<Trouble, string>> = {
  lost: 'NO ANSWER',
  error: 'ERROR',
  alarm: 'ALARM',
};

/** The worst first; while there is no answer, nothing else is known. */
export const troubles = computed<readonly Trouble[]>(() => {
  const current = status.value;
  if (isStale.value) {
    return current || statusFault.value ? ['lost'] : [];
  }
  return [
    ...(current && isError(current) ? (['error'] as const) : []),
    ...(current?.Alarm_overall ? (['alarm'] as const) : []),
  ];
});

/** Put before the title of every page; empty when all is well. */
export const titleBegin = computed(() =>
  troubles.value.length > 0 ? `${troubles.value.map((one) => words[one]).join(', ')} – ` : '',
);

/** Shows the worst trouble in the page's icon, until the returned function is called. */
export function watchIcon(): () => void {
  return effect(() => {
    const icon = document.querySelector<HTMLLinkElement>('link[rel="icon"]');
    const worst = troubles.value[0];
    icon?.setAttribute('href', worst ? `./icon-${worst}.svg` : './icon.svg');
  });
}
