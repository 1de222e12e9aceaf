// Files in and out: bytes to a text and back.

export interface OpenedFile {
  name: string;
  text: string; // with line feeds alone
  lineEnd: '\n' | '\r\n';
  remark: string; // what of the file is not as it was; empty for nothing
  isExample?: true; // whether it is the page's own
}

const lineEndings = /\r\n?|\n/g;

function decode(bytes: Uint8Array): { text: string; remark: string } {
  const [first, second] = bytes;
  const utf16 =
    first === 0xff && second === 0xfe
      ? 'utf-16le'
      : first === 0xfe && second === 0xff
        ? 'utf-16be'
        : null;
  if (utf16 !== null)
    return {
      text: new TextDecoder(utf16).decode(bytes),
      remark:
        'The file is in UTF-16, in which lookups find nothing. It was converted; the download is UTF-8.',
    };
  try {
    // A byte order mark is part of what lookups read.
    return {
      text: new TextDecoder('utf-8', { fatal: true, ignoreBOM: true }).decode(bytes),
      remark: '',
    };
  } catch {
    return {
      text: new TextDecoder('windows-1252').decode(bytes),
      remark: 'The file is not in UTF-8. It is read as Windows-1252, and downloaded in UTF-8.',
    };
  }
}

// A line feed ends a line for lookups, and so it does in the editor.
export function openBytes(name: string, bytes: Uint8Array): OpenedFile {
  const { text, remark } = decode(bytes);
  const ends = new Set(text.match(lineEndings) ?? []);
  const lone = ends.has('\r')
    ? 'Carriage returns without line feeds are shown as ends of lines, but lookups do not end a line there: what the page says is about the text after this conversion.'
    : '';
  const mixed =
    ends.has('\r\n') && ends.has('\n')
      ? 'Some lines end with a carriage return and a line feed, others with a line feed alone: the download has line feeds alone.'
      : '';
  return {
    name,
    text: text.replace(lineEndings, '\n'),
    lineEnd: ends.has('\r\n') && !ends.has('\n') ? '\r\n' : '\n',
    remark: [remark, lone, mixed].filter(Boolean).join(' '),
  };
}

export async function readFile(file: File): Promise<OpenedFile> {
  return openBytes(file.name, new Uint8Array(await file.arrayBuffer()));
}

export function download(name: string, text: string, lineEnd: string): void {
  const content = lineEnd === '\n' ? text : text.replaceAll('\n', lineEnd);
  const url = URL.createObjectURL(new Blob([content], { type: 'application/octet-stream' }));
  const link = document.createElement('a');
  link.href = url;
  link.download = name;
  link.click();
  setTimeout(() => URL.revokeObjectURL(url), 10_000);
}
