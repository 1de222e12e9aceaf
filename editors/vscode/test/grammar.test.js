// What the grammar calls the words of a names file, and that it knows every key.
const assert = require('node:assert');
const fs = require('node:fs');
const path = require('node:path');
const test = require('node:test');
const oniguruma = require('vscode-oniguruma');
const textmate = require('vscode-textmate');

const root = path.join(__dirname, '..');
const grammarFile = path.join(root, 'tnsnames.tmLanguage.json');

async function grammar() {
  const wasm = fs.readFileSync(require.resolve('vscode-oniguruma/release/onig.wasm'));
  await oniguruma.loadWASM(wasm.buffer.slice(wasm.byteOffset, wasm.byteOffset + wasm.length));
  const registry = new textmate.Registry({
    onigLib: Promise.resolve({
      createOnigScanner: (patterns) => new oniguruma.OnigScanner(patterns),
      createOnigString: (text) => new oniguruma.OnigString(text),
    }),
    loadGrammar: async () =>
      textmate.parseRawGrammar(fs.readFileSync(grammarFile, 'utf8'), grammarFile),
  });
  return registry.loadGrammar('source.tnsnames');
}

const loaded = grammar();

// The innermost scope of each word that is asked for, without the grammar's own ending.
async function scopes(text, words) {
  const found = {};
  let stack = textmate.INITIAL;
  for (const line of text.split('\n')) {
    const result = (await loaded).tokenizeLine(line, stack);
    stack = result.ruleStack;
    for (const token of result.tokens) {
      const word = line.slice(token.startIndex, token.endIndex).trim();
      if (words.includes(word))
        found[word] = token.scopes[token.scopes.length - 1].replace(/\.tnsnames$/, '');
    }
  }
  return found;
}

test('words have their scopes', async () => {
  const text = [
    'IFILE = other.ora',
    'sales = # an entry',
    '  (DESCRIPTION =',
    '    (Address_List = (KZLB_STRATEGY = ROTATION)(ADDRESS = (HOST = h#1)(PORT = 2881)))',
    '    (CONNECT_DATA = (SERVICE_NAME = shop)(SERVER = DEDICATED)))',
    'KZCISYSTEMVARIABLES = (LOG_LEVEL = WARN)',
  ].join('\n');
  const expected = {
    IFILE: 'keyword.control.include',
    'other.ora': 'string.unquoted.path',
    sales: 'entity.name.section',
    'an entry': 'comment.line.number-sign',
    DESCRIPTION: 'keyword.control.block',
    Address_List: 'keyword.control.block',
    KZLB_STRATEGY: 'variable.other.property',
    ROTATION: 'constant.language',
    'h#1': 'string.unquoted',
    2881: 'constant.numeric.integer',
    shop: 'string.unquoted',
    SERVER: 'variable.other.unknown',
    KZCISYSTEMVARIABLES: 'support.constant.reserved',
    WARN: 'string.unquoted',
  };
  assert.deepStrictEqual(await scopes(text, Object.keys(expected)), expected);
});

test('quotes hold everything', async () => {
  const found = await scopes('a = (DESCRIPTION = (CONNECT_DATA = (SID = "x) # (y")))\nb = (DESCRIPTION =', [
    'x) # (y',
    'b',
  ]);
  assert.deepStrictEqual(found, { 'x) # (y': 'string.quoted.double', b: 'entity.name.section' });
});

test('a stray parenthesis stands out', async () => {
  assert.deepStrictEqual(await scopes(')', [')']), { ')': 'invalid.illegal.stray' });
});

test('the extension is complete', () => {
  const manifest = JSON.parse(fs.readFileSync(path.join(root, 'package.json'), 'utf8'));
  for (const file of [
    manifest.main,
    manifest.contributes.grammars[0].path,
    manifest.contributes.languages[0].configuration,
  ])
    assert.ok(fs.existsSync(path.join(root, file)), file);
});
