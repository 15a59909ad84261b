// The cells of a table being edited, and moving about in them with the keyboard.
import { useLayoutEffect, useRef } from 'preact/hooks';
import { formatReal } from '../format';
import {
  addRow,
  duplicateRow,
  moveRow,
  removeRow,
  setCell,
  textIn,
  type CellProblem,
  type Column,
  type Draft,
  type Layout,
  type Row,
} from '../table';

interface Props {
  caption: string;
  layout: Layout;
  draft: Draft;
  problems: readonly CellProblem[];
  onChange: (draft: Draft) => void;
  /** Told the row that the focus is in, or that it is in none. */
  onFocusRow?: ((rowId: number | undefined) => void) | undefined;
}

interface Place {
  rowId: number;
  key: string;
}

/** Shows a value that cannot be edited; reals come with more digits than mean something. */
function plain(text: string, column: Column): string {
  if (column.kind !== 'real') {
    return text;
  }
  return text === '-' ? formatReal('-', 0) : String(Number(Number(text).toPrecision(6)));
}

export function CellInput(props: {
  column: Column;
  text: string;
  id?: string;
  label?: string;
  problemId?: string | undefined;
  place?: Place;
  onInput: (text: string) => void;
}) {
  const { id, column, text, label, problemId, place, onInput } = props;
  const common = {
    id,
    'aria-label': label,
    'aria-invalid': problemId !== undefined,
    'aria-describedby': problemId,
    'data-row': place?.rowId,
    'data-key': place?.key,
  };
  if (column.kind === 'flag') {
    return (
      <input
        type="checkbox"
        checked={text === 'true'}
        onChange={(event) => onInput(String(event.currentTarget.checked))}
        {...common}
      />
    );
  }
  if (column.choices) {
    const choices = column.choices.includes(text) ? column.choices : [text, ...column.choices];
    return (
      <select value={text} onChange={(event) => onInput(event.currentTarget.value)} {...common}>
        {choices.map((choice) => (
          <option key={choice} value={choice}>
            {choice}
          </option>
        ))}
      </select>
    );
  }
  return (
    <input
      type="text"
      inputMode={column.kind === 'integer' ? 'numeric' : 'decimal'}
      autocomplete="off"
      value={text}
      onInput={(event) => onInput(event.currentTarget.value)}
      onFocus={(event) => event.currentTarget.select()}
      {...common}
    />
  );
}

/** Whether the caret stands where an arrow key would leave the text. */
function isAtEdge(element: HTMLInputElement | HTMLSelectElement, isLeft: boolean): boolean {
  if (element instanceof HTMLSelectElement) {
    return true;
  }
  const { selectionStart: start, selectionEnd: end, value } = element;
  const isAll = start === 0 && end === value.length;
  return isAll || (start === end && start === (isLeft ? 0 : value.length));
}

