// Archives of files that are stored as they are: PNG files would not get smaller.
import { crc32 } from './png.js';

const kUtf8Names = 0x0800;

// The fields that a file's header and its entry in the directory share, from "version needed" on.
function fields(view, at, file) {
  view.setUint16(at, 20, true);
  view.setUint16(at + 2, kUtf8Names, true);
  view.setUint16(at + 8, 0x0021, true);
  view.setUint32(at + 10, file.crc, true);
  view.setUint32(at + 14, file.bytes.length, true);
  view.setUint32(at + 18, file.bytes.length, true);
  view.setUint16(at + 22, file.name.length, true);
}

function header(file) {
  const bytes = new Uint8Array(30 + file.name.length);
  const view = new DataView(bytes.buffer);
  view.setUint32(0, 0x04034b50, true);
  fields(view, 4, file);
  bytes.set(file.name, 30);
  return bytes;
}

function entry(file, offset) {
  const bytes = new Uint8Array(46 + file.name.length);
  const view = new DataView(bytes.buffer);
  view.setUint32(0, 0x02014b50, true);
  view.setUint16(4, 20, true);
  fields(view, 6, file);
  view.setUint32(42, offset, true);
  bytes.set(file.name, 46);
  return bytes;
}

/** `files` are { name, bytes }. Names that come twice get a number. */
export function makeZip(files) {
  const names = uniqueNames(files.map((file) => file.name));
  const parts = [], directory = [];
  let offset = 0, directorySize = 0;
  files.forEach(({ bytes }, i) => {
    const file = { name: new TextEncoder().encode(names[i]), bytes, crc: crc32(bytes) };
    const head = header(file), listed = entry(file, offset);
    parts.push(head, bytes);
    directory.push(listed);
    offset += head.length + bytes.length;
    directorySize += listed.length;
  });
  const end = new Uint8Array(22);
  const view = new DataView(end.buffer);
  view.setUint32(0, 0x06054b50, true);
  view.setUint16(8, files.length, true);
  view.setUint16(10, files.length, true);
  view.setUint32(12, directorySize, true);
  view.setUint32(16, offset, true);
  return new Blob([...parts, ...directory, end], { type: 'application/zip' });
}

export function uniqueNames(names) {
  const taken = new Set();
  return names.map((name) => {
    let candidate = name;
    for (let n = 2; taken.has(candidate); ++n) candidate = name.replace(/(\.[^.]*)?$/, ` ${n}$1`);
    taken.add(candidate);
    return candidate;
  });
}
