// The questions before a table is sent, restored, or replaced in the editor.
import { unusualValues } from '../cells';
import { isEmptyDiff } from '../diff';
import type { Editor, Review } from '../editor';
import { Confirm, Dialog } from './Dialog';
import { DiffTable, type ExtraColumn } from './DiffTable';

interface Props<Kind extends Review['kind']> {
  editor: Editor;
  review: Extract<Review, { kind: Kind }>;
  extra: ExtraColumn | undefined;
  onClose: () => void;
}

function Conflict({ editor, review, extra, onClose }: Props<'conflict'>) {
  const isRestore = review.wanted.goal === 'restore';
  const actions = (
    <>
      <button type="button" onClick={onClose}>
        Cancel
      </button>
      <button type="button" onClick={() => void editor.load()}>
        Load the instrument’s table
      </button>
      <button type="button" onClick={() => void editor.keepEdits(review.theirs, review.wanted)}>
        {isRestore ? 'Compare again' : 'Keep my table and compare again'}
      </button>
    </>
  );
  return (
    <Dialog title="The instrument’s table has changed" onClose={onClose} actions={actions}>
      <p>Nothing was sent. Since the table was loaded here, it has changed on the instrument:</p>
      <DiffTable diff={review.diff} layout={editor.layout.value} extra={extra} />
    </Dialog>
  );
}

function Discard({ editor, review, extra, onClose }: Props<'discard'>) {
  const actions = (
    <>
      <button type="button" onClick={onClose}>
        Cancel
      </button>
      <button type="button" class="primary" onClick={review.go}>
        {review.yes}
      </button>
    </>
  );
  return (
    <Dialog title={review.title} onClose={onClose} actions={actions}>
      <p>This has not been sent to the instrument:</p>
      <DiffTable diff={review.diff} layout={editor.layout.value} extra={extra} />
      <p>“Undo” brings it back.</p>
    </Dialog>
  );
}

function Send({ editor, review, extra, onClose }: Props<'send'>) {
  const { wanted, diff } = review;
  const layout = editor.layout.value;
  const isRestore = wanted.goal === 'restore';
  const unusual = unusualValues(wanted.table, layout);
  return (
    <Confirm
      title={`${isRestore ? 'Restore' : 'Send'} the ${editor.kind.name}?`}
      yes={isRestore ? 'Restore' : 'Send'}
      action="send-table"
      onYes={() => void editor.send(wanted)}
      onNo={onClose}
    >
      <p>
        {isEmptyDiff(diff)
          ? 'The instrument already has this table. It would be written again.'
          : 'This changes on the instrument:'}
      </p>
      <DiffTable diff={diff} layout={layout} extra={extra} />
      {isRestore && <p>The changes made here are kept, and not sent.</p>}
      {unusual.length > 0 && (
        <p>More than usual, and perhaps refused by the instrument: {unusual.join('; ')}.</p>
      )}
      {editor.kind.effects.map((text) => (
        <p key={text}>{text}</p>
      ))}
    </Confirm>
  );
}

export function ReviewDialog({
  editor,
  extra,
}: {
  editor: Editor;
  extra: ExtraColumn | undefined;
}) {
  const review = editor.review.value;
  const common = { editor, extra, onClose: () => (editor.review.value = undefined) };
  switch (review?.kind) {
    case 'send':
      return <Send review={review} {...common} />;
    case 'conflict':
      return <Conflict review={review} {...common} />;
    case 'discard':
      return <Discard review={review} {...common} />;
    default:
      return null;
  }
}
