// Tabs as one expects them of the keyboard: arrows, Home and End go through them.
import { byId } from '../dom';

export class Tabs {
  onChange: (name: string) => void = () => {};

  constructor(private readonly names: string[]) {
    names.forEach((name, index) => {
      this.tab(name).addEventListener('click', () => this.select(name));
      this.tab(name).addEventListener('keydown', (event) => this.onKeyDown(event, index));
    });
    this.select(names[0]!);
  }

  select(selected: string): void {
    for (const name of this.names) {
      const isSelected = name === selected;
      this.tab(name).setAttribute('aria-selected', String(isSelected));
      this.tab(name).tabIndex = isSelected ? 0 : -1;
      byId(`panel-${name}`).hidden = !isSelected;
    }
    this.onChange(selected);
  }

  private tab(name: string): HTMLElement {
    return byId(`tab-${name}`);
  }

  private onKeyDown(event: KeyboardEvent, index: number): void {
    const last = this.names.length - 1;
    const next = {
      ArrowRight: index === last ? 0 : index + 1,
      ArrowLeft: index === 0 ? last : index - 1,
      Home: 0,
      End: last,
    }[event.key];
    if (next === undefined) return;
    event.preventDefault();
    const name = this.names[next]!;
    this.select(name);
    this.tab(name).focus();
  }
}
