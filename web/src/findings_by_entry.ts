// Which findings are said of which entry: those from its name to the next one's.
import type { Diagnostic, Listed } from './engine/protocol';

type Starts = Listed['starts'];

// How many entries begin there or before it.
function countUpTo(starts: Starts, line: number, character: number): number {
  let [low, high] = [0, starts.length];
  while (low < high) {
    const middle = (low + high) >> 1;
    const [l, c] = starts[middle]!;
    if (l < line || (l === line && c <= character)) low = middle + 1;
    else high = middle;
  }
  return low;
}

// An array for each entry.
export function findingsByEntry(diagnostics: Diagnostic[], starts: Starts): Diagnostic[][] {
  const found: Diagnostic[][] = starts.map(() => []);
  for (const diagnostic of diagnostics) {
    const { line, character } = diagnostic.range.start;
    found[countUpTo(starts, line, character) - 1]?.push(diagnostic);
  }
  return found;
}
