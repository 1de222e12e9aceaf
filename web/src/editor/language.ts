// Colours of names, keys and values. What is wrong with them the findings say.
import { LanguageSupport, StreamLanguage, type StringStream } from '@codemirror/language';
import { tags } from '@lezer/highlight';
import { blocks } from 'words';

interface State {
  depth: number; // of open parentheses
  expects: 'key' | 'value';
}

const word = /^[^\s()=#"]+/;

function readPunctuation(stream: StringStream, state: State): string | null {
  switch (stream.next()) {
    case '(':
      state.depth += 1;
      state.expects = 'key';
      return 'paren';
    case ')':
      state.depth = Math.max(state.depth - 1, 0);
      state.expects = 'key';
      return 'paren';
    case '=':
      state.expects = 'value';
      return 'operator';
    case '"':
      stream.match(/^[^"]*"?/);
      return 'string';
    default:
      return null;
  }
}

function nameOf(text: string, state: State): string {
  if (state.depth === 0) return state.expects === 'key' || /^[^\d]/.test(text) ? 'entry' : 'string';
  if (state.expects === 'key') return blocks.includes(text.toUpperCase()) ? 'block' : 'key';
  return /^[+-]?\d+$/.test(text) ? 'number' : 'string';
}

const language = StreamLanguage.define<State>({
  name: 'tnsnames',
  startState: () => ({ depth: 0, expects: 'key' }),
  copyState: (state) => ({ ...state }),
  token(stream, state) {
    if (stream.eatSpace()) return null;
    const before = stream.pos === 0 ? ' ' : stream.string.charAt(stream.pos - 1);
    if (stream.peek() === '#' && /[\s()="]/.test(before)) {
      stream.skipToEnd();
      return 'comment';
    }
    const text = stream.match(word) as RegExpMatchArray | null;
    return text === null ? readPunctuation(stream, state) : nameOf(text[0], state);
  },
  tokenTable: {
    entry: tags.heading,
    block: tags.keyword,
    key: tags.propertyName,
    paren: tags.paren,
  },
  languageData: {
    commentTokens: { line: '#' },
    closeBrackets: { brackets: ['(', '"'] },
  },
});

export const tnsnames = () => new LanguageSupport(language);
