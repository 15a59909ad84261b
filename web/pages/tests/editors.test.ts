import { afterEach, beforeEach, describe, expect, it, vi } from 'vitest';
import { calibrationEditor, sequenceEditor, warnBeforeLeaving } from '../src/editors';
import { setCell } from '../src/table';
import { Gateway } from './gateway';

let gateway: Gateway;
let page: EventTarget;

beforeEach(() => {
  gateway = new Gateway();
  page = new EventTarget();
  vi.stubGlobal('window', page);
  vi.stubGlobal('document', { hidden: true });
});
afterEach(() => {
  vi.unstubAllGlobals();
  for (const editor of [sequenceEditor, calibrationEditor]) {
    editor.base.value = undefined;
    editor.draft.value = undefined;
  }
});

describe('the editors', () => {
  const leave = (): boolean => {
    const event = new Event('beforeunload', { cancelable: true });
    page.dispatchEvent(event);
    return event.defaultPrevented;
  };

  it('read, send and describe faults through the gateway', async () => {
    await sequenceEditor.load();
    expect(sequenceEditor.draft.value?.rows).toHaveLength(3);
    await sequenceEditor.send();
    expect(gateway.of('/api/command/sequence').map(({ method }) => method)).toEqual(['PUT']);
    expect(gateway.of('/api/command/sequence')[0]!.body).toMatchObject({ total: 3 });
    gateway.answer('/api/sequence', { ErrorCode: 1, Msg: 'No way' }, 503);
    await sequenceEditor.load();
    expect(sequenceEditor.message.value?.text).toBe(
      'The instrument is not reachable. The instrument’s client library did not start (error 1).',
    );
    await calibrationEditor.load();
    expect(calibrationEditor.draft.value?.rows).toHaveLength(11);
    await calibrationEditor.send();
    expect(gateway.of('/api/command/calibration').map(({ method }) => method)).toEqual(['PUT']);
  });

  it('accept no other document', async () => {
    gateway.answer('/api/sequence', { total: 0 });
    gateway.answer('/api/calibration', { Table_repeat: 1 });
    await sequenceEditor.load();
    await calibrationEditor.load();
    expect(sequenceEditor.draft.value).toBeUndefined();
    expect(calibrationEditor.draft.value).toBeUndefined();
  });

  it('make the browser ask before edits are lost', async () => {
    warnBeforeLeaving();
    await sequenceEditor.load();
    await calibrationEditor.load();
    expect(leave()).toBe(false);
    const before = sequenceEditor.draft.value!;
    sequenceEditor.draft.value = setCell(before, 0, 'Repeat', '77');
    expect(leave()).toBe(true);
    sequenceEditor.draft.value = before;
    expect(leave()).toBe(false);
    const peaks = calibrationEditor.draft.value!;
    calibrationEditor.draft.value = setCell(peaks, 0, 'Level_amt', '77');
    expect(leave()).toBe(true);
  });
});
