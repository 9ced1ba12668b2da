// A document that is being worked on: its text, and what there is to say about it.
import * as server from './server.js';

// Of a large document some steps only: each is a text.
const longestHistory = 100;
const largestHistory = 64 << 20;  // characters

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

  // Tries again what the server did not answer.
  resume() {
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
    const most = Math.max(1, Math.min(longestHistory, Math.floor(largestHistory / (this.text.length + 1))));
    this.history.splice(0, this.history.length - most);
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
      const changes = [...this.waiting];
      const isAgain = this.isAgain;
      const isRebuilt = Boolean(this.isReplaced || this.isRebuilt);
      const text = this.text;
      this.waiting.clear();
      this.isReplaced = this.isRebuilt = this.isAgain = false;
      this.isBusy = true;
      try {
        const inspection = await server.inspect(this.name, text, changes.map(([, change]) => change));
        if (this.text !== text) continue;  // replaced meanwhile
        if (inspection.text !== undefined && inspection.text !== text) {
          this.#remember();
          this.text = inspection.text;
        }
        this.isBusy = false;
        this.onInspected(inspection, isRebuilt);
      } catch (refusal) {
        this.isBusy = false;
        if (refusal.status === 0) {
          // No answer: nothing is lost, all of it waits.
          if (this.text === text) this.waiting = new Map([...changes, ...this.waiting]);
          this.isReplaced ||= isRebuilt;
          this.isAgain ||= isAgain;
          return this.onFailed(refusal);
        }
        // What cannot be done is not to be seen as done.
        this.isReplaced ||= changes.length > 0;
        this.onFailed(refusal);
      }
    }
  }
}
