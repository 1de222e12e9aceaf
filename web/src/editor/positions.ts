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

// Each edit moves the rest of the text where it is applied: of more than these the whole text
// is the shorter way.
const mostEdits = 200;

// A change of the editor's text as edits, the last one first: what comes before a place stays
// where it is. Null for too many.
export function editsOf(before: Text, changes: ChangeSet): TextEdit[] | null {
  let count = 0;
  changes.iterChanges(() => (count += 1));
  if (count > mostEdits) return null;
  const edits: TextEdit[] = [];
  changes.iterChanges((from, to, _fromAfter, _toAfter, inserted) => {
    edits.push({ range: rangeOf(before, from, to), newText: wellFormed(inserted.toString()) });
  });
  return edits.reverse();
}

// Whether nothing but blanks is left of the text before.
export function replacesAll(before: Text, changes: ChangeSet): boolean {
  let isAll = true;
  let from = 0;
  const keep = (to: number) => (isAll &&= before.sliceString(from, to).trim() === '');
  changes.iterChangedRanges((fromBefore, toBefore) => {
    keep(fromBefore);
    from = toBefore;
  });
  keep(before.length);
  return isAll;
}

// A place of the command, which counts lines and columns from 1, and columns in bytes of UTF-8.
export function positionOfPlace(
  text: Text,
  { line, column }: { line: number; column: number },
): Position {
  if (line > text.lines) return positionAt(text, text.length);
  let character = 0;
  let bytes = 1;
  for (const one of text.line(line).text) {
    if (bytes >= column) break;
    bytes += new TextEncoder().encode(one).length;
    character += one.length;
  }
  return { line: line - 1, character };
}

// Half of a character has no UTF-8; of it one unit is left that has.
export function wellFormed(text: string): string {
  return text.replace(
    /[\uD800-\uDBFF](?![\uDC00-\uDFFF])|(?<![\uD800-\uDBFF])[\uDC00-\uDFFF]/g,
    '\uFFFD',
  );
}
