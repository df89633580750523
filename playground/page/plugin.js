// Loads the plug-in as WebAssembly, reads its methods from the table that it registers, and calls
// them by their declarations, as a host program does.

/** "name(extends p as picture, ByRef x as double, ...) as type" as an object. */
export function parseDeclaration(text) {
  const shape = /^\s*(\w+)\s*\((.*)\)\s*(?:as\s+(\w+))?\s*$/i.exec(text);
  if (!shape) throw new Error(`malformed declaration "${text}"`);
  const parameters = shape[2].trim() === '' ? [] : shape[2].split(',').map((part) => {
    const words = /^\s*(extends\s+)?(ByRef\s+)?(\w+)\s+as\s+(\w+)\s*$/i.exec(part);
    if (!words) throw new Error(`malformed parameter "${part}"`);
    return { name: words[3], type: words[4].toLowerCase(), byRef: Boolean(words[2]), extends: Boolean(words[1]) };
  });
  return { name: shape[1], declaration: text, parameters, result: shape[3] ? shape[3].toLowerCase() : null };
}

export const shortName = (name) => name.replace(/^LMX_/, '');
export const takesPicture = (method) => method.parameters.length > 0 && method.parameters[0].type === 'picture';
export const givesPicture = (method) => method.result === 'picture';
/** Called for what it does to its picture. */
export const changesPicture = (method) =>
  takesPicture(method) && method.result === null && !method.parameters.some((parameter) => parameter.byRef);
/** The parameters that the caller chooses. */
export const inputsOf = (method) => method.parameters.filter((p) => p.type !== 'picture' && !p.byRef);

export class Plugin {
  /** `module` is a compiled one; `onYield` is called at each yield. */
  constructor(module, { onYield = () => {} } = {}) {
    const imports = {
      page: {
        yielded: onYield,
        complain: (text, length) => {
          throw new Error(`the plug-in broke the host's contract: ${this.text(text, length)}`);
        },
      },
      // The C library writes only a failed assertion through this.
      wasi_snapshot_preview1: { fd_close: () => 8, fd_seek: () => 8, fd_write: () => 8 },
    };
    this.exports = new WebAssembly.Instance(module, imports).exports;
    this.exports._initialize();
    this.table = this.exports.__indirect_function_table;
    this.methods = this.readModule(this.exports.load());
    this.facts = JSON.parse(this.text(this.exports.factsData(), this.exports.factsLength()));
  }

  words(address, count) {
    return new Uint32Array(this.exports.memory.buffer, address, count);
  }

  bytes(address, count) {
    return new Uint8Array(this.exports.memory.buffer, address, count);
  }

  text(address, length) {
    return new TextDecoder().decode(this.bytes(address, length));
  }

  zeroEnded(address) {
    const bytes = new Uint8Array(this.exports.memory.buffer);
    return this.text(address, bytes.indexOf(0, address) - address);
  }

  // The records of HostInterface.h, which are 32-bit words here.
  readModule(address) {
    const [, , methods, count] = this.words(address, 4);
    return Array.from({ length: count }, (_, i) => {
      const [entry, , declaration] = this.words(methods + 24 * i, 3);
      return { ...parseDeclaration(this.zeroEnded(declaration)), entry };
    });
  }

  /** The level of the kernels in use. */
  level() {
    return this.zeroEnded(this.exports.levelName());
  }

  /** By name, with or without LMX_, in upper or lower case. */
  find(name) {
    const wanted = name.toLowerCase();
    return this.methods.find((m) => [wanted, `lmx_${wanted}`].includes(m.name.toLowerCase()));
  }

