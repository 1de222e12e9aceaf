// The page: the editor on the left, what it means on the right.
import example from './example.ora';
import licences from 'licences';

import { Text } from '@codemirror/state';

import { byId, element, visible } from './dom';
import { Editor } from './editor/editor';
import { applyFix, showFindings } from './editor/findings';
import { changesOf } from './editor/positions';
import { EngineClient } from './engine/client';
import type { Checked, Listed, TextEdit, Why } from './engine/protocol';
import { download, type OpenedFile, readFile } from './file';
import { Notice } from './views/notice';
import { EntryDetail } from './views/detail';
import { showDialog } from './views/dialog';
import { offerFixes } from './views/difference';
import { EntryList } from './views/entries';
import { FindingList } from './views/findings';
import { showStatus } from './views/status';
import { Tabs } from './views/tabs';
import type { Built } from './views/tree_model';
import { WhyView } from './views/why';

const exampleFile: OpenedFile = { name: 'example.ora', text: example, lineEnd: '\n', remark: '' };

const client = new EngineClient();
const notice = new Notice(byId('notice'));
const editor = new Editor(byId('editor'), client, [
  { key: 'Shift-Alt-f', run: () => run(format) },
  { key: 'Mod-s', run: () => run(save) },
]);
const tabs = new Tabs(['entries', 'findings', 'why']);
const entries = new EntryList(byId('panel-entries'));
const detail = new EntryDetail(byId('panel-entries'));
const findings = new FindingList(byId('panel-findings'));
const why = new WhyView(byId('panel-why'), (identifier) =>
  client.ask<Why>('kztns/why', { identifier }),
);

let file = exampleFile;
let kept = editor.view.state.doc; // as it was opened or downloaded
let checked: Checked | null = null;
let listed: Listed | null = null;

// Whether what is known is of the text that is shown.
const isCurrent = (known: Checked | Listed | null) => known?.version === client.textVersion;

function run(action: () => Promise<void> | void): boolean {
  void Promise.resolve(action()).catch((error: Error) => notice.show(error.message, 'warning'));
  return true;
}

const isEdited = () => !editor.view.state.doc.eq(kept);

// isKept: whether the text is somewhere else, too
function open(opened: OpenedFile, isKept = true): void {
  const before = isEdited() ? { ...file, text: editor.text } : null;
  file = opened;
  byId('file-name').textContent = visible(opened.name);
  editor.open(opened.text);
  kept = isKept ? editor.view.state.doc : Text.empty;
  const isExample = opened.text === example;
  const words = isExample
    ? 'This is an example. Open, drop or paste a names file of your own.'
    : opened.remark || (before === null ? '' : `${opened.name} is open.`);
  if (words === '') return notice.hide();
  const back = before && {
    label: `Back to what you wrote in ${before.name}`,
    run: () => open(before, false),
  };
  notice.show(words, opened.remark === '' ? 'note' : 'warning', back ?? undefined);
}

async function openFile(chosen: File | null | undefined): Promise<void> {
  if (chosen) open(await readFile(chosen));
}

function save(): void {
  download(file.name, editor.text, file.lineEnd);
  kept = editor.view.state.doc;
}

async function format(): Promise<void> {
  const version = client.textVersion;
  const options = { tabSize: 2, insertSpaces: true };
  const edits = await client.ask<TextEdit[]>('textDocument/formatting', { options });
  if (version !== client.textVersion) return;
  if (edits.length === 0) notice.show('The file is laid out already.');
  else editor.apply(edits);
}

async function fixAll(): Promise<void> {
  const before = editor.view.state.doc;
  const everywhere = { start: { line: 0, character: 0 }, end: { line: 0, character: 0 } };
  const [action] = await client.ask<{ edit: { changes: Record<string, TextEdit[]> } }[]>(
    'textDocument/codeAction',
    { range: everywhere, context: { diagnostics: [], only: ['source.fixAll'] } },
  );
  const edits = action === undefined ? [] : Object.values(action.edit.changes).flat();
  if (editor.view.state.doc !== before) return;
  if (edits.length === 0) return notice.show('There is nothing that can be fixed without a guess.');
  offerFixes(before, edits, () => {
    if (editor.view.state.doc === before)
      editor.view.dispatch({ changes: changesOf(before, edits), userEvent: 'input.fix' });
  });
}

