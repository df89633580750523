// The stage: the picture before and after, with a divider or side by side, zoomed in whole steps,
// moved, looked at pixel by pixel, and with a rectangle on it that can be drawn. Both pictures lie
// with their centres on the same point.
import { Drawable } from './drawable.js';

const kZooms = [0.25, 0.5, 1, 2, 3, 4, 6, 8, 12, 16, 24, 32];
const kSquare = 8;
const kCalm = 150; // milliseconds
const kNear = 10; // pixels of the screen within which an edge of the rectangle is meant
const kLoupePixels = 11, kLoupeScale = 14;

export class View {
  /**
   * `elements`: canvas, divider, free (whose place is what panels leave of the stage), loupe { box,
   * canvas, text }. `onZoom` is told the scale, `onArea` a rectangle { left, top, width, height }
   * that was drawn, and whether it is done.
   */
  constructor(elements, { onZoom = () => {}, onArea = () => {} } = {}) {
    Object.assign(this, elements, { onZoom, onArea });
    this.context = this.canvas.getContext('2d');
    this.before = this.after = null;
    this.mode = 'split';
    this.swapped = false;
    this.split = 0.5;
    this.zoom = 'fit';
    this.centre = { x: 0, y: 0 };
    this.area = null;
    this.loupeOn = false;
    this.pointers = new Map();
    this.listen();
    new ResizeObserver(() => this.resize()).observe(this.canvas);
    new ResizeObserver(() => this.draw()).observe(this.free);
  }

  // ---- What is shown ----

  setBefore(image) {
    this.before = image ? new Drawable(image) : null;
    this.draw();
  }

  setAfter(image) {
    this.after = image ? new Drawable(image, this.after) : null;
    this.hurry();
  }

  /** Where the first call takes no picture there is nothing to compare with. */
  hideBefore(isHidden) {
    this.beforeHidden = isHidden;
    this.draw();
  }

  // Draws reduced pictures quickly as long as they change, and well when they don't.
  hurry() {
    this.isHurried = true;
    clearTimeout(this.calmTimer);
    this.calmTimer = setTimeout(() => {
      this.isHurried = false;
      this.draw();
    }, kCalm);
    this.draw();
  }

  setMode(mode) {
    this.mode = mode;
    this.draw();
  }

  swap() {
    this.swapped = !this.swapped;
    this.draw();
  }

  /**
   * A rectangle in the coordinates of the picture after, or null: { left, top, width, height, dim }
   * in whole pixels; `dim` darkens what is outside. It shows on the picture before as well if that
   * is as large. While it can be changed, the picture after is alone.
   */
  setArea(area, canChange = false) {
    if (this.hold && !this.hold.pan) return; // under way: what comes back are its own rectangles
    this.area = area;
    this.areaCanChange = canChange;
    this.draw();
  }

  setLoupe(on) {
    this.loupeOn = on;
    this.loupe.box.hidden = !on;
    if (on) this.moveLoupe(this.loupePoint ?? this.middle());
  }

  // ---- Geometry ----

  resize() {
    const ratio = window.devicePixelRatio || 1;
    this.canvas.width = Math.round(this.canvas.clientWidth * ratio);
    this.canvas.height = Math.round(this.canvas.clientHeight * ratio);
    this.draw();
  }

  // The part of the stage that no panel covers.
  get freeArea() {
    const stage = this.canvas.getBoundingClientRect(), free = this.free.getBoundingClientRect();
    return { x: free.x - stage.x, y: free.y - stage.y, width: free.width, height: free.height };
  }

  middle() {
    const { x, y, width, height } = this.freeArea;
    return { x: x + width / 2, y: y + height / 2 };
  }

  // While a rectangle is being drawn the picture that it lies on is alone.
  get isDrawing() {
    return Boolean(this.area && this.areaCanChange && this.after);
  }

  get sides() {
    const before = this.beforeHidden ? null : this.before;
    const both = this.swapped ? [this.after, before] : [before, this.after];
    return { left: both[0], right: both[1] };
  }

