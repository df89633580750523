// Picture files as straight pixels: { name, width, height, data: red, green, blue, alpha, exact }.
//
// A canvas keeps colours premultiplied, so it rounds the colours of translucent pixels. Pictures
// with transparency are therefore read through WebGL, which gets the pixels of the decoder. Without
// WebGL, `exact` is false.

/** The most pixels of a picture that the page takes. */
export const kMostPixels = 40000000;
/** Canvases and textures of this length exist everywhere. */
const kTile = 4096;

export const grouped = (number) => number.toLocaleString('en');
const tooLarge = (width, height) =>
  new Error(`${grouped(width)} × ${grouped(height)} pixels are ${Math.round((width * height) / 1e6)} megapixels; this page ` +
    `takes up to ${kMostPixels / 1e6}`);

/**
 * The size that the head of a PNG or JPEG file tells, before anything is decoded; null for other
 * files.
 */
export function sizeInHeader(bytes) {
  const view = new DataView(bytes.buffer, bytes.byteOffset, bytes.length);
  if (bytes.length > 24 && view.getUint32(0) === 0x89504e47) return { width: view.getUint32(16), height: view.getUint32(20) };
  if (bytes.length < 4 || view.getUint16(0) !== 0xffd8) return null;
  for (let at = 2; at + 9 < bytes.length; ) {
    if (bytes[at] !== 0xff) return null;
    const marker = bytes[at + 1];
    if (marker === 0xff) {
      ++at;
      continue;
    }
    const isFrame = marker >= 0xc0 && marker <= 0xcf && ![0xc4, 0xc8, 0xcc].includes(marker);
    if (isFrame) return { width: view.getUint16(at + 7), height: view.getUint16(at + 5) };
    at += 2 + view.getUint16(at + 2);
  }
  return null;
}

async function decode(blob) {
  const asStored = { premultiplyAlpha: 'none', colorSpaceConversion: 'none', imageOrientation: 'from-image' };
  for (const options of [[asStored], []]) {
    try {
      return await createImageBitmap(blob, ...options);
    } catch {
      // Tried again without options, and then as an element, which knows more formats.
    }
  }
  const element = new Image();
  element.src = URL.createObjectURL(blob);
  try {
    await element.decode();
    return await createImageBitmap(element);
  } finally {
    URL.revokeObjectURL(element.src);
  }
}

/** The parts of a picture that a canvas or a texture holds, as { x, y, width, height }. */
export function* tilesOf(width, height) {
  for (let y = 0; y < height; y += kTile) {
    for (let x = 0; x < width; x += kTile) {
      yield { x, y, width: Math.min(kTile, width - x), height: Math.min(kTile, height - y) };
    }
  }
}

function paste(data, width, tile, pixels) {
  for (let y = 0; y < tile.height; ++y) {
    const row = pixels.subarray(4 * y * tile.width, 4 * (y + 1) * tile.width);
    data.set(row, 4 * ((tile.y + y) * width + tile.x));
  }
}

function readByCanvas(bitmap, data) {
  const canvas = document.createElement('canvas');
  for (const tile of tilesOf(bitmap.width, bitmap.height)) {
    canvas.width = tile.width;
    canvas.height = tile.height;
    const context = canvas.getContext('2d', { willReadFrequently: true });
    context.drawImage(bitmap, -tile.x, -tile.y);
    paste(data, bitmap.width, tile, context.getImageData(0, 0, tile.width, tile.height).data);
  }
}

// Gives whether it could, and what it read has the alpha that the canvas saw.
async function readByTexture(bitmap, data) {
  const gl = document.createElement('canvas').getContext('webgl', { premultipliedAlpha: false });
  if (!gl) return false;
  gl.bindFramebuffer(gl.FRAMEBUFFER, gl.createFramebuffer());
  for (const tile of tilesOf(bitmap.width, bitmap.height)) {
    const part = await createImageBitmap(bitmap, tile.x, tile.y, tile.width, tile.height, {
      premultiplyAlpha: 'none',
      colorSpaceConversion: 'none',
    });
    const texture = gl.createTexture();
    gl.bindTexture(gl.TEXTURE_2D, texture);
    gl.texImage2D(gl.TEXTURE_2D, 0, gl.RGBA, gl.RGBA, gl.UNSIGNED_BYTE, part);
    gl.framebufferTexture2D(gl.FRAMEBUFFER, gl.COLOR_ATTACHMENT0, gl.TEXTURE_2D, texture, 0);
    const pixels = new Uint8Array(4 * tile.width * tile.height);
    gl.readPixels(0, 0, tile.width, tile.height, gl.RGBA, gl.UNSIGNED_BYTE, pixels);
    gl.deleteTexture(texture);
    part.close();
    if (gl.getError() !== gl.NO_ERROR || !sameAlpha(pixels, data, bitmap.width, tile)) return false;
    paste(data, bitmap.width, tile, pixels);
  }
  gl.getExtension('WEBGL_lose_context')?.loseContext();
  return true;
}

function sameAlpha(pixels, data, width, tile) {
  for (let y = 0; y < tile.height; ++y) {
    for (let x = 0; x < tile.width; ++x) {
      if (pixels[4 * (y * tile.width + x) + 3] !== data[4 * ((tile.y + y) * width + tile.x + x) + 3]) return false;
    }
  }
  return true;
}

function hasTranslucent(data) {
  for (let i = 3; i < data.length; i += 4) if (data[i] !== 255) return true;
  return false;
}

/** Reads a file; throws an Error that tells people why it can't be. */
export async function readPicture(file) {
  const head = sizeInHeader(new Uint8Array(await file.slice(0, 1 << 18).arrayBuffer()));
  if (head && head.width * head.height > kMostPixels) throw tooLarge(head.width, head.height);
  let bitmap;
  try {
    bitmap = await decode(file);
  } catch {
    throw new Error('this is no picture that the browser can read');
  }
  const { width, height } = bitmap;
  if (width * height > kMostPixels) throw tooLarge(width, height);
  const data = new Uint8ClampedArray(4 * width * height);
  readByCanvas(bitmap, data);
  const exact = !hasTranslucent(data) || (await readByTexture(bitmap, data));
  bitmap.close();
  return { name: file.name || 'pasted.png', width, height, data, exact };
}
