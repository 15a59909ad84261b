// All faults of a table in one list, each leading to its cell.
import { cellName } from '../cells';
import type { Editor } from '../editor';
import type { Cell } from '../table';

export function CellProblems(props: { editor: Editor; onGo: (cell: Cell) => void }) {
  const { editor, onGo } = props;
  const draft = editor.draft.value!;
  const problems = editor.problems.value;
  return problems.length === 0 ? null : (
    <section class="problems" aria-labelledby="problems">
      <h2 id="problems">Not right ({problems.length})</h2>
      <ul>
        {problems.map((problem) => (
          <li key={`${problem.rowId} ${problem.key}`}>
            <button type="button" class="quiet" onClick={() => onGo(problem)}>
              {cellName(problem, draft, editor.layout.value)}: {problem.text}
            </button>
          </li>
        ))}
      </ul>
    </section>
  );
}
