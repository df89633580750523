// The page: what is chosen, what is shown, and what happens when somebody does something.
import { Plugin, inputsOf, shortName, takesPicture } from './plugin.js';
import { areaOf, factsOf, startOf } from './facts.js';
import {
  fromAddress, isPossible, kEmptyChain, toAddress, valuesOf, withAdded, withGiven, withMoved, withStep, without,
} from './chain.js';
import { commandOf, exampleOf, linesOf } from './program.js';
import { makeZip } from './zip.js';
import { grouped, readPicture } from './files.js';
import { Cancelled, Engine } from './engine.js';
import { View } from './view.js';
import { argumentControl, icon, iconButton, make } from './controls.js';
import { fillGallery } from './gallery.js';
import { stateOf } from './reports.js';
import { coloured, copied, save } from './take.js';

const $ = (id) => document.getElementById(id);
const kPatience = 250; // milliseconds until a call under way shows
const kChartName = 'chart.png';


class App {
  constructor(plugin, makeEngine) {
    this.plugin = plugin;
    this.makeEngine = makeEngine;
    this.engine = makeEngine((progress) => this.showProgress(progress));
    this.find = (name) => plugin.find(name);
    this.pictures = []; // { name, read: () => Promise of an image }
    this.current = -1;
    this.image = null;
    this.chain = kEmptyChain;
    this.active = 0;
    this.reports = [];
    this.history = [{ chain: this.chain, active: 0 }];
    this.past = 0;
    this.tab = 'line';
    this.drawing = false; // of rectangles on the picture
    this.cards = [];
    this.view = new View(
      {
        canvas: $('stage'), divider: $('divider'), free: $('free'),
        loupe: { box: $('loupe'), canvas: $('loupe').firstChild, text: $('loupe').lastChild },
      },
      { onZoom: (scale, fits) => this.showZoom(scale, fits), onArea: (area, done) => this.takeArea(area, done) });
    this.furnish();
    this.listen();
    this.goToAddress();
  }

  // ---- Furniture ----

  furnish() {
    $('open').append(icon('open'), make('span', {}, 'Open'));
    $('chart').append(icon('chart'));
    $('add').append(icon('plus'), make('span', {}, 'Add a call'));
    $('copy').append(icon('copy'), make('span', {}, 'Copy'));
    $('link').append(icon('link'), make('span', {}, 'Link'));
    $('download').append(icon('download'), make('span', {}, 'PNG'));
    $('download').setAttribute('aria-label', 'Download the result as PNG');
    this.undoButton = iconButton('undo', 'Undo (Ctrl+Z)', () => this.travel(-1));
    this.redoButton = iconButton('redo', 'Redo (Ctrl+Shift+Z)', () => this.travel(1));
    $('bar').append(this.undoButton, this.redoButton,
      make('button', { type: 'button', className: 'icon-button letter', 'aria-label': 'Keys', title: 'Keys (?)', onclick: () => this.showKeys() }, '?'));

    const mode = (name, symbol, label) => iconButton(symbol, label, () => this.setMode(name), { 'data-mode': name });
    this.zoomText = make('button', { type: 'button', className: 'zoom', title: 'To 100 % (1)', onclick: () => this.view.zoomTo(1) });
    this.swapButton = iconButton('swap', 'Swap before and after (X)', () => this.swap(), { 'aria-pressed': 'false' });
    this.loupeButton = iconButton('loupe', 'Loupe (L)', () => this.toggleLoupe(), { 'aria-pressed': 'false' });
    $('tools').append(
      iconButton('minus', 'Zoom out (−)', () => this.view.zoomBy(-1)), this.zoomText,
      iconButton('plus', 'Zoom in (+)', () => this.view.zoomBy(1)), iconButton('fit', 'Fit (F)', () => this.view.zoomTo('fit')),
      make('i', {}),
      mode('split', 'split', 'Divider (D)'), mode('side', 'side', 'Side by side (S)'), mode('after', 'single', 'After alone (A)'),
      this.swapButton, this.loupeButton);
    this.setMode('split');

    this.tabs = Object.fromEntries([['line', 'Line'], ['example', 'Example'], ['lmx', 'lmx']].map(([name, label]) => [name,
      make('button', { type: 'button', role: 'tab', id: `tab-${name}`, 'aria-controls': 'code', onclick: () => this.setTab(name) }, label)]));
    const tablist = document.querySelector('.tabs');
    tablist.append(...Object.values(this.tabs));
    tablist.addEventListener('keydown', ({ key }) => {
      const way = { ArrowLeft: -1, ArrowRight: 1 }[key];
      if (!way) return;
      const names = Object.keys(this.tabs);
      const next = names[(names.indexOf(this.tab) + way + names.length) % names.length];
      this.setTab(next);
      this.tabs[next].focus();
    });
    this.setTab('line');
    for (const id of ['gallery', 'keys']) {
      $(id).querySelector('header').append(iconButton('close', 'Close', () => $(id).close()));
      $(id).addEventListener('click', (event) => event.target === $(id) && $(id).close());
    }
    this.engine.ready.then(({ level }) => {
      $('about').textContent = `The product’s own sources as WebAssembly, kernels of level “${level}”: results are those of the ` +
        '32-bit library, to the bit. Times are those of this browser.';
    }, () => {});
  }

