// A document being edited, with its inspection.
import * as server from './server.js';

// Limits of the undo history, whose steps are whole texts; a large document has fewer.
const longestHistory = 100;
const largestHistory = 64 << 20;  // characters

// The server applies changes, which preserves the rest of the text. During a request further changes are queued; of
// several for one path, the last one counts.
export class Working {
  // stored: {draft: {text, tag}, live: {text, tag}}, either may be missing. onInspected(inspection, isRebuilt) is
  // called after every change; isRebuilt if more than values has changed. onFailed(refusal) is called on errors.
  constructor(name, stored, onInspected, onFailed) {
    this.name = name;
    this.onInspected = onInspected;
    this.onFailed = onFailed;
    this.waiting = new Map();
    this.history = [];
    this.liveTag = stored.live?.tag ?? '';
    this.seenTag = null;  // tag of a reported change on disk
    this.take(stored.draft ?? {text: stored.live?.text ?? '', tag: ''});
  }

  get isSaved() {
    return this.text === this.savedText && this.isSettled;
  }

  // No change is on its way.
  get isSettled() {
    return this.waiting.size === 0 && !this.isBusy;
  }

  // Replaces the text by a file's content with its tag.
  take({text, tag}) {
    this.savedText = text;
    this.tag = tag;
    this.replace(text);
  }

  // The server has written `text`, or what it made of it. What was typed since then stays, unsaved.
  written(text, file) {
    this.savedText = file.text;
    this.tag = file.tag;
    if (this.text === text && this.isSettled && file.text !== text) this.replace(file.text);
  }

  // Sets the value at a path such as ['purposes', 0, 'purpose_name', 'en'].
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

  // Repeats requests that got no response.
  resume() {
    this.#run();
  }

  // Inspects again after a change of the live document.
  inspectAgain() {
    this.isAgain = true;
    this.#run();
  }

  // Resolves once no request is in flight.
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
        if (this.text !== text) continue;  // the text was replaced meanwhile
        if (inspection.text !== undefined && inspection.text !== text) {
          this.#remember();
          this.text = inspection.text;
        }
        this.isBusy = false;
        this.onInspected(inspection, isRebuilt);
      } catch (refusal) {
        this.isBusy = false;
        if (refusal.status === 0) {
          // No response: keep all changes queued.
          if (this.text === text) this.waiting = new Map([...changes, ...this.waiting]);
          this.isReplaced ||= isRebuilt;
          this.isAgain ||= isAgain;
          return this.onFailed(refusal);
        }
        // Rebuild the form, so that it does not show a change that was rejected.
        this.isReplaced ||= changes.length > 0;
        this.onFailed(refusal);
      }
    }
  }
}
