// A dialog that is gone when it is closed.
import { element } from '../dom';

export interface Choice {
  label: string;
  primary?: boolean;
  run?: () => void;
}

// Shows it; returns the content's place, to be filled when it has a size.
export function showDialog(
  title: string,
  about: string,
  content: HTMLElement[],
  choices: Choice[],
): HTMLDialogElement {
  const dialog = element(
    'dialog',
    { 'aria-label': title },
    element('header', {}, element('h2', {}, title), element('p', {}, about)),
    ...content,
    element(
      'footer',
      {},
      ...choices.map(({ label, primary, run }) =>
        element(
          'button',
          {
            type: 'button',
            class: primary ? 'primary' : null,
            autofocus: primary === true,
            click: () => {
              dialog.close();
              run?.();
            },
          },
          label,
        ),
      ),
    ),
  );
  dialog.addEventListener('close', () => dialog.remove());
  document.body.append(dialog);
  dialog.showModal();
  return dialog;
}