  listen() {
    $('open').onclick = $('choose').onclick = () => $('file').click();
    $('file').onchange = () => {
      this.addFiles([...$('file').files]);
      $('file').value = '';
    };
    $('take-chart').onclick = $('chart').onclick = () => this.takeChart();
    $('add').onclick = () => this.chooseMethod(null);
    $('copy').onclick = () => this.copy($('code').textContent, $('copy'), 'Copy');
    $('link').onclick = () => this.copy(location.href, $('link'), 'Link');
    $('download').onclick = () => this.download().catch((error) => this.fail(error));
    $('cancel').onclick = () => this.cancel();
    document.querySelectorAll('input[name=storage]').forEach((input) => {
      input.onchange = () => this.change({ ...this.chain, storage: input.value }, true);
    });
    window.addEventListener('hashchange', () => this.goToAddress());
    window.addEventListener('paste', ({ clipboardData }) => {
      const files = [...clipboardData.files].filter((file) => file.type.startsWith('image/'));
      if (files.length) this.addFiles(files);
    });
    let depth = 0;
    const hasFiles = (event) => event.dataTransfer?.types.includes('Files');
    window.addEventListener('dragenter', (event) => {
      if (hasFiles(event) && ++depth) $('drop-here').hidden = false;
    });
    window.addEventListener('dragleave', (event) => {
      if (hasFiles(event) && --depth <= 0) $('drop-here').hidden = true;
    });
    window.addEventListener('dragover', (event) => event.preventDefault());
    window.addEventListener('drop', (event) => {
      event.preventDefault();
      depth = 0;
      $('drop-here').hidden = true;
      this.addFiles([...event.dataTransfer.files]);
    });
    window.addEventListener('keydown', (event) => this.key(event));
    matchMedia('(prefers-color-scheme: dark)').addEventListener('change', () => this.view.forgetColours());
  }

  kKeys = {
    '+': ['Zoom in', () => this.view.zoomBy(1)],
    '-': ['Zoom out', () => this.view.zoomBy(-1)],
    1: ['To 100 %', () => this.view.zoomTo(1)],
    f: ['Fit the picture', () => this.view.zoomTo('fit')],
    x: ['Swap before and after', () => this.swap()],
    d: ['Divider', () => this.setMode('split')],
    s: ['Side by side', () => this.setMode('side')],
    a: ['After alone', () => this.setMode('after')],
    l: ['Loupe', () => this.toggleLoupe()],
    o: ['Open pictures', () => $('file').click()],
    m: ['Add a call', () => this.chooseMethod(null)],
    '?': ['This list', () => this.showKeys()],
  };

  key(event) {
    if (event.key === 'Escape' && !$('busy').hidden) this.cancel();
    const inText = event.target.matches('input[type=text]');
    if ((event.ctrlKey || event.metaKey) && !inText) {
      const letter = event.key.toLowerCase();
      const way = letter === 'y' || (letter === 'z' && event.shiftKey) ? 1 : letter === 'z' ? -1 : 0;
      if (way) {
        event.preventDefault();
        this.travel(way);
      }
      return;
    }
    if (event.altKey || event.ctrlKey || event.metaKey || inText || document.querySelector('dialog[open]')) return;
    if (event.target.matches('input[type=range]') && /^[-+]$/.test(event.key)) return;
    const name = { '=': '+', 0: '1' }[event.key] ?? event.key.toLowerCase();
    const action = this.kKeys[name];
    if (!action || (document.body.classList.contains('landing') && !'o?'.includes(name))) return;
    event.preventDefault();
    action[1]();
  }

