// A line above the text, about it as a whole, until it is dismissed.
import { element } from '../dom';

export class Notice {
  constructor(private readonly root: HTMLElement) {}

  show(
    text: string,
    kind: 'note' | 'warning' = 'note',
    action?: { label: string; run: () => void },
    dismiss: () => void = () => {},
  ): void {
    this.root.hidden = false;
    this.root.className = `notice is-${kind}`;
    const button = (label: string, run: () => void) =>
      element(
        'button',
        {
          type: 'button',
          class: 'link',
          click: () => {
            this.hide();
            run();
          },
        },
        label,
      );
    this.root.replaceChildren(
      element('p', {}, text),
      ...(action ? [button(action.label, action.run)] : []),
      button('Dismiss', dismiss),
    );
  }

  hide(): void {
    this.root.hidden = true;
  }

  // Hides it if this is what it says.
  retract(text: string): void {
    if (this.root.querySelector('p')?.textContent === text) this.hide();
  }
}
