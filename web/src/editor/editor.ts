// The editor: CodeMirror with the server's findings, completions and meanings.
import { closeBrackets, closeBracketsKeymap, completionKeymap } from '@codemirror/autocomplete';
import { defaultKeymap, history, historyKeymap } from '@codemirror/commands';
import {
  bracketMatching,
  codeFolding,
  foldGutter,
  foldKeymap,
  foldService,
} from '@codemirror/language';
import { lintGutter, nextDiagnostic, previousDiagnostic } from '@codemirror/lint';
import { highlightSelectionMatches, searchKeymap } from '@codemirror/search';
import { type ChangeSet, EditorState, type Extension, type Text } from '@codemirror/state';
import {
  drawSelection,
  dropCursor,
  EditorView,
  highlightActiveLine,
  highlightActiveLineGutter,
  highlightSpecialChars,
  keymap,
  lineNumbers,
} from '@codemirror/view';

import type { EngineClient } from '../engine/client';
import type { Range, TextEdit } from '../engine/protocol';
import { invisible } from '../invisible';
import { assist } from './assist';
import { tnsnames } from './language';
import { changesOf, editsOf, offsetOf, rangeOf, wellFormed } from './positions';
import { theme } from './theme';

// A block of more lines is looked through no further each time it is drawn.
const mostFolded = 2000;

// A line with deeper lines after it folds with these, as far as they go.
const foldByIndentation = foldService.of((state, from) => {
  const indentOf = (text: string) => text.search(/\S/);
  const first = state.doc.lineAt(from);
  const indent = indentOf(first.text);
  if (indent < 0 || first.text.trimStart().startsWith('#')) return null;
  const last = Math.min(state.doc.lines, first.number + mostFolded);
  let end = first.to;
  for (let number = first.number + 1; number <= last; number += 1) {
    const line = state.doc.line(number);
    const deeper = indentOf(line.text) > indent;
    if (!deeper && indentOf(line.text) >= 0) break;
    if (deeper) end = line.to;
  }
  return end > first.to ? { from: first.to, to: end } : null;
});

export class Editor {
  readonly view: EditorView;
  onChange: (before: Text, changes: ChangeSet) => void = () => {};

  constructor(
    parent: HTMLElement,
    private readonly client: EngineClient,
  ) {
    this.view = new EditorView({ parent, state: this.stateOf('') });
  }

  // Opens another text, with a history of its own.
  open(text: string): void {
    const whole = wellFormed(text);
    this.view.setState(this.stateOf(whole));
    this.client.open(whole);
  }

  get text(): string {
    return this.view.state.doc.toString();
  }

  // What is on the screen, and a little more.
  get shown(): Range {
    const { from, to } = this.view.viewport;
    return rangeOf(this.view.state.doc, from, to);
  }

  apply(edits: TextEdit[]): void {
    this.view.dispatch({ changes: changesOf(this.view.state.doc, edits), userEvent: 'input' });
  }

  goTo(line: number, character: number): void {
    const anchor = offsetOf(this.view.state.doc, { line, character });
    this.view.dispatch({
      selection: { anchor },
      effects: EditorView.scrollIntoView(anchor, { y: 'center' }),
    });
    this.view.focus();
  }

  private stateOf(doc: string): EditorState {
    return EditorState.create({ doc, extensions: this.extensions() });
  }

  private extensions(): Extension[] {
    return [
      // What a file holds besides line feeds is text.
      EditorState.lineSeparator.of('\n'),
      EditorView.clipboardInputFilter.of((text) => text.replace(/\r\n?/g, '\n')),
      lintGutter(),
      lineNumbers(),
      foldGutter(),
      codeFolding(),
      foldByIndentation,
      highlightActiveLine(),
      highlightActiveLineGutter(),
      highlightSpecialChars({ addSpecialChars: invisible }),
      highlightSelectionMatches({ wholeWords: true }),
      history(),
      drawSelection(),
      dropCursor(),
      bracketMatching(),
      closeBrackets(),
      tnsnames(),
      theme,
      assist(this.client),
      EditorView.contentAttributes.of({
        'aria-label': 'Names file',
        spellcheck: 'false',
        tabindex: '0',
      }),
      // Tab leaves the editor, as it does everywhere on the page.
      keymap.of([
        { key: 'F8', run: nextDiagnostic },
        { key: 'Shift-F8', run: previousDiagnostic },
        ...closeBracketsKeymap,
        ...completionKeymap,
        ...searchKeymap,
        ...historyKeymap,
        ...foldKeymap,
        ...defaultKeymap,
      ]),
      EditorView.updateListener.of((update) => {
        if (!update.docChanged) return;
        const edits = editsOf(update.startState.doc, update.changes);
        this.client.change(edits ?? wellFormed(update.state.doc.toString()));
        this.onChange(update.startState.doc, update.changes);
      }),
    ];
  }
}
