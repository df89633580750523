// The methods to choose from. Each has a small picture of its effect on the current picture, which
// the plug-in makes from a reduced copy.
import { givesPicture, takesPicture, shortName } from './plugin.js';
import { leavesPicture, valuesOf } from './chain.js';
import { make } from './controls.js';
import { kFacts, kGroups, startOf } from './facts.js';

const kWidth = 132, kHeight = 88;

function reduced(image) {
  const canvas = document.createElement('canvas');
  const factor = Math.min(1, kWidth / image.width, kHeight / image.height);
  canvas.width = Math.max(1, Math.round(image.width * factor));
  canvas.height = Math.max(1, Math.round(image.height * factor));
  const context = canvas.getContext('2d', { willReadFrequently: true });
  context.imageSmoothingQuality = 'high';
  context.drawImage(image.canvas, 0, 0, canvas.width, canvas.height);
  return context.getImageData(0, 0, canvas.width, canvas.height);
}

function valuesFor(plugin, method, size) {
  const given = startOf(method.name, size);
  if ('width' in given && !takesPicture(method)) Object.assign(given, { width: kWidth, height: kHeight });
  return valuesOf(plugin, method, given, size);
}

// What the method makes of the small picture, as an image; or the averages, as a colour.
function sample(plugin, method, small) {
  plugin.setNewPictures('context', 1 << 20);
  const source = takesPicture(method) ? plugin.makePicture('context', small) : 0;
  const values = valuesFor(plugin, method, { width: small.width, height: small.height });
  const { result, outputs } = plugin.call(method, method.parameters.map((p) => (p.type === 'picture' ? source : values[p.name] ?? 0)));
  const handle = givesPicture(method) ? result : source;
  const image = handle && !Object.keys(outputs).length ? plugin.imageOf(handle) : null;
  for (const owned of new Set([source, givesPicture(method) ? result : 0])) if (owned) plugin.giveUp(owned);
  return { image, outputs };
}

function thumbnail(plugin, method, small) {
  const canvas = make('canvas', { className: 'thumbnail', width: kWidth, height: kHeight, 'aria-hidden': 'true' });
  const context = canvas.getContext('2d');
  if (!leavesPicture(method)) {
    const text = method.result === 'string' ? '31 → “…”' : '0';
    return make('span', { className: 'thumbnail words', 'aria-hidden': 'true' }, text);
  }
  const { image, outputs } = sample(plugin, method, small);
  if (image) {
    const picture = make('canvas', { width: image.width, height: image.height });
    picture.getContext('2d').putImageData(new ImageData(image.data, image.width, image.height), 0, 0);
    const factor = Math.min(kWidth / image.width, kHeight / image.height, 1);
    const width = image.width * factor, height = image.height * factor;
    context.imageSmoothingQuality = 'high';
    context.drawImage(picture, (kWidth - width) / 2, (kHeight - height) / 2, width, height);
  } else {
    const { red, green, blue, hue_degrees: hue, saturation, brightness } = outputs;
    context.fillStyle = red === undefined
      ? `hsl(${Number.isNaN(hue) ? 0 : hue} ${saturation * 100}% ${brightness * 60}%)` : `rgb(${red} ${green} ${blue})`;
    context.beginPath();
    context.arc(kWidth / 2, kHeight / 2, kHeight * 0.32, 0, 2 * Math.PI);
    context.fill();
  }
  return canvas;
}

// May be broken before a capital letter.
const breakable = (name) => name.split(/(?=[A-Z_][a-z])/).flatMap((part, i) => (i ? [document.createElement('wbr'), part] : [part]));

/**
 * Fills the dialog for a picture { width, height, canvas }, or null; `isAllowed(method)` says which
 * can be chosen.
 */
export function fillGallery(list, plugin, picture, isAllowed, choose) {
  const small = picture ? reduced(picture) : { width: 1, height: 1, data: new Uint8ClampedArray(4) };
  list.replaceChildren(...kGroups.map((group) => {
    const methods = plugin.methods.filter((method) => kFacts[method.name]?.group === group);
    return make('section', {}, make('h3', {}, group),
      make('div', { className: 'gallery-grid' }, ...methods.map((method) => {
        const summary = plugin.facts.find((f) => f.name === method.name).summary;
        const allowed = isAllowed(method);
        return make('button', {
          type: 'button', className: 'choice', disabled: !allowed, onclick: () => choose(method), 'data-method': method.name,
          title: allowed ? '' : takesPicture(method) ? 'needs a picture' : 'takes no picture: only as the first call',
        }, thumbnail(plugin, method, small), make('b', {}, ...breakable(shortName(method.name))), make('span', {}, summary));
      })));
  }));
}
