// The page: the editor on the left, what it means on the right.
import example from './example.ora';
import licences from 'licences';

import { Text } from '@codemirror/state';

import { byId, element, pluralised } from './dom';
import { Editor } from './editor/editor';
import { applyFix, showFindings } from './editor/findings';
import { changesOf, positionOfPlace, replacesAll } from './editor/positions';
import { EngineClient } from './engine/client';
import type { Checked, Diagnostic, Entry, Fixed, Formatted, Listed, Why } from './engine/protocol';
import { download, type OpenedFile, readFile } from './file';
import { findingsByEntry } from './findings_by_entry';
import { visible, withEscapedBackslashes } from './invisible';
import { Notice } from './views/notice';
import { EntryDetail, type LookupEnd } from './views/detail';
import { showDialog } from './views/dialog';
import { offerFixes } from './views/difference';
import { EntryList } from './views/entries';
import { FindingList } from './views/findings';
import { showStatus } from './views/status';
import { Tabs } from './views/tabs';
import type { Tree } from './views/tree_model';
import { WhyView } from './views/why';

const exampleFile: OpenedFile = {
  name: 'example.ora',
  text: example,
  lineEnd: '\n',
  remark: '',
  isExample: true,
};
const exampleNotice = 'This is an example. Open, drop or paste a names file of your own.';
const nameOfOwn = 'tnsnames.ora'; // of a file that was typed or pasted

const client = new EngineClient();
const notice = new Notice(byId('notice'));
const wayBack = new Notice(byId('way-back'));
const editor = new Editor(byId('editor'), client);
const tabs = new Tabs(['entries', 'findings', 'why']);
const entries = new EntryList(byId('panel-entries'));
const detail = new EntryDetail(byId('panel-entries'));
const findings = new FindingList(byId('panel-findings'));
const why = new WhyView(
  byId('panel-why'),
  (identifier) => client.ask<Why>('kztns/why', { identifier }),
  (place) => positionOfPlace(editor.view.state.doc, place),
);

let file = exampleFile;
let kept = editor.view.state.doc; // as it was opened or downloaded
const edited: OpenedFile[] = []; // what was written in files that others took the place of
let checked: Checked | null = null;
let listed: Listed | null = null;
let said: Diagnostic[][] = []; // of each entry that is listed

// Whether what is known is of the text that is shown.
const isCurrent = (known: Checked | Listed | null) => known?.version === client.textVersion;

function offerStart(reason: string): void {
  notice.show(reason, 'warning', {
    label: 'Start it again',
    run: () => {
      client.start();
      client.open(editor.text);
    },
  });
}

function run(action: () => Promise<void> | void): void {
  void Promise.resolve(action()).catch(({ message }: Error) => {
    if (client.isRunning) notice.show(message, 'warning');
    else offerStart(message);
  });
}

const isEdited = () => !editor.view.state.doc.eq(kept);

const shownName = ({ name }: OpenedFile) => withEscapedBackslashes(name);

// The way back to what was written last, apart from the notices, which follow each other.
function offerWayBack(): void {
  const last = edited.at(-1);
  if (last === undefined) return wayBack.hide();
  const forget = () => {
    edited.pop();
    offerWayBack();
  };
  wayBack.show(
    `What you wrote in ${shownName(last)} was not downloaded.`,
    'note',
    {
      label: `Return to your edited ${shownName(last)}`,
      run: () => {
        edited.pop();
        open(last, false);
      },
    },
    forget,
  );
}

function callFile(named: OpenedFile): void {
  file = named;
  byId('file-name').textContent = visible(shownName(named));
}

// isKept: whether the text is somewhere else, too
function open(opened: OpenedFile, isKept = true): void {
  if (isEdited()) edited.push({ ...file, text: editor.text });
  callFile(opened);
  editor.open(opened.text);
  listed = null;
  entries.clear();
  entries.expect();
  kept = isKept ? editor.view.state.doc : Text.empty;
  offerWayBack();
  const words = opened.text === example ? exampleNotice : opened.remark;
  if (words === '') return notice.hide();
  notice.show(words, opened.remark === '' ? 'note' : 'warning');
}

// What is typed or pasted in place of the whole example is no example.
function leaveExample(): void {
  callFile({ ...file, name: nameOfOwn, isExample: undefined });
  notice.retract(exampleNotice);
}

async function openFile(chosen: File | null | undefined): Promise<void> {
  if (chosen) open(await readFile(chosen));
}

function save(): void {
  download(file.name, editor.text, file.lineEnd);
  kept = editor.view.state.doc;
}

const mostLinesTold = 3;

