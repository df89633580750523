// The chain of calls as text: the lines of a program, the whole example, and a command line of lmx.
import { changesPicture, givesPicture, inputsOf, takesPicture, shortName } from './plugin.js';
import { programText, valueText } from './values.js';

// The call alone: "p.LMX_Stretch(400, 300, 0)". `values` are those of all inputs, by name.
function callText(method, values, picture) {
  const list = method.parameters.filter((p) => p.type !== 'picture')
    .map((p) => (p.byRef ? p.name : programText(p.type, values[p.name])));
  return `${takesPicture(method) ? `${picture}.` : ''}${method.name}(${list.join(', ')})`;
}

/** A line for each call. `calls` are { method, values }. */
export function linesOf(calls) {
  let picture = 'p';
  return calls.map(({ method, values }) => {
    const line = (method.result ? 'result = ' : '') + callText(method, values, picture);
    if (givesPicture(method)) picture = 'result';
    return line;
  });
}

const kTypes = { integer: 'Integer', double: 'Double', picture: 'Picture', string: 'String' };

/** The example around them: declarations, every call, and what to do when one fails. */
export function exampleOf(calls) {
  if (!calls.length) return '';
  const lines = ['// p is a Picture.'];
  const declared = new Set();
  const declare = (names, type) => {
    const fresh = names.filter((name) => !declared.has(name));
    fresh.forEach((name) => declared.add(name));
    return fresh.length ? [`Dim ${fresh.join(', ')} As ${kTypes[type]}`] : [];
  };
  if (!calls.some(({ method }) => takesPicture(method))) lines.length = 0;
  linesOf(calls).forEach((line, i) => {
    const { method } = calls[i];
    const outputs = method.parameters.filter((p) => p.byRef);
    if (outputs.length) lines.push(...declare(outputs.map((p) => p.name), outputs[0].type));
    if (method.result) {
      const fresh = !declared.has('result');
      declared.add('result');
      lines.push(fresh ? line.replace('result =', `Dim result As ${kTypes[method.result]} =`) : line);
    } else {
      lines.push(line);
    }
    if (givesPicture(method)) lines.push('If result = Nil Then');
    else if (takesPicture(method)) lines.push('If LMX_GetLastError() <> 0 Then');
    else return;
    lines.push('  MsgBox LMX_GetErrorMessage(LMX_GetLastError())', '  Return', 'End If');
  });
  return lines.join('\n');
}

const kPlain = /^[\w./:,=@%^+-]+$/;
/** For a shell, which gives the word on as it is. */
const quoted = (word) => (kPlain.test(word) ? word : `'${word.replaceAll("'", "'\\''")}'`);

// A name with = would be taken for an argument, one with - at its front for an option.
const fileWord = (name) => (/^-|=|^\+$/.test(name) ? `./${name}` : name);

/**
 * The same by the command-line tool. `steps` are { method, given }; only what is given is written.
 */
export function commandOf(steps, { file, storage }) {
  if (!steps.length) return '';
  const words = ['lmx'];
  steps.forEach(({ method, given }, i) => {
    if (i) words.push('+');
    words.push(shortName(method.name));
    if (i === 0 && takesPicture(method)) words.push(quoted(fileWord(file)));
    for (const p of inputsOf(method)) {
      if (p.name in given) words.push(`${p.name}=${quoted(valueText(p.type, given[p.name]))}`);
    }
  });
  if (steps.some(({ method }) => givesPicture(method) || changesPicture(method))) words.push('-o', 'out.png');
  if (storage === 'buffer') words.push('--storage', 'buffer');
  return words.join(' ');
}
