// The worker: holds the command's parts, and checks the text when nobody has typed for a moment.
import createEngine, { type Engine } from 'engine';

import type { Checked, Diagnostic, FromWorker, Listed, ToWorker } from './protocol';

// A check is worth waiting for as long as it takes: while keys follow each other faster, the
// text is only kept up to date.
const shortestPause = 60;
const longestPause = 250;

// What asks for findings, which are then those that the page knows, too.
const needsCheck = /^(textDocument\/(hover|definition)|kztns\/(entry|fix))$/;

interface Message {
  id?: number;
  method?: string;
  params?: { diagnostics: Diagnostic[] };
  result?: unknown;
  error?: { message: string };
}

let engine: Engine;
let waiting: ToWorker[] = []; // for the engine to start
let version = 0;
let timer: ReturnType<typeof setTimeout> | undefined;
let pause = shortestPause;
let listTimer: ReturnType<typeof setTimeout> | undefined;
let listedVersion = 0;

function tell(message: FromWorker): void {
  postMessage(message);
}

function ask(message: object): Message[] {
  const bytes = new TextEncoder().encode(JSON.stringify({ jsonrpc: '2.0', ...message }));
  const place = engine._malloc(bytes.length);
  if (place === 0) throw new Error('no memory left');
  engine.HEAPU8.set(bytes, place);
  const answer = engine._kztns_answer(place, bytes.length);
  engine._free(place);
  const answered = engine.HEAPU8.subarray(answer, answer + engine._kztns_answer_length());
  return JSON.parse(new TextDecoder().decode(answered)) as Message[];
}

function checkLater(): void {
  clearTimeout(timer);
  timer = setTimeout(check, pause);
}

function check(): void {
  timer = undefined;
  const begin = performance.now();
  const messages = ask({ id: 0, method: 'kztns/check' });
  const result = messages.find(({ id }) => id === 0)?.result as Checked | null;
  const published = messages.find(({ method }) => method === 'textDocument/publishDiagnostics');
  if (!result || !published?.params) return;
  pause = Math.min(Math.max(performance.now() - begin, shortestPause), longestPause);
  const { diagnostics } = published.params;
  tell({ kind: 'checked', checked: { ...result, version, diagnostics } });
  // Of a long text the list takes a while: what was typed meanwhile comes first.
  clearTimeout(listTimer);
  if (listedVersion !== version) listTimer = setTimeout(list, 0);
  if (!result.complete) checkLater();
}

function list(): void {
  const [answer] = ask({ id: 0, method: 'kztns/entries' });
  const result = answer?.result as Listed | null;
  if (!result) return;
  listedVersion = version;
  tell({ kind: 'listed', listed: { ...result, version } });
}

function take(message: ToWorker): void {
  if (message.kind === 'text') {
    version = message.version;
    clearTimeout(listTimer);
    ask({ method: message.method, params: message.params });
    if (message.method === 'textDocument/didOpen') check();
    else checkLater();
  } else if (message.kind === 'request') {
    if (timer !== undefined && needsCheck.test(message.method)) {
      clearTimeout(timer);
      check();
    }
    const { id, method, params } = message;
    const answer = ask({ id, method, params }).find((one) => one.id === id);
    tell({ kind: 'answer', id, result: answer?.result, error: answer?.error?.message });
  }
}

async function start(wasm: Uint8Array): Promise<void> {
  engine = await createEngine({ wasmBinary: wasm });
  ask({
    id: 0,
    method: 'initialize',
    params: {
      capabilities: {},
    },
  });
  const before = waiting;
  waiting = [];
  before.forEach(take);
}

addEventListener('message', ({ data }: MessageEvent<ToWorker>) => {
  // What fails is told as an error of the worker.
  if (data.kind === 'start')
    start(data.wasm).catch((error) =>
      setTimeout(() => {
        throw error;
      }),
    );
  else if (engine === undefined) waiting.push(data);
  else take(data);
});
