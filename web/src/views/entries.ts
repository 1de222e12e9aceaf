// The list of entries. Of thousands only those are elements that can be seen.
import { element, pluralised } from '../dom';
import type { Entry } from '../engine/protocol';

const rowHeight = 52; // pixels
const overscan = 6; // rows above and below what can be seen

export class EntryList {
  // index among all entries; null when none is selected
  onSelect: (index: number | null) => void = () => {};
  onOpen: (index: number) => void = () => {};

  private entries: Entry[] = [];
  private said: string[] = []; // of each, what is wrong with it first
  private shown: number[] = []; // those that pass the filter
  private selected: number | null = null; // among all
  private readonly filter = element('input', {
    type: 'search',
    placeholder: 'Filter by name, verdict or address',
    'aria-label': 'Filter the entries',
    input: () => this.applyFilter(),
  });
  private readonly room = element('div', { role: 'presentation' });
  private readonly list = element(
    'div',
    {
      class: 'entries',
      role: 'listbox',
      tabindex: 0,
      'aria-label': 'Entries',
      'aria-busy': 'true',
      scroll: () => this.draw(),
      keydown: (event: KeyboardEvent) => this.onKeyDown(event),
    },
    this.room,
  );
  private readonly empty = element('p', { class: 'empty', hidden: true });

  constructor(parent: HTMLElement) {
    this.room.style.setProperty('--row-height', `${rowHeight}px`);
    parent.append(element('div', { class: 'filter' }, this.filter), this.list, this.empty);
    new ResizeObserver(() => this.draw()).observe(this.list);
  }

  get chosen(): number | null {
    return this.selected;
  }

  // What is listed is of an earlier text.
  expect(): void {
    this.list.ariaBusy = 'true';
  }

  // Another file was opened, of which no entry is known yet.
  clear(): void {
    this.entries = [];
    this.selected = null;
    this.applyFilter();
    this.empty.textContent = 'Checking…';
    this.onSelect(null);
  }

  // What is wrong with the entries that are shown, or that are shown next.
  tell(said: string[]): void {
    this.said = said;
    this.draw();
  }

  // Keeps the selected entry selected, of several ones of its name the same one, if it is there.
  show(entries: Entry[]): void {
    const { selected } = this;
    const before = selected === null ? undefined : this.entries[selected];
    const earlier = this.entries.slice(0, selected ?? 0);
    const nth = earlier.filter(({ name }) => name === before?.name).length;
    const same = entries.flatMap(({ name }, index) => (name === before?.name ? [index] : []));
    this.list.ariaBusy = 'false';
    this.entries = entries;
    this.selected = same[Math.min(nth, same.length - 1)] ?? (entries.length > 0 ? 0 : null);
    this.applyFilter();
    this.onSelect(this.selected);
  }

  // To be called when it can be seen again.
  refresh(): void {
    this.draw();
  }

  select(index: number): void {
    if (!this.shown.includes(index)) {
      this.filter.value = '';
      this.applyFilter();
    }
    this.selected = index;
    this.reveal();
    this.draw();
    this.onSelect(index);
  }

  private applyFilter(): void {
    const wanted = this.filter.value.trim().toLowerCase();
    const all = this.entries.map((_entry, index) => index);
    this.shown = wanted === '' ? all : all.filter((index) => this.passes(index, wanted));
    this.empty.hidden = this.shown.length > 0;
    this.list.hidden = this.shown.length === 0;
    this.empty.textContent =
      this.entries.length === 0
        ? 'No entry yet.'
        : `None of ${pluralised(this.entries.length, 'entry', 'entries')} matches.`;
    this.draw();
  }

  private passes(index: number, wanted: string): boolean {
    const { name, verdict, link } = this.entries[index]!;
    return `${name}\n${verdict}\n${link}`.toLowerCase().includes(wanted);
  }

  private draw(): void {
    const first = Math.max(Math.floor(this.list.scrollTop / rowHeight) - overscan, 0);
    const count = Math.ceil(this.list.clientHeight / rowHeight) + 2 * overscan;
    this.room.style.height = `${this.shown.length * rowHeight}px`;
    this.room.replaceChildren(
      ...this.shown.slice(first, first + count).map((index, row) => this.row(index, first + row)),
    );
    const active =
      this.selected === null ? null : document.getElementById(`entry-${this.selected}`);
    if (active === null) this.list.removeAttribute('aria-activedescendant');
    else this.list.setAttribute('aria-activedescendant', active.id);
  }

  private row(index: number, row: number): HTMLElement {
    const { name, line, verdict } = this.entries[index]!;
    return element(
      'div',
      {
        class: 'entry',
        role: 'option',
        id: `entry-${index}`,
        style: `top: ${row * rowHeight}px`,
        'aria-selected': String(index === this.selected),
        'aria-posinset': row + 1,
        'aria-setsize': this.shown.length,
        click: () => this.select(index),
        dblclick: () => this.onOpen(index),
      },
      element(
        'div',
        { class: 'first' },
        element('span', { class: 'name' }, name === '' ? '""' : name),
        element('span', { class: `verdict verdict-${verdict}` }, verdict),
      ),
      element(
        'div',
        { class: 'second' },
        this.about(index),
        element('span', {}, `line ${line.toLocaleString('en')}`),
      ),
    );
  }

  // The link string; of an entry that has none, why.
  private about(index: number): HTMLElement {
    const { link } = this.entries[index]!;
    if (link !== '') return element('span', { class: 'link-string' }, link);
    return element('span', {}, this.said[index] ?? '');
  }

  private onKeyDown(event: KeyboardEvent): void {
    const row = this.selected === null ? -1 : this.shown.indexOf(this.selected);
    const page = Math.max(Math.floor(this.list.clientHeight / rowHeight) - 1, 1);
    const last = this.shown.length - 1;
    const next = {
      ArrowDown: row + 1,
      ArrowUp: row - 1,
      PageDown: row + page,
      PageUp: row - page,
      Home: 0,
      End: last,
    }[event.key];
    if (event.key === 'Enter' && this.selected !== null) this.onOpen(this.selected);
    if (next === undefined) return;
    event.preventDefault();
    const index = this.shown[Math.min(Math.max(next, 0), last)];
    if (index !== undefined) this.select(index);
  }

  private reveal(): void {
    const top = (this.selected === null ? 0 : this.shown.indexOf(this.selected)) * rowHeight;
    const { scrollTop, clientHeight } = this.list;
    if (top < scrollTop) this.list.scrollTop = top;
    else if (top + rowHeight > scrollTop + clientHeight)
      this.list.scrollTop = top + rowHeight - clientHeight;
  }
}