  get dividerX() {
    const { x, width } = this.freeArea;
    return Math.round(x + width * this.split);
  }

  // What is drawn where: each with its picture, its part of the stage, and where the centre of the
  // picture is.
  get panes() {
    const { left, right } = this.sides;
    const { clientWidth: width, clientHeight: height } = this.canvas;
    const middle = this.middle();
    if (!left || !right || this.mode === 'after' || this.isDrawing) {
      const only = this.isDrawing ? this.after : (this.mode === 'after' || !left ? right : left) ?? left;
      return only ? [{ picture: only, x: 0, width, height, centre: middle, side: this.nameOf(only) }] : [];
    }
    const cut = this.mode === 'side' ? Math.round(middle.x) : this.dividerX;
    const shift = this.mode === 'side' ? this.freeArea.width / 4 : 0;
    const pane = (picture, x, paneWidth, offset) =>
      ({ picture, x, width: paneWidth, height, centre: { x: middle.x + offset, y: middle.y }, side: this.nameOf(picture) });
    return [pane(left, 0, cut, -shift), pane(right, cut, width - cut, shift)].filter(({ picture }) => picture);
  }

  nameOf(picture) {
    return picture === this.after ? 'After' : 'Before';
  }

  get fitting() {
    const { width, height } = this.freeArea;
    const across = this.mode === 'side' && !this.isDrawing ? width / 2 : width;
    const { left, right } = this.sides;
    const pictures = [left, right].filter(Boolean);
    const widest = Math.max(1, ...pictures.map((p) => p.width));
    const highest = Math.max(1, ...pictures.map((p) => p.height));
    return Math.min(1, Math.max(across - 32, 32) / widest, Math.max(height - 32, 32) / highest);
  }

  get scale() {
    return this.zoom === 'fit' ? this.fitting : this.zoom;
  }

  origin({ centre }) {
    return { x: Math.round(centre.x - this.centre.x * this.scale), y: Math.round(centre.y - this.centre.y * this.scale) };
  }

  paneAt(point) {
    return this.panes.find(({ x, width }) => point.x >= x && point.x < x + width);
  }

  /** The pixel of the pane's picture at a place of the stage; it may lie outside of the picture. */
  pixelAt(point, pane) {
    const origin = this.origin(pane);
    return {
      x: Math.floor((point.x - origin.x) / this.scale) - pane.picture.left,
      y: Math.floor((point.y - origin.y) / this.scale) - pane.picture.top,
    };
  }

  // ---- Zoom and pan ----

  /** To that zoom, or 'fit'; what is at the point stays there. */
  zoomTo(zoom, point = this.middle()) {
    const before = this.scale;
    const pane = this.paneAt(point);
    this.zoom = zoom;
    if (zoom === 'fit') this.centre = { x: 0, y: 0 };
    else if (pane) {
      const factor = 1 / before - 1 / this.scale;
      this.centre.x += (point.x - pane.centre.x) * factor;
      this.centre.y += (point.y - pane.centre.y) * factor;
    }
    this.draw();
  }

  zoomBy(steps, point) {
    const scale = this.scale;
    const next = steps > 0 ? kZooms.find((z) => z > scale * 1.001) : kZooms.findLast((z) => z < scale * 0.999);
    if (next) this.zoomTo(next, point);
  }

  pan(dx, dy) {
    this.centre.x -= dx / this.scale;
    this.centre.y -= dy / this.scale;
    this.hurry();
  }

  // ---- Drawing ----

  draw() {
    if (this.scheduled) return;
    this.scheduled = true;
    requestAnimationFrame(() => {
      this.scheduled = false;
      this.paint();
    });
  }