  showKeys() {
    const rows = [...Object.entries(this.kKeys).map(([key, [text]]) => [key.toUpperCase(), text]),
      ['Ctrl Z', 'Undo'], ['Ctrl Shift Z', 'Redo'], ['Ctrl V', 'Paste a picture'], ['Esc', 'Cancel a long call'],
      ['Arrows', 'Move the picture, the loupe or the divider'], ['Double click', 'Centre the divider'], ['Wheel', 'Zoom']];
    $('keys').querySelector('dl').replaceChildren(...rows.flatMap(([key, text]) =>
      [make('dt', {}, make('kbd', {}, key)), make('dd', {}, text)]));
    $('keys').showModal();
  }

  // ---- Pictures ----

  async addFiles(files) {
    if (!files.length) return;
    const first = this.pictures.length;
    const isFirstOfOwn = this.pictures.every(({ isChart }) => isChart);
    if (isFirstOfOwn) this.pictures = [];
    const start = isFirstOfOwn ? 0 : first;
    this.pictures.push(...files.map((file) => ({ name: file.name || 'pasted.png', read: () => readPicture(file) })));
    await this.show(start);
  }

  takeChart() {
    this.pictures = [{ name: kChartName, isChart: true, read: async () => ({ ...this.plugin.chart(), name: kChartName, exact: true }) }];
    return this.show(0);
  }

  async show(index) {
    const picture = this.pictures[index];
    this.wanted = picture;
    this.showBusy(`Reading ${picture.name}`);
    let image;
    try {
      image = await picture.read();
      if (this.wanted !== picture) return undefined; // somebody has chosen another meanwhile
    } catch (error) {
      this.hideBusy();
      this.toast(`${picture.name}: ${error.message}`);
      this.pictures = this.pictures.filter((other) => other !== picture);
      if (this.current >= this.pictures.length || this.current < 0) this.current = this.image ? this.pictures.length - 1 : -1;
      if (index < this.pictures.length && !this.image) return this.show(index);
      this.showStrip();
      return undefined;
    }
    this.hideBusy();
    this.current = index;
    this.image = image;
    document.body.classList.remove('landing');
    this.reports = [];
    this.view.resize();
    this.view.setBefore(image);
    this.view.setAfter(null);
    this.view.zoomTo('fit');
    $('picture-name').textContent = `${image.name} · ${grouped(image.width)} × ${grouped(image.height)}`;
    if (!image.exact) {
      this.toast('This browser rounds the colours of translucent pixels; opaque ones are exact.');
    }
    this.engine.setSource({ width: image.width, height: image.height, data: image.data }).catch((error) => this.fail(error));
    this.showStrip();
    if (this.chain.steps.length) this.refresh(true);
    else this.change(withAdded(this.chain, this.newStep(this.find('FreeRotateByShear'))), true);
    this.writeAddress();
    return undefined;
  }

  showStrip() {
    $('strip').hidden = this.pictures.length < 2;
    $('strip').replaceChildren(
      ...this.pictures.map(({ name }, i) => make('button', {
        type: 'button', onclick: () => this.show(i), 'aria-pressed': String(i === this.current), title: name,
      }, name)),
      make('button', { type: 'button', className: 'all', onclick: () => this.downloadAll() }, icon('download'),
        make('span', {}, `All ${this.pictures.length} as zip`)));
  }

  // ---- The chain ----

  // The size of the picture that a step gets, as far as it is known.
  sizeFor(index) {
    for (let i = Math.min(index, this.reports.length) - 1; i >= 0; --i) {
      if (this.reports[i].width) return { width: this.reports[i].width, height: this.reports[i].height };
    }
    return this.image ? { width: this.image.width, height: this.image.height } : { width: 1, height: 1 };
  }