export function Grid({ caption, layout, draft, problems, onChange, onFocusRow }: Props) {
  const body = useRef<HTMLTableSectionElement>(null);
  const wanted = useRef<Place>();
  const hasRowTools = layout.mostRows > 0;
  const editable = layout.columns.filter(({ isEditable }) => isEditable).map(({ key }) => key);

  const focus = ({ rowId, key }: Place): boolean => {
    const found = body.current?.querySelector<HTMLElement>(
      `[data-row="${rowId}"][data-key="${key}"]`,
    );
    found?.focus();
    return found !== null && found !== undefined;
  };
  // A row that moves in the document loses the focus.
  useLayoutEffect(() => {
    if (wanted.current && focus(wanted.current)) {
      wanted.current = undefined;
    }
  });

  /** Changes the rows, and puts the focus where the person goes on. */
  const change = (changed: Draft, rowId: number, key: string): void => {
    if (changed !== draft) {
      wanted.current = { rowId, key };
      onChange(changed);
    }
  };
  const move = (rowId: number, by: -1 | 1, key: string): void =>
    change(moveRow(draft, rowId, by), rowId, key);
  const duplicate = (rowId: number): void =>
    change(duplicateRow(draft, layout, rowId), draft.nextId, editable[0] ?? '');
  const add = (): void => change(addRow(draft, layout), draft.nextId, editable[0] ?? '');
  const remove = (rowId: number): void => {
    const index = draft.rows.findIndex(({ id }) => id === rowId);
    const neighbour = draft.rows[index + 1] ?? draft.rows[index - 1];
    const changed = removeRow(draft, layout, rowId);
    const isLeast = changed.rows.length <= layout.leastRows;
    change(changed, neighbour?.id ?? rowId, isLeast ? (editable[0] ?? '') : 'delete');
  };

  const onKeyDown = (event: KeyboardEvent): void => {
    const cell = event.target as HTMLInputElement | HTMLSelectElement;
    const { row, key } = cell.dataset;
    if (row === undefined || key === undefined || event.ctrlKey || event.metaKey) {
      return;
    }
    const rowId = Number(row);
    const rowIndex = draft.rows.findIndex(({ id }) => id === rowId);
    const step = (rows: number, columns: number): boolean => {
      const target = draft.rows[rowIndex + rows];
      const column = editable[editable.indexOf(key) + columns];
      return (
        target !== undefined && column !== undefined && focus({ rowId: target.id, key: column })
      );
    };
    const isVertical = event.key === 'ArrowUp' || event.key === 'ArrowDown';
    const isUp = event.key === 'ArrowUp';
    let isDone = false;
    if (event.altKey) {
      if (isVertical && hasRowTools) {
        move(rowId, isUp ? -1 : 1, key);
        isDone = true;
      }
    } else if (!editable.includes(key)) {
      return;
    } else if (event.key === 'Enter') {
      isDone = step(event.shiftKey ? -1 : 1, 0);
    } else if (isVertical && cell instanceof HTMLInputElement) {
      isDone = step(isUp ? -1 : 1, 0);
    } else if (event.key === 'ArrowLeft' || event.key === 'ArrowRight') {
      const isLeft = event.key === 'ArrowLeft';
      isDone =
        isAtEdge(cell, isLeft) && (step(0, isLeft ? -1 : 1) || cell instanceof HTMLSelectElement);
    }
    if (isDone) {
      event.preventDefault();
    }
  };

  const name = (index: number): string => `${layout.rowName} ${index + 1}`;
  const tools = (row: Row, index: number) => (
    <td class="tools">
      <button
        type="button"
        aria-label={`Move ${name(index)} up`}
        data-row={row.id}
        data-key="up"
        disabled={index === 0}
        onClick={() => move(row.id, -1, index === 1 ? 'down' : 'up')}
      >
        ↑
      </button>
      <button
        type="button"
        aria-label={`Move ${name(index)} down`}
        data-row={row.id}
        data-key="down"
        disabled={index === draft.rows.length - 1}
        onClick={() => move(row.id, 1, index === draft.rows.length - 2 ? 'up' : 'down')}
      >
        ↓
      </button>
      <button
        type="button"
        aria-label={`Duplicate ${name(index)}`}
        disabled={draft.rows.length >= layout.mostRows}
        onClick={() => duplicate(row.id)}
      >
        Duplicate
      </button>
      <button
        type="button"
        aria-label={`Delete ${name(index)}`}
        data-row={row.id}
        data-key="delete"
        disabled={draft.rows.length <= layout.leastRows}
        onClick={() => remove(row.id)}
      >
        Delete
      </button>
    </td>
  );

  const cell = (row: Row, index: number, column: Column) => {
    const { key } = column;
    const text = textIn(row.cells, column);
    if (!column.isEditable) {
      const isText = column.kind === 'text';
      return (
        <td key={key} class={isText ? 'text' : 'number'}>
          {plain(text, column)}
        </td>
      );
    }
    const problem = problems.find((one) => one.rowId === row.id && one.key === key);
    const problemId = problem && `problem-${row.id}-${key}`;
    return (
      <td key={key} data-label={column.label}>
        <CellInput
          column={column}
          text={text}
          label={`${column.label}, ${name(index)}`}
          problemId={problemId}
          place={{ rowId: row.id, key }}
          onInput={(input) => onChange(setCell(draft, row.id, key, input))}
        />
        {problem && (
          <span id={problemId} class="problem">
            {problem.text}
          </span>
        )}
      </td>
    );
  };

  return (
    <div class="scroll">
      {draft.rows.length === 0 && <p>The instrument has no {layout.rowName}s.</p>}
      <table class={hasRowTools ? 'grid stack' : 'grid'} onKeyDown={onKeyDown}>
        <caption class="hidden">{caption}</caption>
        <thead>
          <tr>
            {hasRowTools && <th scope="col">Line</th>}
            {layout.columns.map(({ key, label }) => (
              <th key={key} scope="col">
                {label}
              </th>
            ))}
            {hasRowTools && <th scope="col">Row</th>}
          </tr>
        </thead>
        <tbody ref={body}>
          {draft.rows.map((row, index) => (
            <tr
              key={row.id}
              onFocusIn={() => onFocusRow?.(row.id)}
              onFocusOut={() => onFocusRow?.(undefined)}
            >
              {hasRowTools && <th scope="row">{index + 1}</th>}
              {layout.columns.map((column) => cell(row, index, column))}
              {hasRowTools && tools(row, index)}
            </tr>
          ))}
        </tbody>
      </table>
      {hasRowTools && (
        <button
          type="button"
          class="add"
          disabled={draft.rows.length >= layout.mostRows}
          onClick={add}
        >
          Add {layout.rowName}
        </button>
      )}
    </div>
  );
}
