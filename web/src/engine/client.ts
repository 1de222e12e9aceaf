// The page's side of the worker: requests as promises, and checks as they come.
import wasm from 'engine-wasm';
import source from 'worker-source';

import {
  type Checked,
  type FromWorker,
  type Listed,
  type TextEdit,
  type ToWorker,
  uri,
} from './protocol';

interface Waiting {
  resolve: (result: never) => void;
  reject: (error: Error) => void;
}

export class EngineClient {
  onChecked: (checked: Checked) => void = () => {};
  onListed: (listed: Listed) => void = () => {};
  // The worker is gone; what it was asked is refused with the same words.
  onFailure: (reason: string) => void = () => {};

  private worker!: Worker;
  private running = false;
  private stopped = ''; // why it is not running
  private waiting = new Map<number, Waiting>();
  private lastId = 0;
  private version = 0;

  constructor() {
    this.start();
  }

  // The version of the text that the worker was told last.
  get textVersion(): number {
    return this.version;
  }

  get isRunning(): boolean {
    return this.running;
  }

  // A new worker, which knows no text.
  start(): void {
    this.worker?.terminate();
    this.rejectAll('The checker was started again.');
    this.running = true;
    const url = URL.createObjectURL(new Blob([source], { type: 'text/javascript' }));
    const worker = new Worker(url);
    this.worker = worker;
    URL.revokeObjectURL(url);
    worker.addEventListener('message', ({ data }: MessageEvent<FromWorker>) => this.take(data));
    worker.addEventListener('error', ({ message }: Partial<ErrorEvent>) => {
      if (worker === this.worker) this.fail(message);
    });
    this.send({ kind: 'start', wasm });
  }

  // Starts the worker if it is gone.
  open(text: string): void {
    if (!this.running) this.start();
    this.version += 1;
    const textDocument = { uri, languageId: 'tnsnames', version: this.version, text };
    this.sendText('textDocument/didOpen', { textDocument });
  }

  // Edits, each of the text that those before it leave, or the whole text.
  change(edits: TextEdit[] | string): void {
    this.version += 1;
    this.sendText('textDocument/didChange', {
      textDocument: { uri, version: this.version },
      contentChanges:
        typeof edits === 'string'
          ? [{ text: edits }]
          : edits.map(({ range, newText }) => ({ range, text: newText })),
    });
  }

  ask<Result>(method: string, params: object = {}): Promise<Result> {
    if (!this.running) return Promise.reject(new Error(this.stopped));
    this.lastId += 1;
    const id = this.lastId;
    this.send({ kind: 'request', id, method, params: { textDocument: { uri }, ...params } });
    return new Promise((resolve, reject) => this.waiting.set(id, { resolve, reject }));
  }

  private send(message: ToWorker): void {
    if (this.running) this.worker.postMessage(message);
  }

  private sendText(method: string, params: object): void {
    this.send({ kind: 'text', method, params, version: this.version });
  }

  private take(message: FromWorker): void {
    if (message.kind === 'checked') {
      if (message.checked.version === this.version) this.onChecked(message.checked);
    } else if (message.kind === 'listed') {
      if (message.listed.version === this.version) this.onListed(message.listed);
    } else if (message.kind === 'answer') {
      const waiting = this.waiting.get(message.id);
      this.waiting.delete(message.id);
      if (message.error === undefined) waiting?.resolve(message.result as never);
      else waiting?.reject(new Error(message.error));
    }
  }

  private fail(message: string | undefined): void {
    const reason = message?.replace(/^Uncaught (Error: )?/, '') || 'it could not be started';
    this.worker.terminate();
    this.running = false;
    this.stopped = `The checker has stopped (${reason}).`;
    this.rejectAll(this.stopped);
    this.onFailure(this.stopped);
  }

  private rejectAll(reason: string): void {
    for (const { reject } of this.waiting.values()) reject(new Error(reason));
    this.waiting.clear();
  }
}
