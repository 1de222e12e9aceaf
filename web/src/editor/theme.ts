// The editor in the page's colours, which style.css has for light and dark.
import { HighlightStyle, syntaxHighlighting } from '@codemirror/language';
import { EditorView } from '@codemirror/view';
import { tags } from '@lezer/highlight';

// What is not the file's text: remarks, and what stands for a part of it.
const aside = { color: 'var(--muted)', fontFamily: 'var(--sans)', fontSize: '12.5px' };
const box = { padding: '8px 12px', fontSize: '13px', lineHeight: '1.45' };
const raised = { backgroundColor: 'var(--raised)', color: 'var(--text)' };

// A part of the page's colour, with what is below it shining through.
const tinted = (colour: string) => ({
  background: `color-mix(in srgb, var(--${colour}) 15%, transparent)`,
});

const chrome = EditorView.theme({
  '&': { height: '100%', color: 'var(--text)', backgroundColor: 'var(--surface)' },
  '&.cm-focused': { outline: 'none' },
  '.cm-scroller': { fontFamily: 'var(--mono)', fontSize: '13.5px', lineHeight: '1.6' },
  '.cm-content': { caretColor: 'var(--accent)', padding: '12px 0' },
  '.cm-line': { padding: '0 16px 0 8px' },
  '.cm-cursor': { borderLeftColor: 'var(--accent)', borderLeftWidth: '2px' },
  '.cm-gutters': {
    backgroundColor: 'var(--surface)',
    color: 'var(--faint)',
    border: 'none',
    paddingLeft: '4px',
  },
  '.cm-activeLine': { backgroundColor: 'var(--line-active)' },
  '.cm-activeLineGutter': { backgroundColor: 'var(--line-active)', color: 'var(--muted)' },
  '&.cm-focused > .cm-scroller > .cm-selectionLayer .cm-selectionBackground, .cm-selectionBackground':
    { backgroundColor: 'var(--selection)' },
  '.cm-matchingBracket, &.cm-focused .cm-matchingBracket': {
    backgroundColor: 'var(--match)',
    color: 'inherit',
  },
  '.cm-foldPlaceholder': {
    backgroundColor: 'var(--raised)',
    border: 'none',
    color: 'var(--muted)',
    padding: '0 6px',
  },
  '.cm-tooltip': {
    ...raised,
    border: '1px solid var(--border)',
    borderRadius: '8px',
    boxShadow: 'var(--shadow)',
    overflow: 'hidden',
    maxWidth: 'min(520px, 92vw)',
  },
  '.cm-selectionMatch': { backgroundColor: 'var(--match)' },
  '.cm-tooltip.cm-tooltip-autocomplete > ul': { fontFamily: 'var(--mono)', maxHeight: '17em' },
  '.cm-tooltip.cm-tooltip-autocomplete > ul > li': { padding: '5px 12px', lineHeight: '1.4' },
  '.cm-tooltip.cm-tooltip-autocomplete > ul > li[aria-selected]': {
    backgroundColor: 'var(--accent-soft)',
    color: 'var(--text)',
  },
  '.cm-completionDetail': { ...aside, fontStyle: 'normal', marginLeft: '1em' },
  '.cm-completionMatchedText': { textDecoration: 'none', fontWeight: '700' },
  '.cm-tooltip.cm-completionInfo': box,
  '.cm-diagnostic': { ...box, borderLeftWidth: '3px' },
  '.cm-diagnostic-error': { borderLeftColor: 'var(--error)' },
  '.cm-diagnostic-warning': { borderLeftColor: 'var(--warning)' },
  '.cm-diagnostic-info': { borderLeftColor: 'var(--note)' },
  '.cm-diagnosticAction': {
    font: 'inherit',
    fontWeight: '600',
    margin: '6px 0 0',
    padding: '4px 10px',
    display: 'block',
    textAlign: 'left',
    color: 'var(--on-accent)',
    backgroundColor: 'var(--accent)',
    borderRadius: '6px',
  },
  '.cm-lintRange': { backgroundImage: 'none', paddingBottom: '0', textUnderlineOffset: '4px' },
  '.cm-lintRange-error': { textDecoration: 'underline wavy var(--error) 1.2px' },
  '.cm-lintRange-warning': { textDecoration: 'underline wavy var(--warning) 1.2px' },
  '.cm-lintRange-info': { textDecoration: 'underline dotted var(--note) 1.5px' },
  '.cm-lintRange-active': { backgroundColor: 'var(--line-active)' },
  '.cm-gutter-lint': { width: '16px' },
  '.cm-gutter-lint .cm-gutterElement': { padding: '0' },
  '.cm-lint-marker': {
    width: '8px',
    height: '8px',
    margin: '7px 4px',
    borderRadius: '50%',
    content: 'none',
  },
  '.cm-lint-marker-error': { backgroundColor: 'var(--error)' },
  '.cm-lint-marker-warning': { backgroundColor: 'var(--warning)', borderRadius: '2px' },
  '.cm-lint-marker-info': { backgroundColor: 'var(--note)' },
  '.cm-panels': { ...raised, borderColor: 'var(--border)' },
  '.cm-panel.cm-search': box,
  '.cm-panel.cm-search label': { fontSize: '13px' },
  '.cm-textfield': {
    backgroundColor: 'var(--surface)',
    color: 'inherit',
    border: '1px solid var(--border-strong)',
    borderRadius: '6px',
    padding: '4px 8px',
  },
  '.cm-button': {
    backgroundImage: 'none',
    backgroundColor: 'var(--surface)',
    color: 'inherit',
    border: '1px solid var(--border)',
    borderRadius: '6px',
  },
  '.cm-collapsedLines': { ...aside, background: 'var(--raised)', padding: '3px 8px' },
  '.cm-collapsedLines::before, .cm-collapsedLines::after': { content: 'none' },
  '&.cm-merge-a .cm-changedLine, .cm-deletedChunk': { backgroundColor: 'var(--error-soft)' },
  '&.cm-merge-b .cm-changedLine, .cm-inlineChangedLine': { backgroundColor: 'var(--ok-soft)' },
  '&.cm-merge-a .cm-changedText, .cm-deletedChunk .cm-deletedText': tinted('error'),
  '&.cm-merge-b .cm-changedText': tinted('ok'),
  '.cm-specialChar': { color: 'var(--error)' },
});

const colours = HighlightStyle.define([
  { tag: tags.heading, color: 'var(--syntax-name)', fontWeight: '600' },
  { tag: tags.keyword, color: 'var(--syntax-block)' },
  { tag: tags.propertyName, color: 'var(--syntax-key)' },
  { tag: tags.string, color: 'var(--syntax-value)' },
  { tag: tags.number, color: 'var(--syntax-number)' },
  { tag: tags.comment, color: 'var(--syntax-comment)', fontStyle: 'italic' },
  { tag: tags.paren, color: 'var(--faint)' },
  { tag: tags.operator, color: 'var(--faint)' },
]);

export const theme = [chrome, syntaxHighlighting(colours)];
