// The page's side of the worker. At any time one run is under way and at most one waits, the
// newest: whoever drags a slider sees as many results as the machine can give, and never an old one
// last.

/** A run that was ended by `cancel`, or failed. */
export class Cancelled extends Error {}

export class Engine {
  /**
   * `makeWorker` gives a new worker, `wasm` are the bytes of the plug-in; `onProgress` gets { step,
   * part }.
   */
  constructor(makeWorker, wasm, onProgress = () => {}) {
    Object.assign(this, { makeWorker, wasm, onProgress });
    this.source = null;
    this.ids = 0;
    this.start();
  }

  start() {
    this.open = new Map();
    this.running = null;
    this.waiting = null;
    this.worker = this.makeWorker();
    this.worker.onmessage = ({ data }) => this.receive(data);
    this.worker.onerror = (event) => this.restart(new Error(event.message || 'the worker stopped'));
    this.ready = this.request('load', { wasm: this.wasm });
    this.ready.catch(() => {});
    if (this.source) this.request('source', { image: this.source }).catch(() => {});
  }

  receive(message) {
    if (message.kind === 'progress') {
      this.onProgress(message);
      return;
    }
    const { resolve, reject } = this.open.get(message.id) ?? {};
    this.open.delete(message.id);
    if (message.kind === 'answer') {
      resolve?.(message.answer);
    } else {
      // What failed inside may have left a picture locked: from here on with a fresh plug-in.
      const error = new Error(message.message);
      reject?.(error);
      this.restart(error);
    }
  }

  restart(error) {
    this.worker.terminate();
    const { open, waiting } = this;
    this.start();
    for (const { reject } of open.values()) reject(error);
    waiting?.reject(error);
  }

  request(kind, fields) {
    const id = ++this.ids;
    return new Promise((resolve, reject) => {
      this.open.set(id, { resolve, reject });
      this.worker.postMessage({ kind, id, ...fields });
    });
  }

  /** The picture that chains begin with; null for none. */
  setSource(image) {
    this.source = image;
    return this.request('source', { image });
  }

  /** Runs a job; gives the answer, or null if a newer job took its place before it began. */
  run(job) {
    this.waiting?.resolve(null);
    this.waiting = null;
    if (!this.running) return this.begin(job);
    return new Promise((resolve, reject) => {
      this.waiting = { job, resolve, reject };
    });
  }

  begin(job) {
    const running = this.request('run', { job });
    this.running = running;
    const next = () => {
      if (this.running !== running) return;
      this.running = null;
      const { waiting } = this;
      this.waiting = null;
      if (waiting) this.begin(waiting.job).then(waiting.resolve, waiting.reject);
    };
    running.then(next, next);
    return running;
  }

  get isBusy() {
    return this.running !== null;
  }

  encode(image) {
    return this.request('encode', { image });
  }

  cancel() {
    this.restart(new Cancelled('cancelled'));
  }

  end() {
    this.worker.terminate();
  }
}
