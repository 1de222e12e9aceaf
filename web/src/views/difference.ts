// What "fix all" would change, side by side or, where there is no room, one below the other.
import { MergeView, unifiedMergeView } from '@codemirror/merge';
import { ChangeSet, EditorState, type Extension, Text } from '@codemirror/state';
import { EditorView, highlightSpecialChars, lineNumbers } from '@codemirror/view';

import { element, pluralised } from '../dom';
import { tnsnames } from '../editor/language';
import { changesOf } from '../editor/positions';
import { theme } from '../editor/theme';
import type { Fixed } from '../engine/protocol';
import { invisible } from '../invisible';
import { showDialog } from './dialog';

// A comparison of long texts may be coarse rather than late.
const diffConfig = { scanLimit: 1000, timeout: 1500 };
const roomForTwo = 760; // pixels
const collapseUnchanged = { margin: 3, minSize: 6 };

function shown(label: string): Extension[] {
  return [
    EditorState.lineSeparator.of('\n'),
    EditorState.readOnly.of(true),
    EditorView.editable.of(false),
    EditorView.contentAttributes.of({ 'aria-label': label, tabindex: '0' }),
    EditorView.lineWrapping,
    lineNumbers(),
    highlightSpecialChars({ addSpecialChars: invisible }),
    tnsnames(),
    theme,
    EditorView.theme({ '&': { height: 'auto' } }),
  ];
}

function compare(parent: HTMLElement, before: Text, after: Text): { destroy(): void } {
  if (window.innerWidth >= roomForTwo)
    return new MergeView({
      parent,
      a: { doc: before, extensions: shown('Before') },
      b: { doc: after, extensions: shown('After') },
      collapseUnchanged,
      diffConfig,
      gutter: true,
    });
  return new EditorView({
    parent,
    doc: after,
    extensions: [
      ...shown('Difference'),
      unifiedMergeView({ original: before, mergeControls: false, collapseUnchanged, diffConfig }),
    ],
  });
}

export function offerFixes(
  before: Text,
  { edits, mended, errors }: Fixed,
  apply: () => void,
): void {
  const done = pluralised(mended, 'finding is mended', 'findings are mended');
  const rest = errors === 0 ? '' : ` ${pluralised(errors, 'error is', 'errors are')} left.`;
  const changes = ChangeSet.of(changesOf(before, edits), before.length, '\n');
  const two = window.innerWidth >= roomForTwo;
  const parent = element('div', { class: 'difference' });
  const dialog = showDialog(
    'Fix all',
    `${done}; no guesses; every name that lookups find stays.${rest}`,
    [
      ...(two
        ? [
            element(
              'div',
              { class: 'columns' },
              element('span', {}, 'Before'),
              element('span', {}, 'After'),
            ),
          ]
        : []),
      parent,
    ],
    [{ label: 'Cancel' }, { label: 'Apply', primary: true, run: apply }],
  );
  const view = compare(parent, before, changes.apply(before));
  dialog.addEventListener('close', () => view.destroy());
}
