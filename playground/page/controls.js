// Controls for the arguments of a step, made from the declaration and the facts: a slider with a
// number, a switch, a colour with its transparency. A control is { element, update(value, isGiven)
// }; it calls `change(value, done)` with what people choose, `undefined` to leave the argument out,
// and `done` false while they are still dragging.
import {
  blueOf, cssColour, greenOf, kExpected, parseValue, redOf, rgbText, transparencyOf, valueText, withTransparency,
} from './values.js';

/**
 * An element with properties, attributes (those with a dash, and role), listeners (on...) and
 * children.
 */
export function make(name, properties = {}, ...children) {
  const element = document.createElement(name);
  for (const [key, value] of Object.entries(properties)) {
    if (key.startsWith('on')) element.addEventListener(key.slice(2), value);
    else if (key.includes('-') || key === 'role' || key === 'for') element.setAttribute(key, value);
    else element[key] = value;
  }
  element.append(...children.filter((child) => child !== null && child !== undefined));
  return element;
}

const kIcons = {
  up: 'M8 12.5v-9M4 7l4-4 4 4',
  down: 'M8 3.5v9M4 9l4 4 4-4',
  close: 'M4 4l8 8M12 4l-8 8',
  plus: 'M8 3v10M3 8h10',
  minus: 'M3 8h10',
  reset: 'M3.5 8a4.5 4.5 0 1 0 1.6-3.4M3.5 2.5v3h3',
  undo: 'M6 3L3 6l3 3M3.2 6H9a4 4 0 0 1 0 8H6.5',
  redo: 'M10 3l3 3-3 3M12.8 6H7a4 4 0 0 0 0 8h2.5',
  copy: 'M5.5 5.5v-3h8v8h-3M2.5 5.5h8v8h-8z',
  check: 'M3 8.5l3.5 3.5L13 4.5',
  download: 'M8 2.5v8M4.5 7.5L8 11l3.5-3.5M3 13.5h10',
  open: 'M2 12.5v-9h4.5l1.5 2h6v7z',
  area: 'M2.5 5V2.5H5M11 2.5h2.5V5M13.5 11v2.5H11M5 13.5H2.5V11',
  split: 'M8 2v12M2.5 4h11v8h-11z',
  side: 'M1.5 4h5.5v8H1.5zM9 4h5.5v8H9z',
  single: 'M2.5 3.5h11v9h-11z',
  swap: 'M3 5.5h10M10 2.5l3 3-3 3M13 10.5H3M6 7.5l-3 3 3 3',
  loupe: 'M7 2.5a4.5 4.5 0 1 0 0 9 4.5 4.5 0 0 0 0-9M10.3 10.3L14 14',
  fit: 'M3 6V3h3M10 3h3v3M13 10v3h-3M6 13H3v-3',
  link: 'M6.5 9.5l3-3M7 4.5l1-1a3 3 0 0 1 4.3 4.3l-1 1M9 11.5l-1 1a3 3 0 0 1-4.3-4.3l1-1',
  chart: 'M2.5 2.5h11v11h-11zM2.5 8h11M8 2.5v11',
  image: 'M2 3h12v10H2zM2 11l3.5-3.5 3 3L11 8l3 3M10.5 5.700a.6.6 0 1 0 0 .1z',
};

export function icon(name) {
  const svg = document.createElementNS('http://www.w3.org/2000/svg', 'svg');
  svg.setAttribute('viewBox', '0 0 16 16');
  svg.setAttribute('aria-hidden', 'true');
  svg.classList.add('icon');
  const path = document.createElementNS(svg.namespaceURI, 'path');
  path.setAttribute('d', kIcons[name]);
  svg.append(path);
  return svg;
}

export function iconButton(name, label, onclick, properties = {}) {
  return make('button', { type: 'button', className: 'icon-button', 'aria-label': label, title: label, onclick, ...properties },
    icon(name));
}

let ids = 0;

const titleOf = (name) => name.replaceAll('_', ' ');

/**
 * A field for a value as text. It selects itself when it is entered, and what is being typed is
 * never rewritten; a value that is none shows as an error and changes nothing.
 */
function field(type, { id, label, describedby, change, className = '' }) {
  let value, typing = false;
  const input = make('input', {
    type: 'text', id, className: `field ${className}`, inputMode: type === 'color' ? 'text' : 'decimal',
    autocomplete: 'off', spellcheck: false, 'aria-label': label,
  });
  if (describedby) input.setAttribute('aria-describedby', describedby);
  const judge = (isValid) => {
    input.setAttribute('aria-invalid', String(!isValid));
    input.setCustomValidity(isValid ? '' : `needs ${kExpected[type]}`);
    input.title = isValid ? '' : `needs ${kExpected[type]}`;
  };
  input.addEventListener('focus', () => input.select());
  // The click that gave the focus would take the selection away again.
  input.addEventListener('pointerdown', (event) => {
    if (document.activeElement === input) return;
    event.preventDefault();
    input.focus();
  });
  input.addEventListener('input', () => {
    typing = true;
    const parsed = parseValue(type, input.value);
    judge(parsed !== undefined);
    if (parsed !== undefined) {
      value = parsed;
      change(parsed, false);
    }
  });
  const leave = () => {
    if (!typing) return;
    typing = false;
    judge(true);
    input.value = valueText(type, value);
    change(value, true);
  };
  input.addEventListener('change', leave);
  input.addEventListener('blur', leave);
  input.addEventListener('keydown', (event) => {
    if (event.key === 'Enter') {
      leave();
      input.select();
    }
  });
  return {
    input,
    update(next) {
      value = next;
      if (!typing) input.value = valueText(type, next);
    },
  };
}

