// PNG files, written here, because a canvas would round the colours of translucent pixels.

const kTable = Uint32Array.from({ length: 256 }, (_, n) => {
  for (let k = 0; k < 8; ++k) n = n & 1 ? 0xedb88320 ^ (n >>> 1) : n >>> 1;
  return n;
});

export function crc32(bytes, crc = 0) {
  let c = ~crc;
  for (let i = 0; i < bytes.length; ++i) c = kTable[(c ^ bytes[i]) & 255] ^ (c >>> 8);
  return ~c >>> 0;
}

function chunk(name, content) {
  const bytes = new Uint8Array(content.length + 12);
  const view = new DataView(bytes.buffer);
  view.setUint32(0, content.length);
  for (let i = 0; i < 4; ++i) bytes[4 + i] = name.charCodeAt(i);
  bytes.set(content, 8);
  view.setUint32(content.length + 8, crc32(bytes.subarray(4, content.length + 8)));
  return bytes;
}

// Each row as the difference to the pixel on its left, or to the row above, whichever has the
// smaller sum.
function filtered(pixels, width, height, channels) {
  const stride = width * channels;
  const out = new Uint8Array((stride + 1) * height);
  const left = new Uint8Array(stride), above = new Uint8Array(stride);
  const weight = (byte) => (byte < 128 ? byte : 256 - byte);
  for (let y = 0; y < height; ++y) {
    const row = pixels.subarray(y * stride, (y + 1) * stride);
    const before = y ? (y - 1) * stride : -1;
    let leftSum = 0, aboveSum = 0;
    for (let i = 0; i < stride; ++i) {
      left[i] = row[i] - (i < channels ? 0 : row[i - channels]);
      above[i] = row[i] - (before < 0 ? 0 : pixels[before + i]);
      leftSum += weight(left[i]);
      aboveSum += weight(above[i]);
    }
    const place = y * (stride + 1);
    out[place] = leftSum <= aboveSum ? 1 : 2;
    out.set(leftSum <= aboveSum ? left : above, place + 1);
  }
  return out;
}

function isOpaque(data) {
  for (let i = 3; i < data.length; i += 4) if (data[i] !== 255) return false;
  return true;
}

function withoutAlpha(data) {
  const rgb = new Uint8Array((data.length / 4) * 3);
  for (let i = 0, k = 0; i < data.length; i += 4, k += 3) {
    rgb[k] = data[i];
    rgb[k + 1] = data[i + 1];
    rgb[k + 2] = data[i + 2];
  }
  return rgb;
}

async function compressed(bytes) {
  const stream = new Blob([bytes]).stream().pipeThrough(new CompressionStream('deflate'));
  return new Uint8Array(await new Response(stream).arrayBuffer());
}

/** The bytes of a PNG file with exactly these straight pixels. */
export async function encodePng({ width, height, data }) {
  const opaque = isOpaque(data);
  const channels = opaque ? 3 : 4;
  const header = new Uint8Array(13);
  const view = new DataView(header.buffer);
  view.setUint32(0, width);
  view.setUint32(4, height);
  header.set([8, opaque ? 2 : 6, 0, 0, 0], 8);
  const pixels = opaque ? withoutAlpha(data) : data;
  const parts = [
    Uint8Array.of(137, 80, 78, 71, 13, 10, 26, 10),
    chunk('IHDR', header),
    chunk('IDAT', await compressed(filtered(pixels, width, height, channels))),
    chunk('IEND', new Uint8Array(0)),
  ];
  return new Uint8Array(await new Blob(parts).arrayBuffer());
}
