// Findings as the editor marks them, each with its fix.
import { type Action, type Diagnostic as Mark, setDiagnostics } from '@codemirror/lint';
import type { EditorView } from '@codemirror/view';

import type { Checked, Fix } from '../engine/protocol';
import { changesOf, offsetOf } from './positions';

const severities = { 1: 'error', 2: 'warning', 3: 'info' } as const;

// Applies a fix to the text that it was made for.
export function applyFix(view: EditorView, fix: Fix): void {
  view.dispatch({
    changes: changesOf(view.state.doc, fix.edits),
    userEvent: 'input.fix',
    scrollIntoView: true,
  });
}

// What a fix does is the end of what the finding says.
export function labelOf(fix: Fix): string {
  return fix.safe ? 'Fix' : 'Fix (a guess)';
}

function actionsOf(fix: Fix | null | undefined, isCurrent: () => boolean): Action[] {
  if (!fix) return [];
  return [
    {
      name: labelOf(fix),
      apply: (view) => {
        if (isCurrent()) applyFix(view, fix);
      },
    },
  ];
}

export function showFindings(view: EditorView, checked: Checked, isCurrent: () => boolean): void {
  const text = view.state.doc;
  const marks = checked.diagnostics.map(
    ({ range, severity, code, message }, index): Mark => ({
      from: offsetOf(text, range.start),
      to: offsetOf(text, range.end),
      severity: severities[severity],
      message: `${message} [${code}]`,
      actions: actionsOf(checked.fixes[index], isCurrent),
    }),
  );
  view.dispatch(setDiagnostics(view.state, marks));
}