  paint() {
    const { context } = this;
    const ratio = window.devicePixelRatio || 1;
    context.setTransform(ratio, 0, 0, ratio, 0, 0);
    context.clearRect(0, 0, this.canvas.width, this.canvas.height);
    const panes = this.panes;
    for (const pane of panes) this.paintPane(pane, panes.length > 1);
    this.placeDivider(panes.length > 1);
    this.onZoom(this.scale, this.zoom === 'fit');
    if (this.loupeOn && this.loupePoint) this.paintLoupe();
  }

  paintPane(pane, clipped) {
    const { context, scale } = this;
    const { picture } = pane;
    const origin = this.origin(pane);
    context.save();
    if (clipped) {
      context.beginPath();
      context.rect(pane.x, 0, pane.width, pane.height);
      context.clip();
    }
    const x = origin.x + picture.left * scale, y = origin.y + picture.top * scale;
    const width = picture.width * scale, height = picture.height * scale;
    context.save();
    context.translate(x, y);
    context.fillStyle = this.checkerboard();
    context.fillRect(0, 0, width, height);
    context.restore();
    context.imageSmoothingEnabled = scale < 1;
    context.imageSmoothingQuality = this.isHurried ? 'low' : 'high';
    for (const tile of picture.tiles) {
      context.drawImage(tile.canvas, x + tile.x * scale, y + tile.y * scale, tile.width * scale, tile.height * scale);
    }
    if (scale >= 12) this.paintGrid(x, y, picture);
    context.strokeStyle = this.colours.edge;
    context.strokeRect(x - 0.5, y - 0.5, width + 1, height + 1);
    if (this.area && this.hasArea(picture)) this.paintArea(x, y);
    context.restore();
  }

  paintGrid(x, y, picture) {
    const { context, scale, canvas } = this;
    context.beginPath();
    for (let i = Math.max(0, Math.floor(-x / scale)); i <= picture.width && x + i * scale < canvas.clientWidth; ++i) {
      context.rect(x + i * scale, y, 0, picture.height * scale);
    }
    for (let i = Math.max(0, Math.floor(-y / scale)); i <= picture.height && y + i * scale < canvas.clientHeight; ++i) {
      context.rect(x, y + i * scale, picture.width * scale, 0);
    }
    context.strokeStyle = 'rgb(128 128 128 / 35%)';
    context.lineWidth = 1;
    context.stroke();
  }

  hasArea(picture) {
    return picture.width === this.after?.width && picture.height === this.after?.height;
  }

  paintArea(x, y) {
    const { context, scale } = this;
    const { left, top, width, height, dim } = this.area;
    const rectangle = [x + left * scale, y + top * scale, width * scale, height * scale];
    context.save();
    if (dim) {
      context.beginPath();
      context.rect(0, 0, this.canvas.clientWidth, this.canvas.clientHeight);
      context.rect(...rectangle);
      context.fillStyle = 'rgb(10 14 22 / 45%)';
      context.fill('evenodd');
    }
    context.lineWidth = 3;
    context.strokeStyle = 'rgb(10 14 22 / 70%)';
    context.strokeRect(...rectangle);
    context.lineWidth = 1.5;
    context.strokeStyle = '#fff';
    context.strokeRect(...rectangle);
    const [rx, ry, rw, rh] = rectangle;
    context.fillStyle = '#fff';
    const corners = this.areaCanChange ? [[rx, ry], [rx + rw, ry], [rx, ry + rh], [rx + rw, ry + rh]] : [];
    for (const [hx, hy] of corners) {
      context.beginPath();
      context.arc(hx, hy, 5, 0, 2 * Math.PI);
      context.fill();
      context.strokeStyle = 'rgb(10 14 22 / 80%)';
      context.stroke();
    }
    context.restore();
  }

  get colours() {
    if (!this.knownColours) {
      const style = getComputedStyle(document.documentElement);
      this.knownColours = {
        light: style.getPropertyValue('--square-light'),
        dark: style.getPropertyValue('--square-dark'),
        edge: style.getPropertyValue('--stage-edge'),
      };
    }
    return this.knownColours;
  }

