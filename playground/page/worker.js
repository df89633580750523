// The worker: calls the plug-in, so that the page stays responsive, and writes PNG files. A call
// cannot be stopped from outside, so a cancel ends the worker.
import { Plugin, changesPicture, givesPicture, takesPicture } from './plugin.js';
import { kFacts } from './facts.js';
import { encodePng } from './png.js';
import { leavesPicture, valuesOf } from './chain.js';

/** The most pixels of a picture that the plug-in makes here; beyond, the host has no memory. */
const kMostMade = 128 << 20;
/**
 * How much of what the steps left is kept, so that only steps from the changed one on are called
 * again.
 */
const kMostKept = 48 << 20;
/** Pixels between two yields, unless the program wants more of them. */
const kPace = 1 << 18;
const kPauseBetweenReports = 50;

export class Runner {
  constructor(module, tell) {
    this.plugin = new Plugin(module, { onYield: () => this.yielded() });
    this.tell = tell;
    this.image = null;
    this.storage = null;
    this.kept = []; // of each step: { key, report, handle }; handle: 0 for none
    this.source = 0;
  }

  setSource(image) {
    this.forget();
    this.image = image;
    this.storage = null;
  }

  forget() {
    for (const { handle, borrowed } of this.kept) if (handle && !borrowed) this.plugin.giveUp(handle);
    this.kept = [];
    if (this.source) this.plugin.giveUp(this.source);
    this.source = 0;
  }

  // The source in the storage form of this run.
  prepare(storage) {
    if (this.storage === storage) return;
    this.forget();
    this.storage = storage;
    this.plugin.setNewPictures(storage, kMostMade);
    if (!this.image) return;
    this.source = this.plugin.makePicture(storage, this.image);
    if (!this.source) throw new Error('there is no memory for the picture');
  }

  /**
   * Runs { storage, steps, shownSteps }: a report for each step that was called, and the picture to
   * show.
   */
  run({ storage, steps, shownSteps = steps.length }) {
    this.prepare(storage);
    const same = this.kept.findIndex((kept, i) => i >= steps.length || kept.key !== keyOf(steps[i]));
    this.dropFrom(same < 0 ? this.kept.length : same);
    let picture = this.kept.length ? this.kept.at(-1).handle : this.source;
    for (let i = this.kept.length; i < steps.length; ++i) {
      if (i > 0 && this.failedAt(i - 1)) break;
      this.kept.push(this.step(steps[i], i, picture));
      picture = this.kept[i].handle;
    }
    const reports = this.kept.map(({ report }) => report);
    const last = Math.min(shownSteps, this.kept.length) - 1;
    const failed = last >= 0 && this.failedAt(last);
    const handle = last < 0 ? this.source : this.kept[last].handle;
    const image = failed || !handle ? null : this.plugin.imageOf(handle);
    this.dropTheMost();
    return { reports, image };
  }

  failedAt(index) {
    const { report } = this.kept[index];
    return report.error !== 0 || report.nil;
  }

  dropFrom(index) {
    for (const { handle, borrowed } of this.kept.splice(index)) {
      if (handle && !borrowed) this.plugin.giveUp(handle);
    }
  }

  // Keeps results from the first step on as long as there is room.
  dropTheMost() {
    let pixels = 0;
    const from = this.kept.findIndex(({ handle, borrowed }) => {
      if (!handle || borrowed) return false;
      const { width, height } = this.plugin.sizeOf(handle);
      pixels += width * height;
      return pixels > kMostKept;
    });
    if (from >= 0) this.dropFrom(from);
  }

  step({ method: name, given }, index, picture) {
    const { plugin } = this;
    const method = plugin.find(name);
    const taken = takesPicture(method) ? picture : 0;
    const size = taken ? plugin.sizeOf(taken) : { width: 0, height: 0 };
    const values = valuesOf(plugin, method, given, size);
    const inPlace = taken && changesPicture(method);
    const target = inPlace ? plugin.copyOf(taken) : taken;
    if (inPlace && !target) throw new Error('there is no memory for a copy of the picture');

    const words = method.parameters.map((parameter) => {
      if (parameter.type === 'picture') return target;
      if (parameter.name === 'yield' && !(values.yield > 0)) return kPace;
      return values[parameter.name] ?? 0;
    });
    this.begin(index, kFacts[method.name].passes * this.workOf(size, values), words[method.parameters.length - 1]);
    const start = performance.now();
    const { result, outputs } = plugin.call(method, words);
    const milliseconds = performance.now() - start;
    // A call of the error code itself says 0 here, as the first call of a program would.
    const error = plugin.lastError();

    const report = { method: name, values, error, message: plugin.message(error), milliseconds, from: size };
    let handle = target, borrowed = !inPlace;
    if (givesPicture(method)) {
      handle = result;
      borrowed = false;
      report.nil = !result;
    } else if (method.result) {
      report.result = result;
    }
    if (Object.keys(outputs).length) report.outputs = outputs;
    if (handle && leavesPicture(method)) Object.assign(report, plugin.sizeOf(handle));
    return { key: keyOf({ method: name, given }), report, handle, borrowed };
  }

  // ---- Progress ----

  workOf(size, values) {
    return Math.max(size.width * size.height, (values.width ?? 0) * (values.height ?? 0), 1);
  }

  begin(step, total, pace) {
    this.progress = { step, total, pace, done: 0, last: performance.now() };
  }

  yielded() {
    const { progress } = this;
    progress.done += progress.pace;
    const now = performance.now();
    if (now - progress.last < kPauseBetweenReports) return;
    progress.last = now;
    this.tell({ kind: 'progress', step: progress.step, part: Math.min(progress.done / progress.total, 0.99) });
  }
}

const keyOf = (step) => JSON.stringify([step.method, Object.entries(step.given).map(([k, v]) => [k, String(v)])]);

/** Answers the page's messages; each has an id, and gets one answer with it. */
export function serve(port) {
  let runner = null;
  const answers = {
    load: ({ wasm }) => {
      runner = new Runner(new WebAssembly.Module(wasm), (message) => port.postMessage(message));
      return { level: runner.plugin.level() };
    },
    source: ({ image }) => runner.setSource(image),
    run: ({ job }) => runner.run(job),
    encode: async ({ image }) => ({ bytes: await encodePng(image) }),
  };
  port.onmessage = async ({ data }) => {
    try {
      const answer = (await answers[data.kind](data)) ?? {};
      const moved = [answer.image?.data.buffer, answer.bytes?.buffer].filter(Boolean);
      port.postMessage({ kind: 'answer', id: data.id, answer }, moved);
    } catch (error) {
      port.postMessage({ kind: 'failure', id: data.id, message: String(error?.message ?? error) });
    }
  };
}
