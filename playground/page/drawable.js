// A picture that a browser can draw, however large it is.
import { tilesOf } from './files.js';

/** A picture as canvases that a browser can draw; takes over those of another of its size. */
export class Drawable {
  constructor(image, other = null) {
    Object.assign(this, image);
    const isSameSize = other?.width === image.width && other.height === image.height;
    this.tiles = isSameSize ? other.tiles : [...tilesOf(image.width, image.height)].map((tile) => {
      const canvas = document.createElement('canvas');
      canvas.width = tile.width;
      canvas.height = tile.height;
      return { ...tile, canvas };
    });
    const whole = new ImageData(image.data, image.width, image.height);
    for (const { x, y, width, height, canvas } of this.tiles) {
      canvas.getContext('2d').putImageData(whole, -x, -y, x, y, width, height);
    }
  }

  // Its top left corner, where the centre is the origin.
  get left() {
    return -Math.floor(this.width / 2);
  }
  get top() {
    return -Math.floor(this.height / 2);
  }

  /** The straight pixel at a place, as [red, green, blue, alpha]; null outside. */
  pixel(x, y) {
    if (x < 0 || y < 0 || x >= this.width || y >= this.height) return null;
    const at = 4 * (y * this.width + x);
    return [...this.data.subarray(at, at + 4)];
  }
}
