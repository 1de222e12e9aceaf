// The tree of an entry as a drawing, from left to right.
import { svgElement } from '../dom';
import { visible } from '../invisible';
import type { TreeNode } from './tree_model';

const lineHeight = 17;
const margin = { x: 12, y: 8 };
const gap = { x: 44, y: 12 };
const widestText = 260;

interface Box {
  node: TreeNode;
  lines: string[];
  width: number;
  height: number;
  x: number;
  y: number;
  children: Box[];
}

// The width of texts in the drawing's font. Without a canvas it is a guess.
function measurer(): (text: string) => number {
  const context = document.createElement('canvas').getContext('2d');
  if (context === null) return (text) => text.length * 7.2;
  context.font = `600 12px ${getComputedStyle(document.body).fontFamily}`;
  return (text) => context.measureText(text).width;
}

// A text as it is shown, cut between characters.
function fitted(text: string, measure: (text: string) => number): string {
  const whole = visible(text);
  if (measure(whole) <= widestText) return whole;
  const characters = Array.from(whole);
  const cut = (end: number) => `${characters.slice(0, end).join('')}…`;
  let end = characters.length;
  while (end > 1 && measure(cut(end)) > widestText) end -= Math.ceil(end / 20);
  return cut(end);
}

// The title, what is looked for first, and what is not left at its default.
function linesOf(node: TreeNode): string[] {
  const settings = node.settings
    .filter(({ byDefault, isTold }) => !byDefault && !isTold)
    .map(({ key, value }) => `${key} = ${value}`);
  return [node.title, ...(node.about === '' ? [] : [node.about]), ...settings];
}

function boxOf(node: TreeNode, measure: (text: string) => number): Box {
  const lines = linesOf(node).map((line) => fitted(line, measure));
  return {
    node,
    lines,
    width: Math.ceil(Math.max(...lines.map(measure))) + 2 * margin.x,
    height: lines.length * lineHeight + 2 * margin.y,
    x: 0,
    y: 0,
    children: node.children.map((child) => boxOf(child, measure)),
  };
}

// Columns are as wide as their widest box; a parent is in the middle of its children. Returns
// the place below all that was placed.
function place(box: Box, depth: number, top: number, columns: number[]): number {
  box.x = columns[depth]!;
  let below = top;
  for (const child of box.children) below = place(child, depth + 1, below, columns);
  const first = box.children[0];
  const last = box.children.at(-1);
  const middle = first && last ? (first.y + last.y + last.height) / 2 : top + box.height / 2;
  box.y = Math.max(middle - box.height / 2, top);
  return Math.max(below, box.y + box.height + gap.y);
}

function columnsOf(root: Box): number[] {
  const widths: number[] = [];
  const visit = (box: Box, depth: number): void => {
    widths[depth] = Math.max(widths[depth] ?? 0, box.width);
    box.children.forEach((child) => visit(child, depth + 1));
  };
  visit(root, 0);
  let x = 1;
  return widths.map((width) => {
    const begin = x;
    x += width + gap.x;
    return begin;
  });
}

function edge(parent: Box, child: Box): SVGElement {
  const [x1, y1] = [parent.x + parent.width, parent.y + parent.height / 2];
  const [x2, y2] = [child.x, child.y + child.height / 2];
  const bend = (x2 - x1) / 2;
  return svgElement('path', {
    d: `M${x1} ${y1}C${x1 + bend} ${y1} ${x2 - bend} ${y2} ${x2} ${y2}`,
  });
}

function drawn(box: Box): SVGElement[] {
  const { node, lines, x, y, width, height } = box;
  const texts = lines.map((line, index) =>
    svgElement(
      'text',
      {
        class: index === 0 ? 'title' : null,
        x: x + margin.x,
        y: y + margin.y + index * lineHeight + 13,
      },
      document.createTextNode(line),
    ),
  );
  return [
    ...box.children.map((child) => edge(box, child)),
    svgElement(
      'g',
      { class: `node-${node.kind}` },
      svgElement('rect', { x, y, width, height, rx: 7 }),
      ...texts,
    ),
    ...box.children.flatMap(drawn),
  ];
}

export function drawPicture(service: TreeNode): SVGSVGElement {
  const root = boxOf(service, measurer());
  const bottom = place(root, 0, 1, columnsOf(root));
  const right = (box: Box): number => Math.max(box.x + box.width, ...box.children.map(right));
  const [width, height] = [right(root) + 1, bottom - gap.y + 1];
  return svgElement(
    'svg',
    {
      width,
      height,
      viewBox: `0 0 ${width} ${height}`,
      role: 'img',
      'aria-label': `Picture of ${service.title}`,
    },
    ...drawn(root),
  );
}
