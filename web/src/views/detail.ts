// The selected entry: verdict, link string, tree and picture.
import { verdicts as meanings } from 'words';

import { element, pluralised } from '../dom';
import {
  type Diagnostic,
  type Entry,
  type Position,
  type Remark,
  severityNames,
} from '../engine/protocol';
import { showDialog } from './dialog';
import { drawPicture } from './picture';
import { placeButton, wordsOf } from './remark';
import { drawTree } from './tree';
import { type Tree, type TreeNode, treeOf } from './tree_model';

const mostTold = 3; // of what is found in the entry

type View = 'tree' | 'picture';

// What ends the lookups before they come to the entry.
export interface LookupEnd {
  remark: Remark;
  position: Position;
}

function framed(service: TreeNode): HTMLElement {
  return element(
    'div',
    { class: 'picture', tabindex: 0, role: 'group', 'aria-label': 'Picture' },
    drawPicture(service),
  );
}

export class EntryDetail {
  onGoTo: (entry: Entry) => void = () => {};
  onGoToEnd: (position: Position) => void = () => {};

  private view: View = 'tree';
  private withDefaults = false;
  private readonly top = element('div');
  private readonly choice = element('div', { class: 'choice' });
  private readonly body = element('div');
  private readonly root = element(
    'div',
    { class: 'detail', role: 'region', 'aria-label': 'The selected entry', tabindex: 0 },
    this.top,
    this.choice,
    this.body,
  );
  private service: TreeNode | null = null;
  private entry: Entry | null = null;
  private shownFacts = '';
  private shownTree = '';

  constructor(parent: HTMLElement) {
    parent.append(this.root);
    this.clear();
  }

  clear(): void {
    this.root.hidden = true;
    this.shownFacts = this.shownTree = '';
  }

  // findings: what is said of the entry; end: of one that no lookup comes to. What is the same
  // stays as it is: the focus, and the blocks that were opened.
  show(entry: Entry, findings: Diagnostic[], built: Tree | null, end: LookupEnd | null): void {
    this.root.hidden = false;
    this.entry = entry;
    const said = findings.map(({ message, severity }) => ({ message, severity }));
    const facts = JSON.stringify([entry, said, end]);
    const tree = JSON.stringify(built);
    if (facts !== this.shownFacts)
      this.top.replaceChildren(
        this.head(entry),
        ...(end === null ? [] : [this.endLine(end)]),
        ...this.facts(entry, findings),
      );
    if (tree !== this.shownTree) {
      this.service = treeOf(built);
      this.drawChoice();
      this.drawBody();
    }
    this.shownFacts = facts;
    this.shownTree = tree;
  }

  private head(entry: Entry): HTMLElement {
    return element(
      'div',
      { class: 'head' },
      element('h2', {}, entry.name === '' ? '""' : entry.name),
      element(
        'span',
        { class: `verdict verdict-${entry.verdict}` },
        `${entry.verdict}: ${meanings[entry.verdict]}`,
      ),
      element(
        'button',
        { type: 'button', class: 'link', click: () => this.entry && this.onGoTo(this.entry) },
        `line ${entry.line.toLocaleString('en')}`,
      ),
    );
  }

  private facts(entry: Entry, findings: Diagnostic[]): HTMLElement[] {
    const facts: HTMLElement[] = findings
      .slice(0, mostTold)
      .map(({ message, severity }) =>
        element('p', { class: `reason is-${severityNames[severity]}` }, message),
      );
    const left = findings.length - mostTold;
    if (left > 0)
      facts.push(
        element('p', { class: 'more' }, `and ${pluralised(left, 'more finding', 'more findings')}`),
      );
    if (entry.link !== '') facts.unshift(this.linkLine(entry.link));
    return facts;
  }

  private endLine({ remark, position }: LookupEnd): HTMLElement {
    return element(
      'p',
      { class: 'reason is-error' },
      'lookups end at ',
      placeButton(position, (place) => this.onGoToEnd(place)),
      `: ${wordsOf(remark)}`,
    );
  }

  private linkLine(link: string): HTMLElement {
    const copy = element(
      'button',
      { type: 'button', 'aria-label': 'Copy the link string' },
      'Copy',
    );
    const told = element('span', { class: 'visually-hidden', role: 'status' });
    const tell = (words: string) => {
      copy.textContent = told.textContent = words;
      setTimeout(() => {
        copy.textContent = 'Copy';
        told.textContent = '';
      }, 1500);
    };
    copy.addEventListener('click', () => {
      void navigator.clipboard.writeText(link).then(
        () => tell('Copied'),
        () => tell('Not copied'),
      );
    });
    return element(
      'div',
      { class: 'copy-line' },
      element('code', { class: 'link-string', title: 'Link string' }, link),
      copy,
      told,
    );
  }

  private segment(view: View, label: string): HTMLElement {
    return element(
      'button',
      {
        type: 'button',
        id: `show-${view}`,
        'aria-pressed': String(this.view === view),
        click: () => {
          this.view = view;
          this.drawChoice();
          this.drawBody();
          document.getElementById(`show-${view}`)?.focus();
        },
      },
      label,
    );
  }

  private drawChoice(): void {
    this.choice.hidden = this.service === null;
    const defaults = element('input', {
      type: 'checkbox',
      id: 'with-defaults',
      checked: this.withDefaults,
      change: () => {
        this.withDefaults = defaults.checked;
        this.drawBody();
      },
    });
    this.choice.replaceChildren(
      element(
        'div',
        { class: 'segments', role: 'group', 'aria-label': 'Show as' },
        this.segment('tree', 'Tree'),
        this.segment('picture', 'Picture'),
      ),
      this.view === 'tree'
        ? element('label', {}, defaults, 'Show defaults')
        : element(
            'button',
            { type: 'button', class: 'link', click: () => this.enlarge() },
            'Enlarge',
          ),
    );
  }

  private drawBody(): void {
    if (this.service === null) this.body.replaceChildren();
    else if (this.view === 'tree')
      this.body.replaceChildren(drawTree(this.service, this.withDefaults));
    else this.body.replaceChildren(framed(this.service));
  }

  private enlarge(): void {
    if (this.service !== null)
      showDialog(
        this.service.title,
        '',
        [framed(this.service)],
        [{ label: 'Close', primary: true }],
      );
  }
}
