// Names files of a size, in bytes.

// As people write them.
export function fileOfSize(size) {
  const parts = [];
  for (let length = 0, number = 0; length < size; number += 1) {
    const entry =
      `name${number} =\n  (DESCRIPTION =\n` +
      `    (ADDRESS = (PROTOCOL = TCP)(HOST = host${number}.example.com)(PORT = 2881))\n` +
      `    (CONNECT_DATA = (SERVICE_NAME = service${number}))\n  )\n\n`;
    parts.push(entry);
    length += entry.length;
  }
  return parts.join('');
}

// A file of entries in one line each, which are all laid out anew; every other one has what
// more is.
export function shortEntriesOfSize(size, more = '') {
  const parts = [];
  for (let length = 0, number = 0; length < size; number += 1) {
    const one = `n${number}=(DESCRIPTION=(ADDRESS=(HOST=h)(PORT=1))(CONNECT_DATA=(SID=s)${number % 2 ? more : ''}))\n`;
    parts.push(one);
    length += one.length;
  }
  return parts.join('');
}
