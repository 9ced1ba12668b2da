// The preview beside the form: a screen as the selected user sees it.
import {byId, element} from './elements.js';
import * as server from './server.js';

const choices = ['screen', 'location', 'language', 'size', 'scale', 'dark'];

export class Screens {
  constructor() {
    for (const id of choices) byId(id).onchange = () => this.#draw();
  }

  // Draws the document once the previous drawing has ended; `since` is the time of the first change.
  show(text, inspection, since) {
    this.text = text;
    this.since ??= since;
    this.#offer('language', inspection.languages, (language) => language);
    this.#offer('location', inspection.content.flatMap((row) => row.places), (place) => place || 'elsewhere');
    this.#draw();
  }

  // Keeps the last picture while the document is invalid.
  keep() {
    this.text = undefined;
    this.isWanted = false;
    if (!byId('picture').dataset.count) return;
    byId('picture').classList.add('old');
    this.#tell('The document is not valid. This is the last picture.', true);
  }

  #tell(text, isError) {
    byId('drawn').textContent = text;
    byId('drawn').classList.toggle('error', isError);
  }

  #offer(id, values, name) {
    const select = byId(id);
    const offered = [...select.options].map((option) => option.value);
    if (values.length === offered.length && values.every((value, i) => value === offered[i])) return;
    const chosen = select.value;
    select.replaceChildren(...values.map((value) => element('option', {value}, name(value))));
    if (values.includes(chosen)) select.value = chosen;
  }

  #view() {
    const view = Object.fromEntries(choices.map((id) => [id, byId(id).value]));
    return {...view, dark: byId('dark').checked};
  }

  async #draw() {
    this.isWanted = this.text !== undefined;
    if (this.isDrawing) return;
    this.isDrawing = true;
    while (this.isWanted) {
      this.isWanted = false;
      const since = this.since;
      this.since = undefined;
      try {
        const drawn = await server.picture(this.#view(), this.text);
        if (this.text !== undefined) await this.#put(drawn, since);
      } catch (refusal) {
        if (this.text === undefined) continue;
        byId('picture').classList.add('old');
        this.#tell(refusal.message, true);
      }
    }
    this.isDrawing = false;
  }

  async #put({blob, answers}, since) {
    const picture = byId('picture');
    const last = picture.src;
    picture.src = URL.createObjectURL(blob);
    await picture.decode();
    if (last) URL.revokeObjectURL(last);
    const option = (id) => byId(id).selectedOptions[0]?.textContent;
    picture.alt = `${option('screen')} in ${option('language')}, ${option('location')}`;
    picture.dataset.count = Number(picture.dataset.count ?? 0) + 1;
    const time = since === undefined ? undefined : Math.round(performance.now() - since);
    picture.dataset.milliseconds = time ?? '';
    if (this.text === undefined) return this.keep();  // the document broke while the picture was decoded
    const measured = {alike: 'Refusing and accepting weigh the same.', unlike: 'Refusing and accepting do not weigh the same.'};
    picture.classList.remove('old');
    this.#tell([measured[answers], time !== undefined && `Drawn ${time} ms after the change.`].filter(Boolean).join(' '),
      answers === 'unlike');
  }
}