  stepSize(index) {
    const takes = takesPicture(this.find(this.chain.steps[index].method));
    return takes ? this.reports[index]?.from ?? this.sizeFor(index) : { width: 0, height: 0 };
  }

  valuesAt(index) {
    const step = this.chain.steps[index];
    return valuesOf(this.plugin, this.find(step.method), step.given, this.stepSize(index));
  }

  newStep(method, index = this.chain.steps.length) {
    return { method: method.name, given: startOf(method.name, this.sizeFor(index)) };
  }

  /** Another chain. `done` false while somebody drags: undo goes past those. */
  change(chain, done, active = this.active) {
    const isSameShape = chain.steps.length === this.chain.steps.length && active === this.active &&
      chain.steps.every((step, i) => step.method === this.chain.steps[i].method);
    this.chain = chain;
    this.active = Math.max(0, Math.min(active, chain.steps.length - 1));
    if (done) this.remember();
    this.refresh(!isSameShape);
  }

  remember() {
    const last = this.history[this.past];
    if (JSON.stringify(textual(last.chain)) !== JSON.stringify(textual(this.chain))) {
      this.history.splice(this.past + 1, Infinity, { chain: this.chain, active: this.active });
      this.past = this.history.length - 1;
    }
    this.writeAddress();
  }

  travel(way) {
    const place = this.past + way;
    if (place < 0 || place >= this.history.length) return;
    this.past = place;
    const { chain, active } = this.history[place];
    this.chain = chain;
    this.active = Math.max(0, Math.min(active, chain.steps.length - 1));
    this.refresh(true);
    this.writeAddress();
  }

  chooseMethod(index) {
    const steps = this.chain.steps;
    const isAllowed = (method) => {
      const step = { method: method.name, given: {} };
      const chain = index === null ? withAdded(this.chain, step) : withStep(this.chain, index, step);
      return isPossible(chain, this.find);
    };
    const canvas = this.view.before?.tiles[0].canvas;
    const picture = this.image && { width: canvas.width, height: canvas.height, canvas };
    fillGallery($('gallery').querySelector('.gallery-list'), this.plugin, picture, isAllowed, (method) => {
      $('gallery').close();
      const place = index ?? steps.length;
      const step = this.newStep(method, place);
      this.drawing = areaOf(method.name) === 'part';
      this.change(index === null ? withAdded(this.chain, step) : withStep(this.chain, index, step), true, place);
      this.cards[place]?.element.scrollIntoView({ block: 'nearest' });
    });
    $('gallery').showModal();
    $('gallery').querySelector('.choice:enabled').focus({ focusVisible: false });
    $('gallery').scrollTop = 0;
  }

  // ---- Running ----

  get shownSteps() {
    const step = this.chain.steps[this.active];
    const kind = step && this.drawing && areaOf(step.method);
    if (!kind) return this.chain.steps.length;
    return kind === 'part' ? this.active : this.active + 1;
  }

  refresh(isNewShape) {
    if (isNewShape) this.renderSteps();
    this.showValues();
    this.undoButton.disabled = this.past === 0;
    this.redoButton.disabled = this.past === this.history.length - 1;
    document.querySelectorAll('input[name=storage]').forEach((input) => (input.checked = input.value === this.chain.storage));
    $('storage-hint').textContent = this.chain.storage === 'context'
      ? 'Colours are stored multiplied by alpha: translucent ones are rounded, clear ones are lost.'
      : 'Colours are stored as they are, with seven bits of transparency.';
    if (this.image) this.run();
  }

  async run() {
    const job = { storage: this.chain.storage, steps: this.chain.steps, shownSteps: this.shownSteps };
    this.waitForBusy();
    let answer;
    try {
      answer = await this.engine.run(job);
    } catch (error) {
      this.fail(error);
      return;
    }
    if (!answer) return;
    if (!this.engine.isBusy) this.hideBusy();
    this.wasCancelled = false;
    const sizes = JSON.stringify(this.reports.map((report) => report.from));
    this.reports = answer.reports;
    this.job = job;
    if (answer.image) this.view.setAfter(this.chain.steps.length ? answer.image : null);
    else if (!this.failedReport) this.view.setAfter(null);
    this.view.hideBefore(job.steps.length > 0 && !takesPicture(this.find(job.steps[0].method)));
    this.showReports();
    if (JSON.stringify(this.reports.map((report) => report.from)) !== sizes) this.renderControls();
    this.showValues();
    this.announce();
  }

