// The chain of calls that somebody puts together: a plain value that is never changed, only
// replaced. A step has a method and the arguments that are given; those left out have the values
// that lmx gives them.
//
//   { storage: 'context' | 'buffer', steps: [{ method: 'LMX_Stretch', given: { width: 400 } }] }
import { inputsOf, takesPicture, shortName } from './plugin.js';
import { parseValue, valueText } from './values.js';

export const kEmptyChain = { storage: 'context', steps: [] };

const replaced = (list, index, item) => list.map((old, i) => (i === index ? item : old));

export function withGiven(chain, index, changes) {
  const step = chain.steps[index];
  const given = { ...step.given };
  for (const [name, value] of Object.entries(changes)) {
    if (value === undefined) delete given[name];
    else given[name] = value;
  }
  return { ...chain, steps: replaced(chain.steps, index, { ...step, given }) };
}

export const withStep = (chain, index, step) => ({ ...chain, steps: replaced(chain.steps, index, step) });
export const withAdded = (chain, step) => ({ ...chain, steps: [...chain.steps, step] });
export const without = (chain, index) => ({ ...chain, steps: chain.steps.filter((_, i) => i !== index) });

export function withMoved(chain, from, to) {
  const steps = chain.steps.filter((_, i) => i !== from);
  steps.splice(to, 0, chain.steps[from]);
  return { ...chain, steps };
}

/**
 * Whether each step that needs a picture has one: one that takes none can only be the first, and a
 * report leaves none.
 */
export function isPossible(chain, find) {
  return chain.steps.every((step, i) => {
    const method = find(step.method);
    if (!takesPicture(method)) return i === 0;
    return i === 0 || leavesPicture(find(chain.steps[i - 1].method));
  });
}

export const leavesPicture = (method) => takesPicture(method) || method.result === 'picture';

/**
 * The values of all inputs of a call: what is given, and for the rest what lmx takes, for a picture
 * of that size.
 */
export function valuesOf(plugin, method, given, size) {
  const facts = plugin.facts.find(({ name }) => name === method.name);
  const values = {};
  for (const { name, type } of inputsOf(method)) {
    const fact = facts.arguments.find((argument) => argument.name === name);
    if (name in given) values[name] = given[name];
    else if (fact.computed) values[name] = plugin.computeFallback(method, name, size, given);
    else values[name] = parseValue(type, fact.fallback ?? '0');
  }
  return values;
}

// ---- In the address ----

/** "FlipRotate:flip_h=true,rotation=90/Stretch:width=400/@buffer". */
export function toAddress(chain, find, chart) {
  const words = chain.steps.map((step) => {
    const given = inputsOf(find(step.method)).filter((p) => p.name in step.given)
      .map((p) => `${p.name}=${valueText(p.type, step.given[p.name]).replace(/^(#|&c)/, '')}`);
    return shortName(step.method) + (given.length ? `:${given.join(',')}` : '');
  });
  if (chain.storage === 'buffer') words.push('@buffer');
  if (chart) words.push('@chart');
  return words.join('/');
}

/** What an address says, as { chain, chart }, without the words in it that mean nothing here. */
export function fromAddress(text, find) {
  const result = { chain: kEmptyChain, chart: false };
  for (const word of decoded(text).split('/')) {
    if (word === '@buffer') result.chain = { ...result.chain, storage: 'buffer' };
    else if (word === '@chart') result.chart = true;
    else if (word) {
      const step = stepFrom(word, find);
      const longer = step && withAdded(result.chain, step);
      if (step && isPossible(longer, find)) result.chain = longer;
    }
  }
  return result;
}

function decoded(text) {
  try {
    return decodeURIComponent(text);
  } catch {
    return text;
  }
}

function stepFrom(word, find) {
  const [name, list = ''] = word.split(':');
  const method = find(name);
  if (!method) return null;
  const given = {};
  for (const assignment of list.split(',')) {
    const [argument, text = ''] = assignment.split('=');
    const parameter = inputsOf(method).find((p) => p.name === argument);
    const value = parameter && parseValue(parameter.type, text);
    if (value !== undefined) given[argument] = value;
  }
  return { method: method.name, given };
}