// Which entries keep their layout, and why.
function wordsOfKept(kept: Formatted['kept']): string {
  const lines = new Map<string, number[]>();
  for (const { line, reason } of kept) {
    if (!lines.has(reason)) lines.set(reason, []);
    lines.get(reason)!.push(line);
  }
  const reasons = [...lines].map(([reason, all]) => {
    const more = all.length - mostLinesTold;
    const told = all.slice(0, mostLinesTold).map((line) => line.toLocaleString('en'));
    return `${reason} (line ${told.join(', ')}${more > 0 ? ` and ${more} more` : ''})`;
  });
  const count = pluralised(kept.length, 'entry keeps its layout', 'entries keep their layout');
  return `${count}: ${reasons.join('; ')}.`;
}

async function format(): Promise<void> {
  const version = client.textVersion;
  const { edits, kept } = await client.ask<Formatted>('kztns/format', { shown: editor.shown });
  if (version !== client.textVersion) return;
  if (edits.length > 0) editor.apply(edits);
  const isDone = edits.length === 0 && kept.length === 0;
  if (isDone) notice.show('The file is laid out already.');
  else if (kept.length > 0)
    notice.show(`${edits.length === 0 ? 'Nothing to lay out. ' : ''}${wordsOfKept(kept)}`);
}

const nothingFixed =
  'Nothing here can be fixed without a guess: an entry with a fault that needs one is left as it is, and no fix is applied with which lookups would lose a name.';

async function fixAll(): Promise<void> {
  const before = editor.view.state.doc;
  const fixed = await client.ask<Fixed>('kztns/fix', { shown: editor.shown });
  if (editor.view.state.doc !== before) return;
  const { edits } = fixed;
  if (edits.length === 0) return notice.show(nothingFixed);
  offerFixes(before, fixed, () => {
    if (editor.view.state.doc === before)
      editor.view.dispatch({ changes: changesOf(before, edits), userEvent: 'input.fix' });
  });
}

// Tells the list what is wrong with its entries, as far as that is known of their text.
function relateFindings(): void {
  const known = checked?.version === listed?.version ? checked : null;
  const byEntry = findingsByEntry(known?.diagnostics ?? [], listed?.starts ?? []);
  said = byEntry.map((all) => all.map((index) => known!.diagnostics[index]!));
  entries.tell(byEntry.map(([first]) => (first === undefined ? '' : known!.texts[first]!)));
}

// What ends the lookups before they come to the entry, if it is that.
async function endBefore({ name, verdict }: Entry): Promise<LookupEnd | null> {
  if (verdict !== 'unreachable') return null;
  const { doc } = editor.view.state;
  const { literal, fault } = await client.ask<Why>('kztns/why', { identifier: name });
  if (literal || fault === null) return null;
  return { remark: fault, position: positionOfPlace(doc, fault) };
}

async function showEntry(index: number | null): Promise<void> {
  const of = listed;
  const entry = index === null ? undefined : of?.entries[index];
  if (entry === undefined || of === null || index === null) return detail.clear();
  const [built, end] = await Promise.all([
    client.ask<Tree | null>('kztns/entry', { index }),
    endBefore(entry),
  ]);
  if (listed === of && isCurrent(of)) detail.show(entry, said[index] ?? [], built, end);
}

// What cannot be asked any more is said of the checker already.
function showEntryOrNothing(index: number | null): void {
  void showEntry(index).catch(() => detail.clear());
}

function goToEntry(index: number): void {
  const start = listed?.starts[index];
  if (start) editor.goTo(start[0], start[1]);
}

editor.onChange = (before, changes) => {
  if (file.isExample && replacesAll(before, changes)) leaveExample();
};

client.onChecked = (result) => {
  checked = result;
  showFindings(editor.view, result, () => checked === result && isCurrent(result));
  showStatus(result);
  byId<HTMLButtonElement>('fix-all').disabled = !result.fixes.some((fix) => fix?.applied);
  if (listed?.version !== result.version) {
    entries.expect();
  } else {
    relateFindings();
    showEntryOrNothing(entries.chosen);
  }
  findings.show(result);
  why.again();
};
client.onListed = (result) => {
  listed = result;
  relateFindings();
  entries.show(result.entries);
};
client.onFailure = offerStart;

entries.onSelect = showEntryOrNothing;
entries.onOpen = goToEntry;
detail.onGoTo = (entry) => goToEntry(listed?.entries.indexOf(entry) ?? -1);
detail.onGoToEnd = ({ line, character }) => editor.goTo(line, character);
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
  if (isEdited() || edited.length > 0) event.preventDefault();
});

// Wherever the focus is, but not where a dialog is waiting.
const isMac = /^(Mac|iP)/.test(navigator.platform);
if (isMac) byId('download').title = '⌘S';
addEventListener('keydown', (event) => {
  const isMod = isMac ? event.metaKey : event.ctrlKey;
  const action =
    isMod && !event.shiftKey && !event.altKey && event.key.toLowerCase() === 's'
      ? save
      : event.shiftKey && event.altKey && event.code === 'KeyF'
        ? format
        : null;
  if (action === null) return;
  event.preventDefault();
  if (document.querySelector('dialog[open]') === null) run(action);
});

open(exampleFile);