  get failedReport() {
    return this.reports.find((report) => report.error || report.nil);
  }

  fail(error) {
    this.hideBusy();
    if (error instanceof Cancelled) {
      this.wasCancelled = true;
      this.showReports();
      return;
    }
    this.toast(`The call stopped: ${error.message}`);
  }

  cancel() {
    this.engine.cancel();
  }

  waitForBusy() {
    clearTimeout(this.busyTimer);
    if ($('busy').hidden) this.busyTimer = setTimeout(() => this.engine.isBusy && this.showBusy('Computing'), kPatience);
  }

  showBusy(text) {
    $('busy').hidden = false;
    $('busy-text').textContent = text;
    $('busy').querySelector('progress').removeAttribute('value');
  }

  hideBusy() {
    clearTimeout(this.busyTimer);
    $('busy').hidden = true;
  }

  showProgress({ step, part }) {
    $('busy-text').textContent = shortName(this.chain.steps[step]?.method ?? '');
    $('busy').querySelector('progress').value = part;
  }

  // ---- Steps ----

  renderSteps() {
    this.cards = this.chain.steps.map((step, i) => this.makeCard(step, i));
    $('steps').replaceChildren(...this.cards.map(({ element }) => element));
    this.renderControls();
    this.showReports();
  }

  makeCard(step, i) {
    const method = this.find(step.method);
    const facts = this.plugin.facts.find(({ name }) => name === step.method);
    const isActive = i === this.active;
    const last = this.chain.steps.length - 1;
    const moves = (to) => to >= 0 && to <= last && isPossible(withMoved(this.chain, i, to), this.find);
    const body = make('div', { className: 'arguments', hidden: !isActive });
    const summary = make('p', { className: 'given', hidden: isActive });
    const state = make('p', { className: 'state' });
    const element = make('li', { className: `card${isActive ? ' active' : ''}`, 'data-step': i },
      make('div', { className: 'card-head' },
        make('button', {
          type: 'button', className: 'card-name', 'aria-expanded': String(isActive), onclick: () => this.activate(i),
        }, make('span', { className: 'ordinal' }, String(i + 1)), make('b', {}, shortName(step.method))),
        make('button', { type: 'button', className: 'text-button', onclick: () => this.chooseMethod(i), 'aria-label': `Change the method of call ${i + 1}` }, 'Change'),
        iconButton('up', `Move call ${i + 1} up`, () => this.change(withMoved(this.chain, i, i - 1), true, i - 1), { disabled: !moves(i - 1), hidden: last === 0 }),
        iconButton('down', `Move call ${i + 1} down`, () => this.change(withMoved(this.chain, i, i + 1), true, i + 1), { disabled: !moves(i + 1), hidden: last === 0 }),
        iconButton('close', `Remove call ${i + 1}`, () => this.remove(i))),
      make('p', { className: 'summary', hidden: !isActive }, `${facts.summary}.`),
      summary, body, state);
    return { element, body, state, summary, method, controls: [] };
  }

  remove(index) {
    let chain = without(this.chain, index);
    while (!isPossible(chain, this.find)) chain = without(chain, chain.steps.length - 1);
    this.change(chain, true, Math.min(this.active, index));
    (this.cards[this.active]?.element.querySelector('.card-name') ?? $('add')).focus();
  }

  activate(index) {
    if (index === this.active) return;
    this.drawing = false;
    this.active = index;
    this.refresh(true);
    this.cards[index].element.querySelector('.card-name').focus();
  }

