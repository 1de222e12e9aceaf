// The findings as a list.
import { element, pluralised } from '../dom';
import { labelOf } from '../editor/findings';
import { type Checked, type Fix, type Position, severityNames } from '../engine/protocol';

// A list of more is not read; mending the first ones brings the others.
const mostShown = 300;

export class FindingList {
  onGoTo: (place: Position) => void = () => {};
  onFix: (fix: Fix) => void = () => {};

  constructor(private readonly parent: HTMLElement) {}

  // Who was at a finding is at the one that has its place then.
  show(checked: Checked): void {
    const focused = document.activeElement;
    if (focused === null || !this.parent.contains(focused)) return this.draw(checked);
    const at = [...this.parent.querySelectorAll('.finding')].findIndex((one) =>
      one.contains(focused),
    );
    const control = focused.classList.contains('fix') ? 'button.fix' : 'button';
    this.draw(checked);
    const items = this.parent.querySelectorAll('.finding');
    const item = at < 0 ? undefined : items[Math.min(at, items.length - 1)];
    const next = item?.querySelector<HTMLElement>(control) ?? item?.querySelector('button');
    (next ?? this.parent.querySelector<HTMLElement>('[tabindex]'))?.focus();
  }

  private draw(checked: Checked): void {
    const { diagnostics } = checked;
    if (diagnostics.length === 0) {
      const all = checked.verdicts.some((count) => count > 0)
        ? 'Nothing is wrong with this file.'
        : 'Nothing to say yet.';
      this.parent.replaceChildren(element('p', { class: 'empty', tabindex: -1 }, all));
      return;
    }
    const items = diagnostics.slice(0, mostShown).map((_one, index) => this.item(checked, index));
    const left = diagnostics.length - items.length;
    this.parent.replaceChildren(
      element('ul', { class: 'findings', tabindex: 0, 'aria-label': 'Findings' }, ...items),
      ...(left > 0
        ? [
            element(
              'p',
              { class: 'empty' },
              `and ${pluralised(left, 'more finding', 'more findings')}`,
            ),
          ]
        : []),
    );
  }

  private item(checked: Checked, index: number): HTMLElement {
    const { range, severity, code, message } = checked.diagnostics[index]!;
    const fix = checked.fixes[index];
    const kind = severityNames[severity];
    const { line, character } = range.start;
    return element(
      'li',
      { class: `finding is-${kind}` },
      element(
        'div',
        {},
        element(
          'p',
          { class: 'words' },
          element('span', { class: 'visually-hidden' }, `${kind}: `),
          message,
        ),
        element(
          'div',
          { class: 'place' },
          element(
            'button',
            { type: 'button', class: 'link', click: () => this.onGoTo(range.start) },
            `${line + 1}:${character + 1}`,
          ),
          element('span', { class: 'mono' }, code),
          fix
            ? element(
                'button',
                { type: 'button', class: 'fix', title: fix.title, click: () => this.onFix(fix) },
                labelOf(fix),
              )
            : null,
        ),
      ),
    );
  }
}
