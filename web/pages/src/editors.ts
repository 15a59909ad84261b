// The editors of the two tables; they keep what was edited while other pages are shown.
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

/** The browser asks before it throws away what was edited. */
export function warnBeforeLeaving(): void {
  window.addEventListener('beforeunload', (event) => {
    if (editors.some(({ isDirty }) => isDirty.value)) {
      event.preventDefault();
    }
  });
}

/**
 * Keeps what is edited beyond the page, until the returned function is called. What belongs to one
 * instrument is not shown for another.
 */
export function keepUnsent(): () => void {
  const stops = editors.flatMap((editor) => {
    const place = signal<string | undefined>(undefined);
    const arrive = (present: string): void => {
      const unsent = kept(present);
      if (place.value !== undefined || (unsent && !editor.isDirty.value)) {
        editor.takeOver(unsent);
      } else if (unsent) {
        // Somebody was faster than the configuration: none of the two is lost.
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