  // The controls of the active step, for the size of its picture.
  renderControls() {
    const card = this.cards[this.active];
    if (!card) return;
    const size = this.stepSize(this.active);
    const step = this.chain.steps[this.active];
    if (card.body.contains(document.activeElement) && card.controls.length) return;
    const words = this.plugin.facts.find(({ name }) => name === step.method).arguments;
    const index = this.active;
    const controls = inputsOf(card.method).map((parameter) => {
      const facts = factsOf(step.method, parameter.name, { width: Math.max(size.width, 1), height: Math.max(size.height, 1) });
      const meaning = words.find(({ name }) => name === parameter.name).meaning;
      const control = argumentControl(parameter, facts, `${meaning}.`, (value, done) =>
        this.change(withGiven(this.chain, index, { [parameter.name]: value }), done));
      return { ...control, facts };
    });
    card.controls = controls;
    const inArea = controls.filter(({ facts }) => facts.area);
    const advanced = controls.filter(({ facts }) => facts.advanced);
    const plain = controls.filter((control) => !inArea.includes(control) && !advanced.includes(control));
    plain.sort((a, b) => Number(Boolean(b.facts.first)) - Number(Boolean(a.facts.first)));
    const parts = plain.map(({ element }) => element);
    if (inArea.length) {
      const group = this.areaGroup(step, inArea);
      if (areaOf(step.method) === 'part') parts.unshift(group);
      else parts.push(group);
    }
    const kept = this.openMore;
    if (advanced.length) {
      parts.push(make('details', { className: 'more', open: Boolean(kept), ontoggle: ({ target }) => (this.openMore = target.open) },
        make('summary', {}, 'More'), ...advanced.map(({ element }) => element)));
    }
    card.body.replaceChildren(...parts);
  }

  areaGroup(step, controls) {
    const isPart = areaOf(step.method) === 'part';
    const draw = make('button', {
      type: 'button', className: 'toggle', 'aria-pressed': String(this.drawing),
      onclick: () => {
        this.drawing = !this.drawing;
        draw.setAttribute('aria-pressed', String(this.drawing));
        this.refresh(false);
      },
    }, icon('area'), make('span', {}, 'Draw on the picture'));
    const index = this.active;
    const whole = make('button', {
      type: 'button', className: 'text-button',
      onclick: () => this.change(withGiven(this.chain, index, { left: undefined, top: undefined, width: undefined, height: undefined }), true),
    }, 'Whole picture');
    return make('details', { className: 'area', open: isPart || this.openArea || this.drawing, ontoggle: ({ target }) => (this.openArea = target.open) },
      make('summary', {}, isPart ? 'Rectangle' : 'Selection'),
      make('div', { className: 'area-buttons' }, draw, whole), ...controls.map(({ element }) => element));
  }

  // The values of this moment in controls, code and rectangle.
  showValues() {
    this.chain.steps.forEach((step, i) => {
      const card = this.cards[i];
      if (!card) return;
      const values = this.valuesAt(i);
      for (const control of card.controls) control.update(values[control.name], control.name in step.given);
      const line = this.callTexts[i];
      card.summary.textContent = line.slice(line.indexOf('('));
    });
    this.showCode();
    this.showArea();
  }

  get calls() {
    return this.chain.steps.map((step, i) => ({ method: this.find(step.method), values: this.valuesAt(i) }));
  }

  get callTexts() {
    return linesOf(this.calls);
  }

  showReports() {
    const failed = this.failedReport;
    this.cards.forEach(({ state, element }, i) => {
      const report = this.reports[i];
      element.classList.toggle('failed', Boolean(report && (report.error || report.nil)));
      state.replaceChildren(...stateOf(report, Boolean(failed)));
    });
    const place = this.reports.indexOf(failed);
    document.body.classList.toggle('failed', Boolean(failed));
    $('banner').hidden = !failed && !this.wasCancelled;
    if (this.wasCancelled) {
      $('banner').replaceChildren('Cancelled. ', make('button', { type: 'button', className: 'text-button', onclick: () => this.run() }, 'Run again'));
    } else if (failed) {
      $('banner').replaceChildren(make('b', {}, failed.error ? `Error ${failed.error}` : 'Nil'),
        failed.error ? failed.message : 'no picture came back, and no error code: there may be no memory for so large a picture',
        this.chain.steps.length > 1 ? ` (call ${place + 1}, ${shortName(failed.method)})` : '');
    }
    const last = this.reports.at(-1);
    // What a method reports, where there is no picture.
    $('words').hidden = last?.result === undefined;
    $('words').textContent = String(last?.result ?? '');
    const facts = [];
    if (last && !failed) {
      if (last.width) facts.push(`${grouped(last.width)} × ${grouped(last.height)}`);
      const total = this.reports.reduce((sum, { milliseconds }) => sum + milliseconds, 0);
      facts.push(`${total < 10 ? total.toFixed(1) : Math.round(total)} ms`);
    }
    if (last) facts.push(`${(failed ?? last).error} · ${(failed ?? last).message}`);
    $('facts').replaceChildren(...facts.map((fact) => make('span', {}, fact)));
    $('download').disabled = Boolean(failed) || !last?.width;
  }

