// How long an editor waits for the server's findings after a key press, to compare with the page.
import assert from 'node:assert/strict';
import { spawn } from 'node:child_process';
import test from 'node:test';

import { fileOfSize } from './support/long_files.js';
import { command } from './support/places.js';

const uri = 'file:///long.ora';

// Starts the server. next() waits for the next message that says what was found.
function startServer() {
  const server = spawn(command, ['lsp'], { stdio: ['pipe', 'pipe', 'inherit'] });
  let received = Buffer.alloc(0);
  let heard = () => {};
  const found = [];
  server.stdout.on('data', (part) => {
    received = Buffer.concat([received, part]);
    for (;;) {
      const head = received.indexOf('\r\n\r\n');
      if (head < 0) return;
      const end = head + 4 + Number(/Content-Length: (\d+)/.exec(received.subarray(0, head))[1]);
      if (received.length < end) return;
      const message = JSON.parse(received.subarray(head + 4, end));
      received = received.subarray(end);
      if (message.method === 'textDocument/publishDiagnostics') found.push(message.params);
      heard();
    }
  });
  const send = (message) => {
    const body = JSON.stringify({ jsonrpc: '2.0', ...message });
    server.stdin.write(`Content-Length: ${Buffer.byteLength(body)}\r\n\r\n${body}`);
  };
  const next = async () => {
    while (found.length === 0) await new Promise((resolve) => (heard = resolve));
    return found.shift();
  };
  return { send, next, process: server };
}

for (const [label, size] of [
  ['10 kB', 10_000],
  ['1 MB', 1_000_000],
  ['5 MB', 5_000_000],
])
  test(`the server, with a file of ${label}`, async (context) => {
    const { send, next, process } = startServer();
    send({ id: 1, method: 'initialize', params: { capabilities: {} } });
    const document = { uri, languageId: 'tnsnames', version: 1, text: fileOfSize(size) };
    send({ method: 'textDocument/didOpen', params: { textDocument: document } });
    assert.deepEqual((await next()).diagnostics, []);
    const times = [];
    for (let version = 2; version < 7; version += 1) {
      const start = { line: 0, character: 0 };
      const begin = performance.now();
      send({
        method: 'textDocument/didChange',
        params: {
          textDocument: { uri, version },
          contentChanges: [{ range: { start, end: start }, text: 'x' }],
        },
      });
      assert.equal((await next()).version, version);
      times.push(performance.now() - begin);
    }
    context.diagnostic(
      `${label}: findings of the server ${Math.round(times.sort((left, right) => left - right)[2])} ms after a key press`,
    );
    send({ id: 2, method: 'shutdown' });
    send({ method: 'exit' });
    process.stdin.end();
    assert.equal(await new Promise((resolve) => process.on('close', resolve)), 0);
  });
