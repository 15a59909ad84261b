// One cell of a table being edited.
import type { Column } from '../table';

/** Identifies the cell in the document. */
export interface Place {
  rowId: number;
  key: string;
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