  /** After the scheme of colours has changed. */
  forgetColours() {
    this.knownColours = this.pattern = null;
    this.draw();
  }

  checkerboard() {
    if (!this.pattern) {
      const tile = document.createElement('canvas');
      tile.width = tile.height = 2 * kSquare;
      const context = tile.getContext('2d');
      context.fillStyle = this.colours.light;
      context.fillRect(0, 0, 2 * kSquare, 2 * kSquare);
      context.fillStyle = this.colours.dark;
      context.fillRect(0, 0, kSquare, kSquare);
      context.fillRect(kSquare, kSquare, kSquare, kSquare);
      this.pattern = this.context.createPattern(tile, 'repeat');
    }
    return this.pattern;
  }

  placeDivider(shown) {
    const { divider } = this;
    divider.hidden = !shown;
    if (!shown) return;
    const fixed = this.mode === 'side';
    divider.classList.toggle('fixed', fixed);
    const { y, height } = this.freeArea;
    divider.style.left = `${fixed ? Math.round(this.middle().x) : this.dividerX}px`;
    divider.style.setProperty('--knob', `${y + height - 30}px`);
    divider.setAttribute('aria-valuenow', Math.round(100 * this.split));
    const { left, right } = this.sides;
    divider.dataset.left = left ? this.nameOf(left) : '';
    divider.dataset.right = right ? this.nameOf(right) : '';
  }

  setSplit(part) {
    this.split = Math.min(1, Math.max(0, part));
    this.draw();
  }

  // ---- The loupe ----

  moveLoupe(point) {
    this.loupePoint = point;
    this.draw();
  }

  paintLoupe() {
    const pane = this.paneAt(this.loupePoint);
    if (!pane) return;
    const { canvas, text, box } = this.loupe;
    const place = this.pixelAt(this.loupePoint, pane);
    const half = (kLoupePixels - 1) / 2;
    canvas.width = canvas.height = kLoupePixels * kLoupeScale;
    const context = canvas.getContext('2d');
    context.fillStyle = this.checkerboard();
    context.fillRect(0, 0, canvas.width, canvas.height);
    context.imageSmoothingEnabled = false;
    for (let dy = -half; dy <= half; ++dy) {
      for (let dx = -half; dx <= half; ++dx) {
        const pixel = pane.picture.pixel(place.x + dx, place.y + dy);
        const at = [(dx + half) * kLoupeScale, (dy + half) * kLoupeScale, kLoupeScale, kLoupeScale];
        context.fillStyle = pixel ? `rgb(${pixel[0]} ${pixel[1]} ${pixel[2]} / ${pixel[3] / 255})` : this.colours.edge;
        context.fillRect(...at);
      }
    }
    const mark = [half * kLoupeScale + 0.5, half * kLoupeScale + 0.5, kLoupeScale - 1, kLoupeScale - 1];
    context.lineWidth = 3;
    context.strokeStyle = '#000';
    context.strokeRect(...mark);
    context.lineWidth = 1;
    context.strokeStyle = '#fff';
    context.strokeRect(...mark);
    text.replaceChildren(...this.loupeLines(pane, place));
    const free = this.freeArea;
    const onRight = this.loupePoint.x + 40 + box.offsetWidth < free.x + free.width;
    const x = onRight ? this.loupePoint.x + 24 : this.loupePoint.x - 24 - box.offsetWidth;
    const y = Math.min(Math.max(this.loupePoint.y - 60, free.y + 8), free.y + free.height - box.offsetHeight - 8);
    box.style.transform = `translate(${Math.max(8, x)}px, ${Math.max(8, y)}px)`;
  }

