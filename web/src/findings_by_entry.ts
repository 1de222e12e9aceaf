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

// For each entry, which of the diagnostics: its errors first, since these are why it is refused.
export function findingsByEntry(diagnostics: Diagnostic[], starts: Starts): number[][] {
  const found: number[][] = starts.map(() => []);
  diagnostics.forEach(({ range: { start } }, index) =>
    found[countUpTo(starts, start.line, start.character) - 1]?.push(index),
  );
  for (const all of found)
    all.sort((left, right) => diagnostics[left]!.severity - diagnostics[right]!.severity);
  return found;
}
