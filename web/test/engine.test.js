// The engine alone, in node: one request, one answer.
import assert from 'node:assert/strict';
import test from 'node:test';

import { loadEngine } from '../build/engine.js';
import { engineFolder } from './support/places.js';

const uri = 'tnsnames.ora';
const text =
  'sales = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1))\n' +
  '  (CONNECT_DATA = (SERVICE_NAME = sales)(SERVER = DEDICATED)))\n';

test('the engine answers the requests of the page', async () => {
  const ask = await loadEngine(engineFolder);
  ask({ id: 1, method: 'initialize', params: { capabilities: {} } });
  ask({ method: 'textDocument/didOpen', params: { textDocument: { uri, version: 1, text } } });
  const [published, answer] = ask({ id: 2, method: 'kztns/check' });
  assert.deepEqual(
    published.params.diagnostics.map(({ code }) => code),
    ['unknown-key'],
  );
  assert.deepEqual(answer.result.severities, [1, 0, 0]);
  const [listed] = ask({ id: 3, method: 'kztns/entries' });
  assert.deepEqual(listed.result.entries, [
    { name: 'sales', line: 1, verdict: 'refused', link: '' },
  ]);
  const [why] = ask({
    id: 3,
    method: 'kztns/why',
    params: { textDocument: { uri }, identifier: 'Sales' },
  });
  assert.equal(why.result.outcome, 'not found');
  assert.equal(why.result.near.length, 1);
  const [refused] = ask({ id: 4, method: 'textDocument/nonsense', params: {} });
  assert.equal(refused.error.code, -32601);
});