  announce() {
    clearTimeout(this.announceTimer);
    this.announceTimer = setTimeout(() => {
      const last = this.reports.at(-1);
      if (!last) return;
      const outputs = Object.entries(last.outputs ?? {}).map(([name, number]) => `${name} ${number}`).join(', ');
      $('status').textContent = this.failedReport ? '' : outputs || String(last.result ?? `Result: ${last.width} by ${last.height} pixels`);
    }, 600);
  }

  // ---- The rectangle ----

  showArea() {
    const step = this.chain.steps[this.active];
    const kind = step && areaOf(step.method);
    if (!kind || (!this.drawing && (kind === 'part' || this.chain.steps.length - 1 !== this.active))) {
      this.view.setArea(null);
      return;
    }
    const { left, top, width, height } = this.valuesAt(this.active);
    const more = kind === 'selection' ? 1 : 0;
    const size = this.stepSize(this.active);
    const isWhole = left <= 0 && top <= 0 && left + width + more >= size.width && top + height + more >= size.height;
    // The selection's far ends lie in it, and what is outside of the picture does not count.
    const area = { left, top, width: width + more, height: height + more, dim: kind === 'part' };
    if (kind === 'selection') {
      area.width = Math.min(area.left + area.width, size.width) - area.left;
      area.height = Math.min(area.top + area.height, size.height) - area.top;
    }
    this.view.setArea(this.drawing || !isWhole ? area : null, this.drawing);
  }

  takeArea(area, done) {
    const step = this.chain.steps[this.active];
    if (!area || !step) return;
    const less = areaOf(step.method) === 'selection' ? 1 : 0;
    const { left, top, width, height } = area;
    this.change(withGiven(this.chain, this.active, { left, top, width: width - less, height: height - less }), done);
  }

  // ---- Code ----

  setTab(name) {
    this.tab = name;
    for (const [other, button] of Object.entries(this.tabs)) {
      button.setAttribute('aria-selected', String(other === name));
      button.tabIndex = other === name ? 0 : -1;
    }
    $('code').setAttribute('aria-labelledby', `tab-${name}`);
    if (this.plugin) this.showCode();
  }

  get codeText() {
    const { steps, storage } = this.chain;
    if (!steps.length) return '';
    if (this.tab === 'line') return this.callTexts.join('\n');
    if (this.tab === 'example') return exampleOf(this.calls);
    const named = steps.map((step) => ({ method: this.find(step.method), given: step.given }));
    const command = commandOf(named, { file: this.image?.name ?? kChartName, storage });
    if (!takesPicture(named[0].method)) return command;
    if (this.pictures[this.current]?.isChart) return `lmx chart -o ${kChartName}\n${command}`;
    return /\.(png|jpe?g)$/i.test(this.image?.name ?? '') ? command : `# lmx reads PNG and JPEG files\n${command}`;
  }

  showCode() {
    const text = this.codeText;
    if ($('code').textContent !== text) $('code').replaceChildren(...coloured(text, this.tab));
  }

  async copy(text, button, label) {
    const isDone = await copied(text);
    button.replaceChildren(icon(isDone ? 'check' : 'close'), make('span', {}, isDone ? 'Copied' : 'Not copied'));
    button.classList.add('done');
    $('status').textContent = isDone ? 'Copied' : 'Not copied';
    clearTimeout(button.timer);
    button.timer = setTimeout(() => {
      button.replaceChildren(icon(label === 'Copy' ? 'copy' : 'link'), make('span', {}, label));
      button.classList.remove('done');
    }, 1500);
  }

  // ---- Downloads ----

  nameOfResult(name) {
    const made = !this.chain.steps.length || takesPicture(this.find(this.chain.steps[0].method)) ? name.replace(/\.[^.]*$/, '') : 'lmx';
    return `${made}-${this.chain.steps.map((step) => shortName(step.method)).join('-')}.png`;
  }

