// One lookup, step by step, as kztns why tells it.
import { element, pluralised } from '../dom';
import type { Position, Remark, Why } from '../engine/protocol';
import { placeButton, wordsOf } from './remark';

type Place = { line: number; column: number };
type Ask = (identifier: string) => Promise<Why>;

const verdicts = { found: 'ok', 'not found': 'unreachable', malformed: 'refused' };

export class WhyView {
  onGoTo: (place: Position) => void = () => {};

  private asked = ''; // empty for nothing yet
  private readonly input = element('input', {
    type: 'text',
    id: 'identifier',
    autocomplete: 'off',
    autocapitalize: 'off',
    spellcheck: 'false',
    placeholder: 'sales',
  });
  private readonly answer = element('div', { class: 'answer', role: 'status', hidden: true });

  constructor(
    parent: HTMLElement,
    private readonly ask: Ask,
    private readonly positionOf: (place: Place) => Position,
  ) {
    parent.append(
      element(
        'form',
        {
          class: 'ask',
          submit: (event: SubmitEvent) => {
            event.preventDefault();
            this.asked = this.input.value;
            this.again();
          },
        },
        element('label', { for: 'identifier' }, 'Connect identifier'),
        element(
          'div',
          { class: 'row' },
          this.input,
          element('button', { type: 'submit', class: 'primary' }, 'Why?'),
        ),
        element('p', {}, 'A name, or a descriptor (DESCRIPTION=…), as it is given to the library.'),
      ),
      this.answer,
    );
  }

  // Asks once more, of a text that has changed.
  again(): void {
    const { asked } = this;
    if (asked === '') return;
    void this.ask(asked).then(
      (why) => {
        if (this.asked === asked) this.show(why);
      },
      () => {},
    );
  }

  // An answer that is the same stays as it is: it would be read out again, and lose the focus.
  private show(why: Why): void {
    const answer = element(
      'div',
      {},
      element(
        'h2',
        {},
        element('span', {}, why.identifier),
        element('span', { class: `verdict verdict-${verdicts[why.outcome]}` }, why.outcome),
      ),
      element('ul', { class: 'steps' }, ...this.steps(why)),
    );
    this.answer.hidden = false;
    if (answer.innerHTML !== this.answer.innerHTML)
      this.answer.replaceChildren(...answer.childNodes);
  }

  private steps(why: Why): HTMLElement[] {
    const steps: HTMLElement[] = [];
    const add = (mark: string, ...words: (Node | string)[]) =>
      steps.push(element('li', { class: mark }, ...words));
    if (!why.literal) add('', `${pluralised(why.skipped, 'entry', 'entries')} passed over`);
    if (why.entry) add(why.fault ? '' : 'is-good', 'found at ', this.place(why.entry));
    if (why.fault) add('is-error', ...this.remark(why, why.fault));
    else if (!why.entry && !why.literal)
      add('is-error', 'no entry has this name: ended at the end of the file');
    if (why.outcome === 'found' && why.literal) add('is-good', 'read as a descriptor, and built');
    if (why.link !== '') add('is-good', 'link string ', element('code', {}, why.link));
    why.warnings.forEach((warning) => add('', 'warning: ', ...this.remark(why, warning)));
    why.shadowed.forEach((at) =>
      add('', 'another entry of the name, which no lookup finds, at ', this.place(at)),
    );
    if (why.note !== '') add('', why.note);
    why.near.forEach((clause) => add('', clause));
    return steps;
  }

  private remark(why: Why, remark: Remark): (Node | string)[] {
    const { line, column } = remark;
    const at = why.literal ? `${line}:${column}` : this.place(remark);
    return [at, `: ${wordsOf(remark)}`];
  }

  private place(at: Place): HTMLElement {
    return placeButton(this.positionOf(at), (position) => this.onGoTo(position));
  }
}
