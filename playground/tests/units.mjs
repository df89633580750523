// The page's own logic in Node: what is said about methods against what they declare, links, lines
// of code, files.
//
//   node --test units.mjs        LMX_WASM: the plug-in as WebAssembly
import assert from 'node:assert/strict';
import { readFileSync } from 'node:fs';
import { test } from 'node:test';
import { Plugin, inputsOf, parseDeclaration } from '../page/plugin.js';
import { factsOf, kFacts, kGroups, selectedPixels, startOf } from '../page/facts.js';
import { fromAddress, isPossible, kEmptyChain, toAddress, valuesOf, withAdded, withMoved } from '../page/chain.js';
import { commandOf, exampleOf, linesOf } from '../page/program.js';
import { parseValue, programText, valueText } from '../page/values.js';
import { encodePng } from '../page/png.js';
import { makeZip, uniqueNames } from '../page/zip.js';
import { sizeInHeader } from '../page/files.js';
import { Runner } from '../page/worker.js';
import { Cancelled, Engine } from '../page/engine.js';

const module = new WebAssembly.Module(readFileSync(process.env.LMX_WASM));
const plugin = new Plugin(module);
const find = (name) => plugin.find(name);
const kSize = { width: 300, height: 200 };

test('every registered method has facts, of exactly the arguments that a caller gives', () => {
  assert.deepEqual(Object.keys(kFacts).sort(), plugin.methods.map((m) => m.name).sort());
  for (const method of plugin.methods) {
    const { group, arguments: facts } = kFacts[method.name];
    assert.ok(kGroups.includes(group), method.name);
    assert.deepEqual(Object.keys(facts).sort(), inputsOf(method).map((p) => p.name).sort(), method.name);
    for (const { name, type } of inputsOf(method)) {
      const { min, max, step, start } = factsOf(method.name, name, kSize);
      const isNumber = type === 'integer' || type === 'double';
      assert.equal(typeof min === 'number' && min < max && step > 0, isNumber, `${method.name} ${name}`);
      if (type === 'integer') assert.ok([min, max, step].every(Number.isInteger), `${method.name} ${name}`);
      if (start !== undefined && isNumber) assert.ok(start >= min && start <= max, `${method.name} ${name}: start`);
    }
  }
});

test('the texts are those of the tool, for every argument', () => {
  assert.deepEqual(plugin.facts.map((f) => f.name).sort(), plugin.methods.map((m) => m.name).sort());
  for (const method of plugin.methods) {
    const words = plugin.facts.find((f) => f.name === method.name);
    assert.deepEqual(words.arguments.map((a) => a.name), method.parameters.map((p) => p.name));
  }
});

test('both ends of every slider are within the bounds of the method, and what it starts with does something', () => {
  const width = 40, height = 30;
  const data = new Uint8ClampedArray(4 * width * height).map((_, i) => (i % 4 === 3 ? 255 : (i * 37) % 251));
  for (const method of plugin.methods.filter((m) => m.parameters.length && m.result !== 'string')) {
    const takes = method.parameters[0].type === 'picture';
    const size = takes ? { width, height } : { width: 0, height: 0 };
    const run = (given) => {
      plugin.setNewPictures('context', 1 << 24);
      const source = takes ? plugin.makePicture('context', { width, height, data }) : 0;
      const values = valuesOf(plugin, method, given, size);
      plugin.call(method, method.parameters.map((p) => (p.type === 'picture' ? source : values[p.name] ?? 0)));
      return plugin.lastError();
    };
    assert.equal(run(startOf(method.name, size)), 0, method.name);
    for (const { name, type } of inputsOf(method)) {
      const facts = factsOf(method.name, name, { width, height });
      if (facts.area || !['integer', 'double'].includes(type)) continue;
      for (const end of [facts.min, facts.max]) {
        assert.equal(run({ ...startOf(method.name, size), [name]: end }), 0, `${method.name} ${name}=${end}`);
      }
    }
  }
});

test('a malformed declaration is refused', () => {
  for (const text of ['', 'a', 'a(b)', 'a(b as)', 'a(extends as picture', 'a() as']) {
    assert.throws(() => parseDeclaration(text), text);
  }
});