  loupeLines(pane, place) {
    const line = (name, value) => {
      const row = document.createElement('div');
      row.append(Object.assign(document.createElement('b'), { textContent: name }), value);
      return row;
    };
    const other = pane.picture === this.after ? this.before : this.after;
    const value = (pixel) => (pixel ? `${pixel.slice(0, 3).join(' ')} · α ${pixel[3]}` : 'outside');
    const rows = [line('Place', `${place.x}, ${place.y}`), line(pane.side, value(pane.picture.pixel(place.x, place.y)))];
    // The same place of the stage in the other picture.
    if (other) {
      const x = place.x + pane.picture.left - other.left, y = place.y + pane.picture.top - other.top;
      rows.push(line(this.nameOf(other), value(other.pixel(x, y))));
    }
    return rows;
  }

  // ---- Hands ----

  listen() {
    const { canvas, divider } = this;
    const at = (event) => {
      const stage = canvas.getBoundingClientRect();
      return { x: event.clientX - stage.x, y: event.clientY - stage.y };
    };
    canvas.addEventListener('pointerdown', (event) => this.press(event, at(event)));
    canvas.addEventListener('pointermove', (event) => this.move(event, at(event)));
    for (const name of ['pointerup', 'pointercancel']) canvas.addEventListener(name, (event) => this.lift(event));
    canvas.addEventListener('dblclick', () => this.setSplit(0.5));
    let turned = 0;
    canvas.addEventListener('wheel', (event) => {
      event.preventDefault();
      turned += event.deltaY * (event.deltaMode === 1 ? 33 : 1) * (event.ctrlKey ? 4 : 1);
      if (Math.abs(turned) < 60) return;
      this.zoomBy(-Math.sign(turned), at(event));
      turned = 0;
    }, { passive: false });
    canvas.addEventListener('keydown', (event) => this.arrow(event));

    divider.addEventListener('pointerdown', (event) => {
      if (this.mode === 'side') return;
      divider.setPointerCapture(event.pointerId);
      const shift = at(event).x - this.dividerX;
      divider.onpointermove = (moved) => {
        const { x, width } = this.freeArea;
        this.setSplit((at(moved).x - shift - x) / width);
      };
    });
    for (const name of ['pointerup', 'pointercancel']) {
      divider.addEventListener(name, () => {
        divider.onpointermove = null;
      });
    }
    divider.addEventListener('dblclick', () => this.setSplit(0.5));
    divider.addEventListener('keydown', (event) => {
      const step = { ArrowLeft: -0.02, ArrowRight: 0.02, PageDown: -0.1, PageUp: 0.1, Home: -1, End: 1 }[event.key];
      if (step === undefined) return;
      event.preventDefault();
      this.setSplit(this.split + step);
    });
  }

  arrow(event) {
    const way = { ArrowLeft: [-1, 0], ArrowRight: [1, 0], ArrowUp: [0, -1], ArrowDown: [0, 1] }[event.key];
    if (!way) return;
    event.preventDefault();
    if (this.loupeOn) {
      const step = Math.max(1, this.scale);
      const point = this.loupePoint ?? this.middle();
      this.moveLoupe({ x: point.x + way[0] * step, y: point.y + way[1] * step });
    } else {
      this.pan(-40 * way[0], -40 * way[1]);
    }
  }

  press(event, point) {
    if (event.button > 1) return;
    this.canvas.setPointerCapture(event.pointerId);
    this.pointers.set(event.pointerId, point);
    if (this.pointers.size === 2) {
      this.hold = null;
      this.pinch = { distance: this.pinchDistance(), scale: this.scale };
      return;
    }
    const grip = event.button === 0 ? this.gripAt(point) : null;
    this.hold = grip ?? { pan: true };
    this.canvas.classList.toggle('panning', Boolean(this.hold.pan));
  }

  pinchDistance() {
    const [a, b] = [...this.pointers.values()];
    return Math.hypot(a.x - b.x, a.y - b.y);
  }

