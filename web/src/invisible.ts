// What is invisible would make a text look like another one.

// The characters that kztns escapes, and the other ones that Unicode has for formats. Line
// feeds and tabs stay.
export const invisible =
  /(?![\n\t])[\0-\x1f\x7f-\xa0\u061c\u200b-\u200f\u2028-\u202f\u2060-\u206f\ufeff\ufff9-\ufffb\ufffe\uffff\p{Cf}]/gu;

// A text of the engine as it is shown: invisible characters byte by byte, as kztns shows them.
export function visible(text: string): string {
  return text.replace(invisible, (character) =>
    Array.from(new TextEncoder().encode(character))
      .map((byte) => `\\x${byte.toString(16).padStart(2, '0')}`)
      .join(''),
  );
}

// A text from elsewhere, where a backslash before an "x" and two digits is none of kztns yet.
// Its own texts have that as \x5c already.
export function withEscapedBackslashes(text: string): string {
  return text.replace(/\\(?=x[0-9a-f]{2})/g, '\\x5c');
}