  /**
   * Calls a method with values in the declared order: numbers, booleans, picture handles (0 is
   * nil), and for ByRef what it holds before. Gives { result, outputs }: the handle, number or
   * text, and the ByRef values by name.
   */
  call(method, values) {
    const places = [];
    const words = method.parameters.map((parameter, i) => {
      if (!parameter.byRef) return typeof values[i] === 'boolean' ? Number(values[i]) : values[i];
      const address = this.exports.allocate(8);
      places.push({ parameter, address });
      const view = new DataView(this.exports.memory.buffer);
      if (parameter.type === 'double') view.setFloat64(address, values[i] ?? 0, true);
      else view.setInt32(address, values[i] ?? 0, true);
      return address;
    });
    const given = this.table.get(method.entry)(...words);
    const view = new DataView(this.exports.memory.buffer);
    const outputs = {};
    for (const { parameter, address } of places) {
      const isDouble = parameter.type === 'double';
      outputs[parameter.name] = isDouble ? view.getFloat64(address, true) : view.getInt32(address, true);
      this.exports.release(address);
    }
    return { result: method.result === 'string' ? this.takeText(given) : given, outputs };
  }

  takeText(handle) {
    const text = this.text(this.exports.textData(handle), this.exports.textLength(handle));
    this.exports.giveUp(handle);
    return text;
  }

  lastError() {
    return this.call(this.find('GetLastError'), []).result;
  }

  message(code) {
    return this.call(this.find('GetErrorMessage'), [code]).result;
  }

  // ---- Pictures: a handle is the program's reference, given up by `giveUp` ----

  setNewPictures(form, mostPixels) {
    this.exports.setNewPictures(form === 'buffer' ? 1 : 0, mostPixels);
  }

  /**
   * Of straight pixels { width, height, data: red, green, blue, alpha }; 0 if there is no memory.
   */
  makePicture(form, image) {
    const handle = this.newPicture(form, image.width, image.height);
    const address = handle && this.exports.allocate(image.data.length);
    if (!address) {
      if (handle) this.giveUp(handle);
      return 0;
    }
    this.bytes(address, image.data.length).set(image.data);
    this.exports.setStraight(handle, address);
    this.exports.release(address);
    return handle;
  }

  newPicture(form, width, height) {
    return this.exports.newPicture(form === 'buffer' ? 1 : 0, width, height);
  }

  sizeOf(handle) {
    return { width: this.exports.pictureWidth(handle), height: this.exports.pictureHeight(handle) };
  }

  /** A copy of the picture as straight pixels. */
  imageOf(handle) {
    const { width, height } = this.sizeOf(handle);
    const size = 4 * width * height;
    const address = this.exports.allocate(size);
    if (!address) throw new Error('there is no memory to show the picture');
    this.exports.getStraight(handle, address);
    const data = new Uint8ClampedArray(this.exports.memory.buffer, address, size).slice();
    this.exports.release(address);
    return { width, height, data };
  }

  copyOf(handle) {
    const { width, height } = this.sizeOf(handle);
    const copy = this.newPicture(this.exports.pictureIsBuffer(handle) ? 'buffer' : 'context', width, height);
    if (!copy) return 0;
    const from = this.exports.picturePixels(handle);
    this.words(this.exports.picturePixels(copy), width * height).set(this.words(from, width * height));
    return copy;
  }

  giveUp(handle) {
    this.exports.giveUp(handle);
  }

  hashOf(handle) {
    return BigInt.asUintN(64, this.exports.pictureHash(handle)).toString(16).padStart(16, '0');
  }

  /**
   * The value of an argument that is left out, where it is computed. `given` are the others' values
   * by name.
   */
  computeFallback(method, argument, size, given) {
    const index = this.facts.findIndex((facts) => facts.name === method.name);
    const names = this.facts[index].arguments.map((a) => a.name);
    const address = this.exports.allocate(8 * names.length);
    const view = new DataView(this.exports.memory.buffer);
    names.forEach((name, i) => {
      const value = typeof given[name] === 'number' && name !== argument ? given[name] : NaN;
      view.setFloat64(address + 8 * i, value, true);
    });
    const place = names.indexOf(argument);
    const value = this.exports.computeFallback(index, place, size.width, size.height, address);
    this.exports.release(address);
    return value;
  }

  /** The test chart as straight pixels. */
  chart() {
    const width = this.exports.chartWidth(), height = this.exports.chartHeight();
    const address = this.exports.allocate(4 * width * height);
    this.exports.drawChart(address);
    const data = new Uint8ClampedArray(this.exports.memory.buffer, address, 4 * width * height).slice();
    this.exports.release(address);
    return { width, height, data };
  }
}
