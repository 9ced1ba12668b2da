// The JSON view. Shows only the part of a large document around a line, since browsers cannot lay out megabytes during
// typing.
import {byId} from './elements.js';

const largestWhole = 400_000;  // characters
const largestPart = 200_000;

// Line ends as the control normalizes them.
const normal = (text) => text.replace(/\r\n?/g, '\n');

function lineAt(text, offset) {
  let line = 1;
  for (let at = text.indexOf('\n'); at >= 0 && at < offset; at = text.indexOf('\n', at + 1)) ++line;
  return line;
}

export class Source {
  // onChanged(text) is called on every edit.
  constructor(onChanged) {
    this.text = '';
    this.begin = 0;
    const control = byId('source');
    control.oninput = () => {
      const part = control.value;
      const text = this.text.slice(0, this.begin) + part + this.text.slice(this.end);
      this.text = text;
      this.end = this.begin + part.length;
      onChanged(this.isWindows ? text.replaceAll('\n', '\r\n') : text);
    };
    byId('part-before').onclick = () => this.#turn(this.begin - largestPart);
    byId('part-after').onclick = () => this.#turn(this.end);
  }

  // Shows a text at the previous position.
  show(text) {
    this.isWindows = text.includes('\r\n');
    const shown = normal(text);
    if (shown === this.text && this.end !== undefined) return;
    this.text = shown;
    this.#put(Math.min(this.begin, Math.max(0, shown.length - 1)));
  }

  // Selects the character at a line and column.
  select({line, column}) {
    let start = 0;
    for (; line > 1; --line) {
      const end = this.text.indexOf('\n', start);
      if (end < 0) break;
      start = end + 1;
    }
    for (const character of this.text.slice(start, start + 2 * column)) {
      if (--column <= 0) break;
      start += character.length;
    }
    if (start < this.begin || start >= this.end) this.#put(start - largestPart / 2);
    const control = byId('source');
    control.focus();
    control.setSelectionRange(start - this.begin, start - this.begin + 1);
    const lines = control.value.split('\n').length;
    control.scrollTop = (lineAt(this.text.slice(this.begin), start - this.begin) - 5) * (control.scrollHeight / lines);
  }

  #turn(begin) {
    this.#put(begin);
    byId('source').scrollTop = 0;
  }

  // Shows the part that begins near `wanted`, at a line break if one is close.
  #put(wanted) {
    const isWhole = this.text.length <= largestWhole;
    const last = Math.max(0, this.text.length - largestPart);
    this.begin = isWhole ? 0 : this.#lineBegin(Math.min(Math.max(0, wanted), last));
    this.end = isWhole ? this.text.length : this.#lineBegin(Math.min(this.begin + largestPart, this.text.length));
    const control = byId('source');
    const {selectionStart, selectionEnd} = control;
    control.value = this.text.slice(this.begin, this.end);
    control.setSelectionRange(selectionStart, selectionEnd);
    byId('part').hidden = isWhole;
    byId('part-before').disabled = this.begin === 0;
    byId('part-after').disabled = this.end === this.text.length;
    byId('part-lines').textContent = isWhole ? '' :
      `Lines ${lineAt(this.text, this.begin)} to ${lineAt(this.text, this.end)} of ${lineAt(this.text, this.text.length)}`;
  }

  #lineBegin(offset) {
    if (offset === this.text.length) return offset;
    const begin = this.text.lastIndexOf('\n', offset - 1) + 1;
    // Splits a long line, but not within a character.
    const isFar = offset - begin > largestPart / 2;
    return isFar ? offset - /[\udc00-\udfff]/.test(this.text[offset]) : begin;
  }
}
