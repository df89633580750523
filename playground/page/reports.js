// What a call reported, as a card shows it.
import { make } from './controls.js';
import { kMostAveraged, selectedPixels } from './facts.js';
import { grouped } from './files.js';

/** The line below a call; `isStopped`: the chain has ended before, where there is no report. */
export function stateOf(report, isStopped) {
  if (!report) return isStopped ? [make('span', { className: 'muted' }, 'not called')] : [];
  const parts = [];
  if (report.nil || report.error) {
    const text = report.error ? `${report.error} · ${report.message}` : 'nil, code 0';
    parts.push(make('span', { className: 'error' }, text));
  } else if (report.width) {
    parts.push(make('span', {}, `${grouped(report.width)} × ${grouped(report.height)}`));
  }
  parts.push(make('span', { className: 'muted' }, `${report.milliseconds.toFixed(1)} ms`));
  if (report.result !== undefined) parts.push(make('strong', { className: 'value' }, String(report.result)));
  if (report.outputs && !report.error) parts.push(swatchOf(report.outputs), ...overflowOf(report));
  return parts;
}

function swatchOf(outputs) {
  const { red, green, blue, hue_degrees: hue, saturation, brightness } = outputs;
  const colour = red !== undefined ? `rgb(${red} ${green} ${blue})` : hsvColour(hue, saturation, brightness);
  const text = (number) => {
    if (Number.isNaN(number)) return 'NaN';
    return Number.isInteger(number) ? String(number) : number.toPrecision(6);
  };
  const swatch = make('i', { role: 'img', 'aria-label': `The colour ${colour}` });
  swatch.style.setProperty('--colour', colour);
  const lines = Object.entries(outputs).map(([name, number]) => make('span', {}, `${name} = ${text(number)}`));
  return make('span', { className: 'average' }, swatch, make('span', {}, ...lines));
}

function overflowOf({ values, from }) {
  const count = selectedPixels(values, from);
  if (count <= kMostAveraged) return [];
  return [make('p', { className: 'warning' }, `${grouped(count)} pixels are selected. Beyond ` +
    `${grouped(kMostAveraged)} of value 255 the sums of 32 bits overflow, and the averages may be wrong.`)];
}

function hsvColour(hue, saturation, brightness) {
  const turn = Number.isNaN(hue) || hue < 0 ? 0 : hue / 60;
  const channel = (n) => {
    const k = (n + turn) % 6;
    return Math.round(255 * (brightness - brightness * saturation * Math.max(0, Math.min(k, 4 - k, 1))));
  };
  return `rgb(${channel(5)} ${channel(3)} ${channel(1)})`;
}
