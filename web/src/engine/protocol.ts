// What goes between the page and its worker: the language server's messages, and those of
// tools/kztns/page/page.h.

export interface Position {
  line: number;
  character: number;
}

export interface Range {
  start: Position;
  end: Position;
}

export interface TextEdit {
  range: Range;
  newText: string;
}

export interface Diagnostic {
  range: Range;
  severity: 1 | 2 | 3;
  code: string;
  message: string;
}

export const severityNames = { 1: 'error', 2: 'warning', 3: 'note' } as const;

export interface Fix {
  title: string;
  safe: boolean;
  applied: boolean; // whether "fix all" takes it
  edits: TextEdit[];
}

export type Verdict = 'ok' | 'refused' | 'unreachable' | 'shadowed' | 'reserved';

export interface Entry {
  name: string;
  line: number;
  verdict: Verdict;
  link: string;
}

// What a check found in a version of the text.
export interface Checked {
  version: number;
  complete: boolean;
  diagnostics: Diagnostic[];
  fixes: (Fix | null)[]; // one for each diagnostic
  texts: string[]; // of each message, what is wrong alone
  severities: [number, number, number];
  verdicts: number[]; // how many entries of each
}

// The entries of a version of the text; they come after its findings.
export interface Listed {
  version: number;
  entries: Entry[];
  starts: [number, number][]; // where their names begin: line, character
}

export interface CompletionItem {
  label: string;
  detail: string;
  documentation: { value: string };
  textEdit: TextEdit;
}

// What kztns/format answers.
export interface Formatted {
  edits: TextEdit[];
  kept: { line: number; reason: string }[]; // the entries that keep their text; their lines after the edits
}

// What kztns/fix answers.
export interface Fixed {
  edits: TextEdit[];
  mended: number; // how many findings
  errors: number; // those that are left
}

export interface Remark {
  line: number;
  column: number;
  text: string;
  remedy: string;
  rule: string;
}

// docs/why.schema.json
export interface Why {
  identifier: string;
  literal: boolean;
  skipped: number;
  entry: { line: number; column: number } | null;
  outcome: 'found' | 'not found' | 'malformed';
  link: string;
  fault: Remark | null;
  warnings: Remark[];
  shadowed: { line: number; column: number }[];
  note: string;
  near: string[];
}

export type ToWorker =
  | { kind: 'start'; wasm: Uint8Array }
  | { kind: 'request'; id: number; method: string; params: unknown }
  | { kind: 'text'; method: string; params: unknown; version: number };

export type FromWorker =
  | { kind: 'answer'; id: number; result?: unknown; error?: string }
  | { kind: 'checked'; checked: Checked }
  | { kind: 'listed'; listed: Listed };

// The one text that is open.
export const uri = 'tnsnames.ora';