  async download() {
    if (!this.view.after || this.failedReport) return;
    // While a rectangle is drawn the stage shows another picture than the last.
    const { image } = await this.engine.run({ storage: this.chain.storage, steps: this.chain.steps });
    const { bytes } = await this.engine.encode(image);
    save(new Blob([bytes], { type: 'image/png' }), this.nameOfResult(this.image.name));
  }

  async downloadAll() {
    const engine = this.makeEngine();
    const files = [], failures = [];
    const { storage, steps } = this.chain;
    try {
      for (const [i, picture] of this.pictures.entries()) {
        this.showBusy(`${i + 1} of ${this.pictures.length}: ${picture.name}`);
        $('busy').querySelector('progress').value = i / this.pictures.length;
        try {
          const image = await picture.read();
          await engine.setSource({ width: image.width, height: image.height, data: image.data });
          const answer = await engine.run({ storage, steps });
          const failed = answer.reports.find((report) => report.error || report.nil);
          if (failed) throw new Error(failed.error ? failed.message : 'no picture came back');
          if (!answer.image) throw new Error('the calls leave no picture');
          files.push({ name: this.nameOfResult(picture.name), bytes: (await engine.encode(answer.image)).bytes });
        } catch (error) {
          failures.push(`${picture.name}: ${error.message}`);
        }
      }
    } finally {
      engine.end();
      this.hideBusy();
    }
    if (files.length) save(makeZip(files), 'lmx.zip');
    if (failures.length) this.toast(failures.join('\n'));
  }

  // ---- View ----

  setMode(mode) {
    this.view.setMode(mode);
    document.querySelectorAll('[data-mode]').forEach((button) => button.setAttribute('aria-pressed', String(button.dataset.mode === mode)));
  }

  swap() {
    this.view.swap();
    this.swapButton.setAttribute('aria-pressed', String(this.view.swapped));
  }

  toggleLoupe() {
    this.view.setLoupe(!this.view.loupeOn);
    this.loupeButton.setAttribute('aria-pressed', String(this.view.loupeOn));
  }

  showZoom(scale, fits) {
    const text = `${Math.round(scale * 100)} %`;
    if (this.zoomText.textContent === text) return;
    this.zoomText.textContent = text;
    this.zoomText.setAttribute('aria-label', `Zoom ${text}${fits ? ', fitting' : ''}; to 100 %`);
  }

  toast(text) {
    $('toast').textContent = text;
    $('toast').hidden = false;
    clearTimeout(this.toastTimer);
    this.toastTimer = setTimeout(() => ($('toast').hidden = true), 4000 + 40 * text.length);
  }

  // ---- The address ----

  writeAddress() {
    if (!this.image) return;
    const address = toAddress(this.chain, this.find, Boolean(this.pictures[this.current]?.isChart));
    this.address = `#${address}`;
    history.replaceState(null, '', this.address);
  }

  goToAddress() {
    if (location.hash === this.address || location.hash.length < 2) return;
    const { chain, chart } = fromAddress(location.hash.slice(1), this.find);
    if (!chain.steps.length) return;
    this.chain = chain;
    this.active = chain.steps.length - 1;
    this.remember();
    if (this.image) {
      this.refresh(true);
      return;
    }
    this.takeChart();
    if (!chart) this.toast('The calls of the link, on the test chart. Drop a picture to see them on yours.');
  }
}

// NaN and infinities are values of arguments, for which JSON has no text.
const textual = (chain) => ({ ...chain, steps: chain.steps.map(({ method, given }) => [method, Object.entries(given).map(String)]) });

async function start() {
  const wasm = Uint8Array.from(atob($('wasm').textContent.trim()), (c) => c.charCodeAt(0)).buffer;
  const workerUrl = URL.createObjectURL(new Blob([$('worker').textContent], { type: 'text/javascript' }));
  const makeEngine = (onProgress) => new Engine(() => new Worker(workerUrl), wasm, onProgress);
  const plugin = new Plugin(await WebAssembly.compile(wasm));
  window.playground = new App(plugin, makeEngine);
}

start().catch((error) => {
  $('landing').replaceChildren(make('p', { role: 'alert' }, `This browser can’t run the playground: ${error.message}`));
});
