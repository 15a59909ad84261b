import { afterEach, beforeEach, describe, expect, it, vi } from 'vitest';
import { backupName, backupsOf } from '../src/backups';
import { describeFault } from '../src/store';
import { calibrationKind, sequenceKind } from '../src/tables';
import { load } from './documents';
import { Gateway } from './gateway';

const sequence = sequenceKind.fromReport(load('docs/schemas/examples/sequence.json'));
const calibration = calibrationKind.fromReport(load('docs/schemas/examples/calibration.json'));
const entry = { number: 7, time: '2026-11-21T07:31:35Z', user: 'anna', address: '', command: '' };

let gateway: Gateway;

beforeEach(() => (gateway = new Gateway()));
afterEach(() => void vi.unstubAllGlobals());

describe('backups', () => {
  const ofSequence = backupsOf(sequenceKind, describeFault);

  it('are listed', async () => {
    gateway.answer('/api/backups/sequence', { backups: [entry] });
    expect(await ofSequence.list()).toEqual({ ok: true, value: [entry] });
    gateway.answer('/api/backups/calibration', { backups: [] });
    const ofPeaks = backupsOf(calibrationKind, describeFault);
    expect(await ofPeaks.list()).toEqual({ ok: true, value: [] });
  });

  it('cannot be listed without the gateway', async () => {
    gateway.lose('/api/backups/sequence');
    expect(await ofSequence.list()).toEqual({
      ok: false,
      reason: 'The web server does not answer. The connection failed.',
    });
  });

  it('are read as tables', async () => {
    gateway.answer('/api/backups/sequence/7', JSON.parse(sequenceKind.toFile(sequence)));
    expect(await ofSequence.table(7, sequence)).toEqual({ ok: true, value: sequence });
    const rows = [{ Channel: 1, ID: 2, Level_amt: 80 }];
    gateway.answer('/api/backups/calibration/3', { total: 1, rows });
    const answer = await backupsOf(calibrationKind, describeFault).table(3, calibration);
    expect(answer.ok && answer.value.rows.slice(0, 3).map(({ Level_amt }) => Level_amt)).toEqual([
      4, 80, 1.5,
    ]);
  });

  it('may be gone, unreachable, or for other peaks', async () => {
    gateway.answer('/api/backups/sequence/7', { title: 'No' }, 404);
    expect(await ofSequence.table(7, sequence)).toEqual({
      ok: false,
      reason: 'The gateway no longer keeps this table: others have been replaced since.',
    });
    gateway.lose('/api/backups/sequence/7');
    expect(await ofSequence.table(7, sequence)).toEqual({
      ok: false,
      reason: 'The web server does not answer. The connection failed.',
    });
    const rows = [{ Channel: 4, ID: 2, Level_amt: 80 }];
    gateway.answer('/api/backups/calibration/3', { total: 1, rows });
    expect(await backupsOf(calibrationKind, describeFault).table(3, calibration)).toEqual({
      ok: false,
      reason: 'It cannot be used here. The instrument has no peak 4/2 (channel/peak).',
    });
  });

  it('are named by time and user', () => {
    expect(backupName(entry)).toBe(`${new Date(entry.time).toLocaleString()}, by anna`);
    expect(backupName({ ...entry, time: 'once' })).toBe('once, by anna');
  });
});