const rounded = (number, step) => Number((Math.round(number / step) * step).toFixed(6));

function numberControl(parameter, facts, change) {
  const id = `argument-${++ids}`, hint = `${id}-hint`;
  const isWhole = parameter.type === 'integer';
  const slider = make('input', {
    type: 'range', min: facts.min, max: facts.max, step: facts.step, 'aria-label': titleOf(parameter.name), tabIndex: 0,
  });
  const text = field(parameter.type, { id, label: undefined, describedby: hint, change: (value, done) => change(value, done) });
  text.input.removeAttribute('aria-label');
  let value = 0;
  const show = (next) => {
    value = next;
    slider.value = next;
    const part = (Math.min(Math.max(next, facts.min), facts.max) - facts.min) / (facts.max - facts.min || 1);
    const zero = Math.min(Math.max((0 - facts.min) / (facts.max - facts.min || 1), 0), 1);
    slider.style.setProperty('--from', `${100 * Math.min(zero, part)}%`);
    slider.style.setProperty('--to', `${100 * Math.max(zero, part)}%`);
  };
  slider.addEventListener('input', () => {
    show(Number(slider.value));
    text.update(value);
    change(value, false);
  });
  slider.addEventListener('change', () => change(value, true));
  text.input.addEventListener('keydown', (event) => {
    const way = { ArrowUp: 1, ArrowDown: -1 }[event.key];
    if (!way || !Number.isFinite(value)) return;
    event.preventDefault();
    const step = (isWhole ? Math.max(1, facts.step) : facts.step) * (event.shiftKey ? 10 : 1);
    change(rounded(value + way * step, isWhole ? 1 : facts.step), true);
    text.input.select();
  });
  const fieldBox = make('span', { className: 'number' }, text.input,
    facts.unit ? make('span', { className: 'unit', 'aria-hidden': 'true' }, facts.unit) : null);
  return {
    id,
    hint,
    body: [make('div', { className: 'slide' }, slider, fieldBox)],
    update(next) {
      show(next);
      text.update(next);
    },
  };
}

function switchControl(parameter, facts, change) {
  const id = `argument-${++ids}`, hint = `${id}-hint`;
  const box = make('input', { type: 'checkbox', id, className: 'switch', role: 'switch', 'aria-describedby': hint });
  box.addEventListener('change', () => change(box.checked, true));
  return { id, hint, inHead: box, body: [], update: (value) => (box.checked = value) };
}

function colourControl(parameter, facts, change) {
  const id = `argument-${++ids}`, hint = `${id}-hint`;
  let value = 0;
  const name = titleOf(parameter.name);
  const well = make('input', { type: 'color', 'aria-label': `${name}: colour`, className: 'well' });
  const swatch = make('span', { className: 'swatch' }, well);
  const clear = make('input', { type: 'range', min: 0, max: 255, step: 1, 'aria-label': `${name}: transparency` });
  const text = field('color', { id, describedby: hint, className: 'colour-text', change: (next, done) => change(next, done) });
  text.input.removeAttribute('aria-label');
  const show = () => {
    well.value = rgbText(value);
    swatch.style.setProperty('--colour', cssColour(value));
    clear.value = transparencyOf(value);
    clear.style.setProperty('--clear-from', `rgb(${redOf(value)} ${greenOf(value)} ${blueOf(value)})`);
    clear.setAttribute('aria-valuetext', `${Math.round((transparencyOf(value) / 255) * 100)} % transparent`);
  };
  const choose = (next, done) => {
    value = next;
    show();
    text.update(value);
    change(value, done);
  };
  const picked = () => withTransparency(parseValue('color', well.value), transparencyOf(value));
  // Somebody who picks a colour wants to see it, which a transparent one does not let.
  well.addEventListener('input', () => choose(transparencyOf(value) === 255 ? parseValue('color', well.value) : picked(), false));
  well.addEventListener('change', () => choose(value, true));
  clear.addEventListener('input', () => choose(withTransparency(value, Number(clear.value)), false));
  clear.addEventListener('change', () => choose(value, true));
  return {
    id,
    hint,
    body: [
      make('div', { className: 'slide' }, swatch,
        make('label', { className: 'clearness' }, make('span', {}, 'transparency'), clear), text.input),
    ],
    update(next) {
      value = next;
      show();
      text.update(next);
    },
  };
}

const kMakers = { integer: numberControl, double: numberControl, boolean: switchControl, color: colourControl };

/** The control of one parameter. `words` are the tool's about it. */
export function argumentControl(parameter, facts, words, change) {
  const control = kMakers[parameter.type](parameter, facts, change);
  const reset = iconButton('reset', `${titleOf(parameter.name)}: leave out`, () => change(undefined, true), {
    className: 'icon-button reset',
  });
  const element = make('div', { className: `argument ${parameter.type}` },
    make('div', { className: 'argument-head' }, make('label', { for: control.id }, parameter.name), reset, control.inHead ?? null),
    ...control.body,
    make('p', { className: 'hint', id: control.hint }, words));
  return {
    name: parameter.name,
    element,
    update(value, isGiven) {
      control.update(value);
      reset.hidden = !isGiven;
    },
  };
}