// What is said between the entry's name and the next one's.
function findingsOf(index: number, of: Listed) {
  const [first, next] = [of.starts[index]!, of.starts[index + 1]];
  const isBefore = (line: number, character: number, [l, c]: [number, number]) =>
    line < l || (line === l && character < c);
  const diagnostics = checked?.version === of.version ? checked.diagnostics : [];
  return diagnostics.filter(({ range: { start } }) => {
    const { line, character } = start;
    return (
      !isBefore(line, character, first) && (next === undefined || isBefore(line, character, next))
    );
  });
}

async function showEntry(index: number | null): Promise<void> {
  const of = listed;
  const entry = index === null ? undefined : of?.entries[index];
  if (entry === undefined || of === null || index === null) return detail.clear();
  const built = await client.ask<Built | null>('kztns/entry', { index });
  if (listed === of && isCurrent(of)) detail.show(entry, findingsOf(index, of), built);
}

function goToEntry(index: number): void {
  const start = listed?.starts[index];
  if (start) editor.goTo(start[0], start[1]);
}

client.onChecked = (result) => {
  checked = result;
  showFindings(editor.view, result, () => checked === result && isCurrent(result));
  showStatus(result);
  byId<HTMLButtonElement>('fix-all').disabled = !result.fixes.some((fix) => fix?.safe);
  if (listed?.version !== result.version) entries.expect();
  else void showEntry(entries.chosen);
  findings.show(result);
  why.again();
};
client.onListed = (result) => {
  listed = result;
  entries.show(result.entries);
};
client.onFailure = (reason) =>
  notice.show(`The checker has stopped (${reason}).`, 'warning', {
    label: 'Start it again',
    run: () => {
      client.start();
      client.open(editor.text);
    },
  });

entries.onSelect = (index) => void showEntry(index).catch(() => {});
entries.onOpen = goToEntry;
detail.onGoTo = (entry) => goToEntry(listed?.entries.indexOf(entry) ?? -1);
findings.onGoTo = ({ line, character }) => editor.goTo(line, character);
findings.onFix = (fix) => {
  if (isCurrent(checked)) applyFix(editor.view, fix);
};
why.onGoTo = ({ line, character }) => editor.goTo(line, character);
tabs.onChange = (name) => {
  if (name === 'entries') entries.refresh();
};

const chooser = byId<HTMLInputElement>('file');
byId('open').addEventListener('click', () => chooser.click());
chooser.addEventListener('change', () => {
  run(() => openFile(chooser.files?.[0]));
  chooser.value = '';
});
byId('example').addEventListener('click', () => open(exampleFile));
byId('format').addEventListener('click', () => run(format));
byId('fix-all').addEventListener('click', ({ currentTarget }) => {
  const button = currentTarget as HTMLButtonElement;
  button.ariaBusy = 'true';
  run(() => fixAll().finally(() => (button.ariaBusy = 'false')));
});
byId('download').addEventListener('click', () => run(save));
byId('licences').addEventListener('click', () =>
  showDialog(
    'Licences',
    '',
    [element('pre', { class: 'licences', tabindex: 0 }, licences)],
    [{ label: 'Close', primary: true }],
  ),
);

const drop = byId('drop');
const holdsFile = (event: DragEvent) => event.dataTransfer?.types.includes('Files') ?? false;
addEventListener('dragover', (event) => {
  if (!holdsFile(event)) return;
  event.preventDefault();
  drop.hidden = false;
});
addEventListener('dragleave', (event) => {
  if (event.relatedTarget === null) drop.hidden = true;
});
addEventListener(
  'drop',
  (event) => {
    drop.hidden = true;
    if (!holdsFile(event)) return;
    event.preventDefault();
    event.stopPropagation();
    run(() => openFile(event.dataTransfer?.files[0]));
  },
  true,
);

addEventListener('beforeunload', (event) => {
  if (isEdited()) event.preventDefault();
});

open(exampleFile);
