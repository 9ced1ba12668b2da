// A document that is being worked on: its text, and what there is to say about it.
import * as server from './server.js';

const longestHistory = 100;

// Changes are made by the server, which leaves everything else in the text as it is. While one request is under way,
// further changes wait; the last value of a place counts.
export class Working {
  // stored: {draft: {text, tag}, live: {text, tag}}, either of which may be missing. onInspected(inspection, isRebuilt)
  // follows every change; isRebuilt when more than values changed. onFailed(refusal).
  constructor(name, stored, onInspected, onFailed) {
    this.name = name;
    this.onInspected = onInspected;
    this.onFailed = onFailed;
    this.waiting = new Map();
    this.history = [];
    this.liveTag = stored.live?.tag ?? '';
    this.seenTag = null;  // of a change on disk that was told
    this.take(stored.draft ?? {text: stored.live?.text ?? '', tag: ''});
  }

  get isSaved() {
    return this.text === this.savedText && this.waiting.size === 0 && !this.isBusy;
  }

  // The text of the file that has that tag becomes this one's.
  take({text, tag}) {
    this.savedText = text;
    this.tag = tag;
    this.replace(text);
  }

  // Sets what is at the path, such as ['purposes', 0, 'purpose_name', 'en'].
  change(path, value, isRebuilt = false) {
    this.#add({path, value}, isRebuilt);
  }

  remove(path, isRebuilt = false) {
    this.#add({path, remove: true}, isRebuilt);
  }

  replace(text) {
    this.waiting.clear();
    if (this.text !== undefined && this.text !== text) this.#remember();
    this.text = text;
    this.isReplaced = true;
    this.#run();
  }

  undo() {
    if (this.history.length === 0) return;
    const text = this.history.pop();
    this.waiting.clear();
    this.text = text;
    this.isReplaced = true;
    this.#run();
  }

  // Anew, as what is live has changed.
  inspectAgain() {
    this.isAgain = true;
    this.#run();
  }

  // Resolves when nothing is under way any more.
  async settled() {
    while (this.running) await this.running;
  }

  #remember() {
    this.history.push(this.text);
    if (this.history.length > longestHistory) this.history.shift();
  }

  #add(change, isRebuilt) {
    const key = JSON.stringify(change.path);
    this.waiting.delete(key);
    this.waiting.set(key, change);
    this.isRebuilt ||= isRebuilt;
    this.changedAt = performance.now();
    this.#run();
  }

  #run() {
    this.running ??= this.#inspectAll().finally(() => (this.running = undefined));
  }

  async #inspectAll() {
    while (this.waiting.size > 0 || this.isReplaced || this.isAgain) {
      const changes = [...this.waiting.values()];
      const isRebuilt = Boolean(this.isReplaced || this.isRebuilt);
      const text = this.text;
      this.waiting.clear();
      this.isReplaced = this.isRebuilt = this.isAgain = false;
      this.isBusy = true;
      try {
        const inspection = await server.inspect(this.name, text, changes);
        if (this.text !== text) continue;  // replaced meanwhile
        if (inspection.text !== undefined && inspection.text !== text) {
          this.#remember();
          this.text = inspection.text;
        }
        this.isBusy = false;
        this.onInspected(inspection, isRebuilt);
      } catch (refusal) {
        this.isBusy = false;
        this.onFailed(refusal);
      }
    }
  }
}
