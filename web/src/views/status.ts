// The line below the text: what a check found, in numbers.
import { byId, element, pluralised } from '../dom';
import type { Checked } from '../engine/protocol';

export function showStatus({ verdicts, severities, complete }: Checked): void {
  const [errors, warnings, notes] = severities;
  const [found = 0] = verdicts;
  const entries = verdicts.reduce((left, right) => left + right, 0);
  const part = (count: number, name: string, one: string, many: string) =>
    count > 0 ? element('span', { class: name }, pluralised(count, one, many)) : null;
  byId('status').replaceChildren(
    ...[
      part(errors, 'is-error', 'error', 'errors'),
      part(warnings, 'is-warning', 'warning', 'warnings'),
      part(notes, 'is-note', 'note', 'notes'),
      errors + warnings + notes === 0
        ? element('span', { class: 'is-good' }, 'nothing wrong')
        : null,
      element(
        'span',
        {},
        `${pluralised(entries, 'entry', 'entries')}, ${found.toLocaleString('en')} ok`,
      ),
      complete ? null : element('span', {}, 'still checking…'),
    ].filter((child): child is HTMLSpanElement => child !== null),
  );
  const count = (id: string, number: number) =>
    (byId(id).textContent = number > 0 ? number.toLocaleString('en') : '');
  count('count-entries', entries);
  count('count-findings', errors + warnings + notes);
}