  move(event, point) {
    if (this.loupeOn) this.moveLoupe(point);
    const last = this.pointers.get(event.pointerId);
    if (!last) {
      this.canvas.style.cursor = this.cursorAt(point);
      return;
    }
    this.pointers.set(event.pointerId, point);
    if (this.pinch && this.pointers.size === 2) {
      const [a, b] = [...this.pointers.values()];
      const wanted = (this.pinch.scale * this.pinchDistance()) / this.pinch.distance;
      const nearest = kZooms.reduce((best, z) => (Math.abs(Math.log(z / wanted)) < Math.abs(Math.log(best / wanted)) ? z : best));
      if (nearest !== this.zoom) this.zoomTo(nearest, { x: (a.x + b.x) / 2, y: (a.y + b.y) / 2 });
    } else if (this.hold?.pan) {
      this.pan(point.x - last.x, point.y - last.y);
    } else if (this.hold) {
      this.drag(point);
    }
  }

  lift(event) {
    this.pointers.delete(event.pointerId);
    this.pinch = null;
    if (this.hold && !this.hold.pan && this.hold.moved) this.onArea(this.area, true);
    this.hold = null;
    this.canvas.classList.remove('panning');
  }

  // ---- The rectangle ----

  // What of the rectangle is at a place: edges to move, all of it, or nothing of it yet (a new one
  // begins).
  gripAt(point) {
    const pane = this.area && this.areaCanChange && this.paneAt(point);
    if (!pane || !this.hasArea(pane.picture)) return null;
    const place = this.pixelAt(point, pane);
    const { left, top, width, height } = this.area;
    const reach = kNear / this.scale;
    const near = (a, b) => Math.abs(a - b) <= reach;
    const inRows = place.y >= top - reach && place.y <= top + height + reach;
    const inColumns = place.x >= left - reach && place.x <= left + width + reach;
    const edges = {
      left: inRows && near(place.x + 0.5, left),
      right: inRows && near(place.x + 0.5, left + width),
      top: inColumns && near(place.y + 0.5, top),
      bottom: inColumns && near(place.y + 0.5, top + height),
    };
    const start = { place, area: this.area, pane };
    if (Object.values(edges).some(Boolean)) return { ...start, edges };
    const inside = place.x >= left && place.x < left + width && place.y >= top && place.y < top + height;
    const isAll = left <= 0 && top <= 0 && left + width >= this.after.width && top + height >= this.after.height;
    if (inside && !isAll) return { ...start, whole: true };
    const onPicture = pane.picture.pixel(place.x, place.y) !== null;
    return inside || onPicture ? { ...start, fresh: true } : null;
  }

  cursorAt(point) {
    const grip = this.gripAt(point);
    if (!grip) return 'grab';
    if (grip.fresh) return 'crosshair';
    if (grip.whole) return 'move';
    const { left, right, top, bottom } = grip.edges;
    if ((left && top) || (right && bottom)) return 'nwse-resize';
    if ((right && top) || (left && bottom)) return 'nesw-resize';
    return left || right ? 'ew-resize' : 'ns-resize';
  }

  drag(point) {
    const { hold } = this;
    const place = this.pixelAt(point, hold.pane);
    const dx = place.x - hold.place.x, dy = place.y - hold.place.y;
    if (!dx && !dy && !hold.moved) return;
    hold.moved = true;
    let { left, top, width, height } = hold.area;
    let right = left + width, bottom = top + height;
    if (hold.fresh) {
      left = Math.min(hold.place.x, place.x);
      right = Math.max(hold.place.x, place.x) + 1;
      top = Math.min(hold.place.y, place.y);
      bottom = Math.max(hold.place.y, place.y) + 1;
    } else if (hold.whole) {
      left += dx;
      right += dx;
      top += dy;
      bottom += dy;
    } else {
      if (hold.edges.left) left = Math.min(left + dx, right - 1);
      if (hold.edges.right) right = Math.max(right + dx, left + 1);
      if (hold.edges.top) top = Math.min(top + dy, bottom - 1);
      if (hold.edges.bottom) bottom = Math.max(bottom + dy, top + 1);
    }
    this.area = { ...hold.area, left, top, width: right - left, height: bottom - top };
    this.onArea(this.area, false);
    this.draw();
  }
}
