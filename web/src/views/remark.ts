// What kztns why says of a place in the text.
import { element } from '../dom';
import type { Position, Remark } from '../engine/protocol';

export function wordsOf({ text, remedy, rule }: Remark): string {
  return `${text}${remedy === '' ? '' : `; ${remedy}`}${rule === '' ? '' : ` [${rule}]`}`;
}

// Columns as the list of findings counts them.
export function placeButton(
  position: Position,
  onGoTo: (position: Position) => void,
): HTMLButtonElement {
  return element(
    'button',
    { type: 'button', class: 'link', click: () => onGoTo(position) },
    `${position.line + 1}:${position.character + 1}`,
  );
}