test('values are read as people write them, and only those', () => {
  const table = [
    ['integer', '12', 12], ['integer', ' -7 ', -7], ['integer', '−7', -7], ['integer', '2147483647', 2147483647],
    ['integer', '2147483648', undefined], ['integer', '1.5', undefined], ['integer', '', undefined], ['integer', '1e3', undefined],
    ['double', '.5', 0.5], ['double', '1e3', 1000], ['double', 'nan', NaN], ['double', '-inf', -Infinity], ['double', '1,5', undefined],
    ['double', '12.', 12], ['boolean', 'yes', true], ['boolean', 'no', false], ['boolean', 'maybe', undefined],
    ['color', '#2a6f97', 0x002a6f97], ['color', '&c2a6f9780', 0x802a6f97], ['color', '&C2a6f97', 0x002a6f97], ['color', '#1aF', 0x0011aaff], ['color', '#2a6f9780', undefined], ['color', '&hFF000000', 0xff000000], ['color', '#12345', undefined],
  ];
  for (const [type, text, value] of table) assert.deepEqual(parseValue(type, text), value, `${type} ${text}`);
  for (const value of [0, -0, 0.1, 12.5, 1e300, 5e-324, Infinity, -Infinity, NaN, -359.99999999999994]) {
    assert.ok(Object.is(parseValue('double', valueText('double', value)), value), String(value));
  }
  for (const value of [0, 0xff000000, 0x80abcdef, 0x00000001]) assert.equal(parseValue('color', valueText('color', value)), value);
  assert.equal(programText('double', 7), '7.0');
  assert.equal(programText('double', 7.5), '7.5');
  assert.equal(programText('color', 0xff000000), '&hFF000000');
  assert.equal(programText('boolean', false), 'False');
});

test('an address brings back the chain that it was made of', () => {
  let chain = { ...kEmptyChain, storage: 'buffer' };
  for (const method of ['LMX_AdjustHSV', 'LMX_ShearVertical', 'LMX_GetAverageRGB', 'LMX_Trim']) {
    const given = Object.fromEntries(inputsOf(find(method)).map(({ name, type }, i) =>
      [name, { integer: i - 3, double: 0.25 * i - 1, boolean: true, color: 0x80123456 }[type]]));
    chain = withAdded(chain, { method, given });
  }
  const address = toAddress(chain, find, true);
  assert.match(address, /^[\w:=,./@+-]+$/); // nothing that a link would have to escape
  assert.deepEqual(fromAddress(address, find), { chain, chart: true });
  const odd = withAdded(kEmptyChain, { method: 'LMX_FreeRotateByShear', given: { rotation: NaN } });
  assert.deepEqual(fromAddress(toAddress(odd, find, false), find).chain, odd);
});

test('what an address says that means nothing here is left out', () => {
  const { chain } = fromAddress('Nothing/Stretch:width=x,height=20,depth=3/%E0%A4%A/MakeGradient/@what', find);
  assert.deepEqual(chain.steps, [{ method: 'LMX_Stretch', given: { height: 20 } }]);
});

test('a method that takes no picture is the first of a chain, and a report the only one', () => {
  const chainOf = (...methods) => methods.reduce((chain, m) => withAdded(chain, { method: find(m).name, given: {} }), kEmptyChain);
  assert.ok(isPossible(chainOf('MakeGradient', 'Stretch'), find));
  assert.ok(!isPossible(withMoved(chainOf('MakeGradient', 'Stretch'), 0, 1), find));
  assert.ok(!isPossible(chainOf('GetErrorMessage', 'Stretch'), find));
});

const callsOf = (...steps) => steps.map(([name, given]) => {
  const method = find(name);
  return { method, given, values: valuesOf(plugin, method, given, kSize) };
});

test('lines of code are those that lmx prints', () => {
  assert.deepEqual(linesOf(callsOf(['FreeRotateByShear', { rotation: 7.5 }], ['Stretch', { width: 30 }])), [
    'result = p.LMX_FreeRotateByShear(7.5, &hFF000000, 0)', 'result = result.LMX_Stretch(30, 20, 0)']);
  assert.deepEqual(linesOf(callsOf(['AdjustRGB_InPlace', { red_delta: 9 }], ['GetAverageRGB', {}])), [
    'p.LMX_AdjustRGB_InPlace(0, 0, 300, 200, 9, 0, 0, 0)', 'p.LMX_GetAverageRGB(0, 0, 300, 200, red, green, blue, 0)']);
  assert.deepEqual(linesOf(callsOf(['GetErrorMessage', { errorCode: 33 }])), ['result = LMX_GetErrorMessage(33)']);
});

