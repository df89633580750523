// The golden cases on the plug-in as WebAssembly: every result against tests/golden/hashes.txt,
// which all builds share.
//
//   node golden.mjs CASES HASHES WASM...     CASES: what golden_cases_json writes
import { readFileSync } from 'node:fs';
import { Plugin, givesPicture } from '../page/plugin.js';

const [casesFile, hashesFile, ...modules] = process.argv.slice(2);
const cases = readFileSync(casesFile, 'utf8').trim().split('\n').map((line) => JSON.parse(line));
const hashes = new Map(readFileSync(hashesFile, 'utf8').split('\n').filter((line) => line && !line.startsWith('#'))
  .map((line) => [line.slice(0, line.indexOf(' ')), line.slice(line.indexOf(' ') + 1)]));

const formOf = (name) => (name === 'buffer' ? 'buffer' : 'context');

function sourceOf(plugin, { form, width, height, words }) {
  const handle = plugin.newPicture(formOf(form), width, height);
  const view = new DataView(plugin.exports.memory.buffer, plugin.exports.picturePixels(handle));
  words.match(/.{8}/g).forEach((word, i) => view.setUint32(4 * i, parseInt(word, 16), form === 'buffer'));
  return handle;
}

const textOfPicture = (plugin, handle) => {
  if (!handle) return 'nil';
  const { width, height } = plugin.sizeOf(handle);
  return `${width}x${height}:${plugin.hashOf(handle)}`;
};

function textOfDouble(number) {
  if (Number.isNaN(number)) return 'nan';
  const view = new DataView(new ArrayBuffer(8));
  view.setFloat64(0, number);
  return view.getBigUint64(0).toString(16).padStart(16, '0');
}

function resultOf(plugin, test) {
  const method = plugin.find(test.method);
  plugin.setNewPictures(formOf(test.newPictures), 1 << 20);
  const objects = plugin.exports.objectCount();
  const source = test.source ? sourceOf(plugin, test.source) : null;
  plugin.exports.takeYields();
  const { result, outputs } = plugin.call(method, source ? [source, ...test.arguments] : test.arguments);
  const yields = plugin.exports.takeYields();
  const means = Object.entries(outputs).map(([name, value]) =>
    method.parameters.find((p) => p.name === name).type === 'double' ? textOfDouble(value) : value);
  const what = givesPicture(method) ? textOfPicture(plugin, result)
    : means.length ? means.join(',') : textOfPicture(plugin, source);
  const text = `code=${plugin.lastError()} yields=${yields} ${what}`;
  for (const handle of [source, givesPicture(method) && result]) {
    if (!handle) continue;
    if (plugin.exports.pictureLocks(handle) !== 0) throw new Error(`${test.name}: a lock is left`);
    plugin.giveUp(handle);
  }
  if (plugin.exports.objectCount() !== objects) throw new Error(`${test.name}: an object is left`);
  return text;
}

let failures = 0;
for (const file of modules) {
  const plugin = new Plugin(new WebAssembly.Module(readFileSync(file)));
  const level = file.endsWith('-plain.wasm') ? 'plain' : 'wasm';
  if (plugin.level() !== level) throw new Error(`${file}: the level is ${plugin.level()}`);
  let equal = 0;
  for (const test of cases) {
    const result = resultOf(plugin, test);
    if (result === hashes.get(test.name)) {
      ++equal;
    } else if (++failures < 20) {
      console.error(`${file}: ${test.name}\n  expected ${hashes.get(test.name)}\n  got      ${result}`);
    }
  }
  console.log(`${file}: ${equal} of ${hashes.size} results as everywhere`);
  if (equal !== hashes.size || cases.length !== hashes.size) ++failures;
}
process.exit(failures ? 1 : 0);
