// The server, spoken to by the protocol library that Visual Studio Code's client is made of.
// KZTNS says which command.
const assert = require('node:assert');
const { spawn } = require('node:child_process');
const test = require('node:test');
const protocol = require('vscode-languageserver-protocol/node');

const uri = 'file:///names/tnsnames.ora';
const text =
  'sales = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1))\n' +
  '  (CONNECT_DATA = (SERVICE_NAME = sales)(SERVER = DEDICATED)))\n';

test('kztns lsp serves the client', { skip: !process.env.KZTNS }, async () => {
  const server = spawn(process.env.KZTNS, ['lsp', '--stdio']);
  const ended = new Promise((resolve) => server.on('exit', resolve));
  const connection = protocol.createProtocolConnection(server.stdout, server.stdin);
  const published = new Promise((resolve) =>
    connection.onNotification(protocol.PublishDiagnosticsNotification.type, resolve),
  );
  connection.listen();

  const { capabilities } = await connection.sendRequest(protocol.InitializeRequest.type, {
    processId: process.pid,
    rootUri: null,
    capabilities: { textDocument: { codeAction: { codeActionLiteralSupport: {} } } },
  });
  assert.strictEqual(capabilities.hoverProvider, true);
  await connection.sendNotification(protocol.InitializedNotification.type, {});
  await connection.sendNotification(protocol.DidOpenTextDocumentNotification.type, {
    textDocument: { uri, languageId: 'tnsnames', version: 1, text },
  });
  const { diagnostics } = await published;
  assert.deepStrictEqual(
    diagnostics.map(({ code }) => code),
    ['unknown-key'],
  );

  const [action] = await connection.sendRequest(protocol.CodeActionRequest.type, {
    textDocument: { uri },
    range: diagnostics[0].range,
    context: { diagnostics, only: ['quickfix'] },
  });
  assert.deepStrictEqual(action.diagnostics, diagnostics);
  assert.strictEqual(action.edit.changes[uri][0].newText, '');
  const items = await connection.sendRequest(protocol.CompletionRequest.type, {
    textDocument: { uri },
    position: { line: 0, character: 35 },
  });
  assert.ok(items.some(({ label }) => label === 'WEIGHT'));

  await connection.sendRequest(protocol.ShutdownRequest.type);
  await connection.sendNotification(protocol.ExitNotification.type);
  assert.strictEqual(await ended, 0);
  connection.dispose();
});