test('the example declares each name once and looks at every call', () => {
  const text = exampleOf(callsOf(['Stretch', {}], ['Trim', {}], ['GetAverageHSV', {}], ['GetAverageRGB', {}]));
  assert.equal(text.match(/Dim result/g).length, 1);
  assert.match(text, /Dim hue_degrees, saturation, brightness As Double\n/);
  assert.match(text, /Dim red, green, blue As Integer\n/);
  assert.equal(text.match(/If result = Nil Then/g).length, 2);
  assert.equal(text.match(/If LMX_GetLastError\(\) <> 0 Then/g).length, 2);
  assert.equal(text.match(/^End If$/gm).length, 4);
});

test('a command line quotes what a shell would take for something else', () => {
  const steps = callsOf(['ShearHorizontal', { shear: -0.3, frame_color: 0x002a6f97 }], ['Stretch', { width: 40 }]);
  assert.equal(commandOf(steps, { file: "it's = 1.png", storage: 'buffer' }),
    "lmx ShearHorizontal './it'\\''s = 1.png' shear=-0.3 frame_color='#2a6f97' + Stretch width=40 -o out.png --storage buffer");
  assert.equal(commandOf(callsOf(['GetAverageRGB', {}]), { file: 'a.png', storage: 'context' }), 'lmx GetAverageRGB a.png');
});

test('a selection has the pixels of its clamped columns and rows, far ends included', () => {
  assert.equal(selectedPixels({ left: 0, top: 0, width: 300, height: 200 }, kSize), 300 * 200);
  assert.equal(selectedPixels({ left: 10, top: 10, width: 0, height: 4 }, kSize), 5);
  assert.equal(selectedPixels({ left: 500, top: -9, width: 10, height: 3 }, kSize), 1);
  assert.equal(selectedPixels({ left: 0, top: 0, width: -1, height: 3 }, kSize), 0);
});

const imageOf = (width, height, pixel) => {
  const data = new Uint8ClampedArray(4 * width * height);
  for (let i = 0; i < width * height; ++i) data.set(pixel(i), 4 * i);
  return { width, height, data };
};

test('a chain is run from the changed step on, and leaves nothing behind', () => {
  const runner = new Runner(module, () => {});
  const image = imageOf(30, 20, (i) => [i % 256, 100, 200, i % 200]);
  runner.setSource(image);
  const steps = [{ method: 'LMX_FlipRotate', given: { rotation: 90 } }, { method: 'LMX_AdjustRGB_InPlace', given: { red_delta: 30 } },
    { method: 'LMX_GetAverageRGB', given: {} }, { method: 'LMX_Stretch', given: { width: 7 } }];
  const job = (changed) => ({ storage: 'context', steps: changed });
  const first = runner.run(job(steps));
  assert.deepEqual(first.reports.map(({ error, width, height }) => [error, width, height]), [[0, 20, 30], [0, 20, 30], [0, 20, 30], [0, 7, 11]]);
  const changed = [...steps.slice(0, 3), { method: 'LMX_Stretch', given: { width: 9 } }];
  const second = runner.run(job(changed));
  assert.equal(second.reports[0], first.reports[0]); // not called again
  const fresh = new Runner(module, () => {});
  fresh.setSource(image);
  assert.deepEqual(fresh.run(job(changed)).image, second.image);
  assert.deepEqual(runner.run({ ...job(changed), shownSteps: 0 }).image.width, 30);
  runner.run({ storage: 'buffer', steps: [] });
  assert.equal(runner.plugin.exports.objectCount(), 1); // the source
});

test('a call that fails ends the chain', () => {
  const runner = new Runner(module, () => {});
  runner.setSource(imageOf(3, 3, () => [1, 2, 3, 255]));
  const { reports, image } = runner.run({ storage: 'context', steps: [
    { method: 'LMX_FlipRotate', given: { rotation: 360 } }, { method: 'LMX_Stretch', given: {} }] });
  assert.equal(image, null);
  assert.equal(reports.length, 1);
  assert.equal(reports[0].message, 'Rotate Error: "rotation" parameter is out of bounds');
  const huge = runner.run({ storage: 'context', steps: [{ method: 'LMX_Stretch', given: { width: 65000, height: 65000 } }] });
  assert.ok(huge.reports[0].nil || huge.reports[0].error);
});

