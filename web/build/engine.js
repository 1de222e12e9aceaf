// The engine in node: one message in, those that come of it out.
import { readFile } from 'node:fs/promises';
import { createRequire } from 'node:module';
import path from 'node:path';

export async function loadEngine(folder) {
  const createEngine = createRequire(import.meta.url)(path.join(folder, 'kztns_engine.js'));
  const engine = await createEngine({
    wasmBinary: await readFile(path.join(folder, 'kztns_engine.wasm')),
  });
  return (message) => {
    const bytes = Buffer.from(JSON.stringify({ jsonrpc: '2.0', ...message }));
    const place = engine._malloc(bytes.length);
    engine.HEAPU8.set(bytes, place);
    const answer = engine._kztns_answer(place, bytes.length);
    engine._free(place);
    const length = engine._kztns_answer_length();
    return JSON.parse(Buffer.from(engine.HEAPU8.subarray(answer, answer + length)).toString());
  };
}
