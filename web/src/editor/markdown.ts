// The little markdown that the server writes: paragraphs, lists, **strong** and `code`. The
// words of a file are between backquotes, and become text whatever they are.
import { element } from '../dom';
import { visible } from '../invisible';

function inline(text: string): Node[] {
  return text.split(/(`[^`]*`|\*\*)/).reduce<{ nodes: Node[]; strong: boolean }>(
    ({ nodes, strong }, part) => {
      if (part === '**') return { nodes, strong: !strong };
      if (part === '') return { nodes, strong };
      const node = part.startsWith('`')
        ? element('code', {}, part.slice(1, -1))
        : document.createTextNode(visible(part));
      return { nodes: [...nodes, strong ? element('strong', {}, node) : node], strong };
    },
    { nodes: [], strong: false },
  ).nodes;
}

export function textOfMarkdown(markdown: string): HTMLElement {
  const root = element('div', { class: 'markdown' });
  let list: HTMLUListElement | undefined;
  for (const line of markdown.split('\n')) {
    if (line.startsWith('- ')) {
      if (list === undefined) root.append((list = element('ul')));
      list.append(element('li', {}, ...inline(line.slice(2))));
      continue;
    }
    list = undefined;
    if (line.trim() !== '') root.append(element('p', {}, ...inline(line)));
  }
  return root;
}
