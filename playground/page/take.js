// Output for people: code, the clipboard, files.
import { make } from './controls.js';

const kWords = /(\/\/.*|'[^']*'|"[^"]*"|&h[0-9A-F]{8}|\bLMX_\w+|\b(?:Dim|As|If|Then|End|Return|Nil|True|False|Picture|Integer|Double|String)\b|-?\b\d+(?:\.\d+)?(?:e[+-]?\d+)?\b)/g;

/** Code as text and elements with the classes of its words. */
export function coloured(text, tab) {
  return text.split(kWords).map((part, i) => {
    if (i % 2 === 0) return part;
    const kind = part.startsWith('//') ? 'comment' : part.startsWith('LMX_') ? 'method' : /^[A-Z]/.test(part) && tab !== 'lmx' ? 'keyword' : 'number';
    return make('span', { className: kind }, part);
  });
}

/** Puts a text into the clipboard; gives whether it could. */
export async function copied(text) {
  try {
    await navigator.clipboard.writeText(text);
    return true;
  } catch {
    // Without the permission: by way of a selection.
    const area = make('textarea', { value: text, className: 'unseen' });
    document.body.append(area);
    area.select();
    const isDone = document.execCommand('copy');
    area.remove();
    return isDone;
  }
}

/** Hands a file to the browser, as a download. */
export function save(blob, name) {
  const link = make('a', { href: URL.createObjectURL(blob), download: name });
  link.click();
  setTimeout(() => URL.revokeObjectURL(link.href), 60000);
}
