// The editors of the two tables; they keep edits while other pages are shown.
import { effect, signal, untracked } from '@preact/signals';
import { getReport } from './api';
import { backupsOf } from './backups';
import type { Calibration, Sequence } from './documents';
import { Editor, type Instrument } from './editor';
import { command, configuration, describeFault } from './store';
import { calibrationKind, sequenceKind, type TableKind } from './tables';
import { keep, kept, placeOf } from './unsent';

function instrument(kind: TableKind): Instrument {
  const key = kind.name === 'sequence' ? 'Table_repeat' : 'total';
  return {
    read: async () => {
      const answer = await getReport<Sequence & Calibration>(`/api/${kind.name}`, key);
      return answer.ok ? { ok: true, table: kind.fromReport(answer.value) } : answer;
    },
    send: (file) => command(kind.title, { method: 'PUT', path: kind.name, body: file }),
    describe: describeFault,
    backups: backupsOf(kind, describeFault),
  };
}

const create = (kind: TableKind): Editor => new Editor(kind, instrument(kind), configuration);

export const sequenceEditor = create(sequenceKind);
export const calibrationEditor = create(calibrationKind);
const editors = [sequenceEditor, calibrationEditor];

/** Makes the browser ask before edits are lost. */
export function warnBeforeLeaving(): void {
  window.addEventListener('beforeunload', (event) => {
    if (editors.some(({ isDirty }) => isDirty.value)) {
      event.preventDefault();
    }
  });
}

/**
 * Keeps edits when the page is reloaded, until the returned function is called. Edits for one
 * instrument are not shown for another.
 */
export function keepUnsent(): () => void {
  const stops = editors.flatMap((editor) => {
    const place = signal<string | undefined>(undefined);
    const arrive = (present: string): void => {
      const unsent = kept(present);
      if (place.value !== undefined || (unsent && !editor.isDirty.value)) {
        editor.takeOver(unsent);
      } else if (unsent) {
        // There were edits before the configuration arrived: neither they nor the kept ones are lost.
        editor.change(unsent.draft, { what: 'return to what was changed before' });
      }
      place.value = present;
    };
    return [
      effect(() => {
        const present = configuration.value && placeOf(editor.kind, configuration.value);
        if (present !== undefined && present !== place.value) {
          untracked(() => arrive(present));
        }
      }),
      effect(() => {
        const unsent = editor.unsent.value;
        if (place.value !== undefined) {
          keep(place.value, unsent);
        }
      }),
    ];
  });
  return () => stops.forEach((stop) => stop());
}
