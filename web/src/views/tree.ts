// The tree of an entry as blocks that open and close.
import { element } from '../dom';
import type { Setting, TreeNode } from './tree_model';

function settingsList(settings: Setting[]): HTMLElement | null {
  if (settings.length === 0) return null;
  return element(
    'dl',
    { class: 'settings' },
    ...settings.flatMap(({ key, value, byDefault }) => {
      const mark = byDefault ? { class: 'by-default' } : {};
      const shown = value === '' ? '(empty)' : value;
      return [
        element('dt', mark, key),
        element('dd', mark, byDefault ? `${shown} (default)` : shown),
      ];
    }),
  );
}

function block(node: TreeNode): HTMLElement {
  return element(
    'details',
    { open: node.kind !== 'address' },
    element(
      'summary',
      {},
      node.title,
      node.about === '' ? null : element('span', { class: 'about' }, node.about),
    ),
    settingsList(node.settings),
    ...node.children.map(block),
  );
}

export function drawTree(service: TreeNode, withDefaults: boolean): HTMLElement {
  return element(
    'div',
    { class: withDefaults ? 'tree with-defaults' : 'tree' },
    ...service.children.map(block),
  );
}