test('the size in the head of a JPEG is found after whatever comes before it', () => {
  const segment = (marker, ...content) => [0xff, marker, (content.length + 2) >> 8, (content.length + 2) & 255, ...content];
  const frame = segment(0xc2, 8, 0x12, 0x34, 0x56, 0x78, 3);
  const bytes = Uint8Array.from([0xff, 0xd8, ...segment(0xe0, 1, 2, 3), ...segment(0xc4, 0xff, 0xc0), 0xff, ...frame, 0, 0, 0, 0]);
  assert.deepEqual(sizeInHeader(bytes), { width: 0x5678, height: 0x1234 });
  assert.equal(sizeInHeader(bytes.subarray(0, 12)), null);
  assert.equal(sizeInHeader(new Uint8Array(0)), null);
});

// A worker that answers when it is told to; what it was asked stays in `asked`.
class StillWorker {
  static made = [];
  asked = [];
  constructor() {
    StillWorker.made.push(this);
  }
  postMessage(message) {
    this.asked.push(message);
  }
  terminate() {
    this.isEnded = true;
  }
  answer(kind, reply = { kind: 'answer', answer: {} }) {
    const { id } = this.asked.find((message) => message.kind === kind && !message.isAnswered && (message.isAnswered = true));
    this.onmessage({ data: { id, ...reply } });
    return new Promise((resolve) => setTimeout(resolve));
  }
  jobs() {
    return this.asked.filter(({ kind }) => kind === 'run').map(({ job }) => job);
  }
}

test('of the runs that wait only the newest begins', async () => {
  const engine = new Engine(() => new StillWorker(), new ArrayBuffer(0));
  const worker = StillWorker.made.at(-1);
  const runs = ['first', 'second', 'third', 'fourth'].map((job) => engine.run(job));
  assert.deepEqual(worker.jobs(), ['first']);
  await worker.answer('run', { kind: 'answer', answer: 'one' });
  assert.deepEqual(worker.jobs(), ['first', 'fourth']);
  assert.ok(engine.isBusy);
  await worker.answer('run', { kind: 'answer', answer: 'four' });
  assert.ok(!engine.isBusy);
  assert.deepEqual(await Promise.all(runs), ['one', null, null, 'four']);
});

test('a cancel ends every run and starts a worker that has the picture; so does a failure', async () => {
  const engine = new Engine(() => new StillWorker(), new ArrayBuffer(0));
  engine.setSource('the picture').catch(() => {});
  for (const [end, error] of [[() => engine.cancel(), Cancelled],
    [() => StillWorker.made.at(-1).answer('run', { kind: 'failure', message: 'unreachable' }), /unreachable/]]) {
    const worker = StillWorker.made.at(-1);
    const runs = [assert.rejects(engine.run('first'), error), assert.rejects(engine.run('second'), error)];
    end();
    await Promise.all(runs);
    assert.ok(worker.isEnded && !engine.isBusy);
    const fresh = StillWorker.made.at(-1);
    assert.deepEqual(fresh.asked.map(({ kind, image }) => [kind, image]), [['load', undefined], ['source', 'the picture']]);
    const run = engine.run('third');
    await fresh.answer('run', { kind: 'answer', answer: 'three' });
    assert.equal(await run, 'three');
  }
});

test('PNG and zip files are those that others read', async () => {
  const image = imageOf(5, 3, (i) => [i, 2 * i, 255 - i, 17 * i]);
  const png = await encodePng(image);
  assert.deepEqual(sizeInHeader(png), { width: 5, height: 3 });
  assert.equal(png[25], 6);
  assert.equal((await encodePng(imageOf(5, 3, (i) => [i, i, i, 255])))[25], 2);
  const zip = new Uint8Array(await makeZip([{ name: 'a.png', bytes: png }, { name: 'a.png', bytes: png }]).arrayBuffer());
  assert.equal(new DataView(zip.buffer).getUint32(0, true), 0x04034b50);
  assert.deepEqual(uniqueNames(['a.png', 'a.png', 'b', 'b', 'a.png']), ['a.png', 'a 2.png', 'b', 'b 2', 'a 3.png']);
});
