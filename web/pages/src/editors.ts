// The editors of the two tables; they keep what was edited while other pages are shown.
import { getReport } from './api';
import type { Calibration, Sequence } from './documents';
import { Editor, type Instrument } from './editor';
import { command, configuration, describeFault } from './store';
import { calibrationKind, sequenceKind, type TableKind } from './tables';

function instrument(kind: TableKind): Instrument {
  const key = kind.name === 'sequence' ? 'Table_repeat' : 'total';
  return {
    read: async () => {
      const answer = await getReport<Sequence & Calibration>(`/api/${kind.name}`, key);
      return answer.ok ? { ok: true, table: kind.fromReport(answer.value) } : answer;
    },
    send: (file) => command(kind.title, { method: 'PUT', path: kind.name, body: file }),
    describe: describeFault,
  };
}

const create = (kind: TableKind): Editor => new Editor(kind, instrument(kind), configuration);

export const sequenceEditor = create(sequenceKind);
export const calibrationEditor = create(calibrationKind);

/** The browser asks before it throws away what was edited. */
export function warnBeforeLeaving(): void {
  window.addEventListener('beforeunload', (event) => {
    if (sequenceEditor.isDirty.value || calibrationEditor.isDirty.value) {
      event.preventDefault();
    }
  });
}
