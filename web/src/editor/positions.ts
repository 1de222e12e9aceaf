// Places of the protocol, in lines and UTF-16 units, and those of the editor.
import type { ChangeSet, Text } from '@codemirror/state';

import type { Position, Range, TextEdit } from '../engine/protocol';

export function positionAt(text: Text, offset: number): Position {
  const line = text.lineAt(offset);
  return { line: line.number - 1, character: offset - line.from };
}

export function offsetOf(text: Text, { line, character }: Position): number {
  if (line >= text.lines) return text.length;
  const found = text.line(line + 1);
  return Math.min(found.from + character, found.to);
}

export function rangeOf(text: Text, from: number, to: number): Range {
  return { start: positionAt(text, from), end: positionAt(text, to) };
}

// Edits as the editor's changes; all of them are of the same text.
export function changesOf(text: Text, edits: TextEdit[]) {
  return edits.map(({ range, newText }) => ({
    from: offsetOf(text, range.start),
    to: offsetOf(text, range.end),
    insert: newText,
  }));
}

// A change of the editor's text as edits, the last one first: what comes before a place stays
// where it is.
export function editsOf(before: Text, changes: ChangeSet): TextEdit[] {
  const edits: TextEdit[] = [];
  changes.iterChanges((from, to, _fromAfter, _toAfter, inserted) => {
    edits.unshift({ range: rangeOf(before, from, to), newText: wellFormed(inserted.toString()) });
  });
  return edits;
}

// Half of a character has no UTF-8; of it one unit is left that has.
export function wellFormed(text: string): string {
  return text.replace(
    /[\uD800-\uDBFF](?![\uDC00-\uDFFF])|(?<![\uD800-\uDBFF])[\uDC00-\uDFFF]/g,
    '\uFFFD',
  );
}
