// The cells of a table being edited, and keyboard navigation between them.
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
import type { Step } from '../undo';
import { CellInput, type Place } from './CellInput';

interface Props {
  caption: string;
  layout: Layout;
  draft: Draft;
  problems: readonly CellProblem[];
  onChange: (draft: Draft, step: Step, isTyping?: boolean) => void;
  /** Called when typing into a cell is complete. */
  onLeaveCell?: () => void;
  /** Called with the row that has the focus, or undefined when none has. */
  onFocusRow?: ((rowId: number | undefined) => void) | undefined;
}

/** The text of a value that cannot be edited; leaves out the insignificant digits of reals. */
function plain(text: string, column: Column): string {
  if (column.kind !== 'real') {
    return text;
  }
  return text === '-' ? formatReal('-', 0) : String(Number(Number(text).toPrecision(6)));
}

/** Whether an arrow key would move the caret out of the text. */
function isAtEdge(element: HTMLInputElement | HTMLSelectElement, isLeft: boolean): boolean {
  if (element instanceof HTMLSelectElement) {
    return true;
  }
  const { selectionStart: start, selectionEnd: end, value } = element;
  const isAll = start === 0 && end === value.length;
  return isAll || (start === end && start === (isLeft ? 0 : value.length));
}

export function Grid(props: Props) {
  const { caption, layout, draft, problems, onChange, onLeaveCell, onFocusRow } = props;
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

  const name = (index: number): string => `${layout.rowName} ${index + 1}`;
  const nameOf = (rowId: number): string => name(draft.rows.findIndex(({ id }) => id === rowId));
  const first = editable[0] ?? '';

  /** Changes the rows, and puts the focus where the user continues. */
  const change = (changed: Draft, step: Step, rowId: number, key: string): void => {
    if (changed !== draft) {
      wanted.current = { rowId, key };
      onChange(changed, step);
    }
  };
  const move = (rowId: number, by: -1 | 1, key: string): void => {
    const what = `move of ${nameOf(rowId)} ${by < 0 ? 'up' : 'down'}`;
    const place = { rowId, key: editable.includes(key) ? key : first };
    change(moveRow(draft, rowId, by), { what, place }, rowId, key);
  };
  const duplicate = (rowId: number): void => {
    const what = `duplicate of ${nameOf(rowId)}`;
    change(duplicateRow(draft, layout, rowId), { what }, draft.nextId, first);
  };
  const add = (): void =>
    change(addRow(draft, layout), { what: `new ${layout.rowName}` }, draft.nextId, first);
  const remove = (rowId: number): void => {
    const index = draft.rows.findIndex(({ id }) => id === rowId);
    const neighbour = draft.rows[index + 1] ?? draft.rows[index - 1];
    const changed = removeRow(draft, layout, rowId);
    const isLeast = changed.rows.length <= layout.leastRows;
    const what = `deletion of ${name(index)}`;
    change(changed, { what }, neighbour?.id ?? rowId, isLeast ? first : 'delete');
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
    const what = `${column.label}, ${name(index)}`;
    const place = { rowId: row.id, key };
    return (
      <td key={key} data-label={column.label}>
        <CellInput
          column={column}
          text={text}
          label={what}
          problemId={problemId}
          place={place}
          onInput={(input) => onChange(setCell(draft, row.id, key, input), { what, place }, true)}
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
              onFocusOut={() => {
                onLeaveCell?.();
                onFocusRow?.(undefined);
              }}
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
