// Values of arguments as text: as people type them, as a program writes them, as lmx takes them. A
// colour is a number, 0xTTRRGGBB.

const kInteger = /^[+-]?\d+$/;
const kDouble = /^[+-]?(\d+\.?\d*|\.\d+)(e[+-]?\d+)?$/i;

/** The value that a text means; undefined if it means none of the type. */
export function parseValue(type, text) {
  const word = text.trim().replace('−', '-');
  switch (type) {
    case 'integer': {
      const number = kInteger.test(word) ? Number(word) : NaN;
      return number >= -2147483648 && number <= 2147483647 ? number : undefined;
    }
    case 'double':
      if (/^[+-]?nan$/i.test(word)) return NaN;
      if (/^[+-]?inf(inity)?$/i.test(word)) return word.startsWith('-') ? -Infinity : Infinity;
      return kDouble.test(word) ? Number(word) : undefined;
    case 'boolean':
      if (/^(true|yes|1)$/i.test(word)) return true;
      return /^(false|no|0)$/i.test(word) ? false : undefined;
    case 'color':
      return parseColour(word);
    default:
      return undefined;
  }
}

/** What a text of that type has to be. */
export const kExpected = {
  integer: 'a whole number from −2147483648 to 2147483647',
  double: 'a number such as 1, −0.5, 1e3, inf or nan',
  boolean: 'true or false',
  color: '#rrggbb, #rgb, &cRRGGBB, &cRRGGBBTT or &hTTRRGGBB, TT from 00 (opaque) to FF (clear)',
};

// The web means alpha by #rrggbbxx, and lmx refuses it. Addresses have digits without a sign.
function parseColour(word) {
  const program = /^&h([0-9a-f]{8})$/i.exec(word);
  if (program) return parseInt(program[1], 16);
  const short = /^#([0-9a-f])([0-9a-f])([0-9a-f])$/i.exec(word);
  if (short) return 0x11 * parseInt(`${short[1]}0${short[2]}0${short[3]}`, 16);
  const digits = /^(?:#([0-9a-f]{6})|(?:&c)?([0-9a-f]{6})([0-9a-f]{2})?)$/i.exec(word);
  return digits ? (parseInt(digits[3] ?? '00', 16) * 0x1000000 + parseInt(digits[1] ?? digits[2], 16)) >>> 0 : undefined;
}

const hex = (number, digits) => number.toString(16).padStart(digits, '0');

export const redOf = (colour) => (colour >>> 16) & 255;
export const greenOf = (colour) => (colour >>> 8) & 255;
export const blueOf = (colour) => colour & 255;
export const transparencyOf = (colour) => colour >>> 24;
/** #rrggbb, without the transparency. */
export const rgbText = (colour) => `#${hex(colour & 0xffffff, 6)}`;
export const cssColour = (colour) =>
  `rgb(${redOf(colour)} ${greenOf(colour)} ${blueOf(colour)} / ${1 - transparencyOf(colour) / 255})`;
export const withTransparency = (colour, transparency) => ((colour & 0xffffff) | (transparency << 24)) >>> 0;

function doubleText(number) {
  if (Number.isNaN(number)) return 'nan';
  if (!Number.isFinite(number)) return number < 0 ? '-inf' : 'inf';
  return Object.is(number, -0) ? '-0' : String(number);
}

/** As fields show it and lmx takes it; parseValue gives it back. */
export function valueText(type, value) {
  if (type === 'color' && transparencyOf(value)) return `&c${hex(value & 0xffffff, 6)}${hex(transparencyOf(value), 2)}`;
  if (type === 'color') return rgbText(value);
  return type === 'double' ? doubleText(value) : String(value);
}

/** As a program in the host's language has it. */
export function programText(type, value) {
  switch (type) {
    case 'boolean':
      return value ? 'True' : 'False';
    case 'color':
      return `&h${hex(value, 8).toUpperCase()}`;
    case 'double': {
      const text = doubleText(value);
      return /[.ein]/.test(text) ? text : `${text}.0`;
    }
    default:
      return String(value);
  }
}
