// Elements with their attributes, listeners and children. Texts are text nodes, whatever is in
// them: nothing here reads markup.

import { visible } from './invisible';

type Child = Node | string | null | undefined | false;
type Listener = (event: never) => void;
type Attributes = Record<string, string | number | boolean | null | undefined | Listener>;

// Attributes that people read, or hear.
const isRead = (name: string) => name === 'title' || name === 'aria-label';

function fill(node: Element, attributes: Attributes, children: Child[]): void {
  for (const [name, value] of Object.entries(attributes)) {
    if (typeof value === 'function') node.addEventListener(name, value as EventListener);
    else if (value === true) node.setAttribute(name, '');
    else if (value !== false && value !== null && value !== undefined)
      node.setAttribute(name, isRead(name) ? visible(String(value)) : String(value));
  }
  for (const child of children)
    if (child) node.append(typeof child === 'string' ? visible(child) : child);
}

export function element<Tag extends keyof HTMLElementTagNameMap>(
  tag: Tag,
  attributes: Attributes = {},
  ...children: Child[]
): HTMLElementTagNameMap[Tag] {
  const node = document.createElement(tag);
  fill(node, attributes, children);
  return node;
}

export function svgElement<Tag extends keyof SVGElementTagNameMap>(
  tag: Tag,
  attributes: Attributes = {},
  ...children: Child[]
): SVGElementTagNameMap[Tag] {
  const node = document.createElementNS('http://www.w3.org/2000/svg', tag);
  fill(node, attributes, children);
  return node;
}

export function byId<Type extends HTMLElement = HTMLElement>(id: string): Type {
  const found = document.getElementById(id);
  if (found === null) throw new Error(`the page has no ${id}`);
  return found as Type;
}

// "1 entry", "2 entries"
export function pluralised(count: number, one: string, many: string): string {
  return `${count.toLocaleString('en')} ${count === 1 ? one : many}`;
}
