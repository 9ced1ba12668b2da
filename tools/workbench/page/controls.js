// Form controls, one per kind of value. Each control carries the path of its value, spelt as in findings.
import {apart, button, element, say} from './elements.js';

// The screens' limit for an image, in bytes of its file.
const largestPicture = 768 * 1024;
// More checkboxes would be unusable.
const mostBoxes = 100;
// A control with longer text blocks the browser for seconds.
const longestText = 20_000;

const isLonger = (value) => typeof value === 'string' && value.length > longestText;
const lengthOf = (value) => element('span', {class: 'hint'}, `${value.length} characters, to be changed in the JSON`);

export const listOf = (value) => (Array.isArray(value) ? value : []);
export const objectOf = (value) => (value && typeof value === 'object' && !Array.isArray(value) ? value : {});

export function pathText(path) {
  return path.map((step, i) => (typeof step === 'number' ? `[${step}]` : i === 0 ? step : `.${step}`)).join('');
}

// The languages of an invalid document: the keys of everything that looks like a text, except labels.
export function languagesIn(values, found = new Set()) {
  const members = Object.entries(values && typeof values === 'object' ? values : {});
  const isText = !Array.isArray(values) && members.every(([key, value]) => /^[a-z]{2,3}(-[a-z0-9]+)*$/.test(key) && typeof value === 'string');
  for (const [key, value] of members) {
    if (isText) found.add(key);
    else if (!['i18n', 'names_map', 'locations'].includes(key)) languagesIn(value, found);
  }
  return found;
}

// The data URL of a base64 image; undefined if the screens do not support it.
function pictureAddress(text) {
  const base64 = /^(?:data:image\/(?:png|gif|jpeg);base64,)?([A-Za-z0-9+/=\s]+)$/.exec(text)?.[1] ?? '';
  const type = {iVBOR: 'png', '/9j/4': 'jpeg', R0lGO: 'gif'}[base64.slice(0, 5)];
  return type && `data:image/${type};base64,${base64}`;
}

async function base64Of(file) {
  const reader = new FileReader();
  await new Promise((resolve, reject) => {
    reader.onload = resolve;
    reader.onerror = () => reject(reader.error);
    reader.readAsDataURL(file);
  });
  return reader.result.slice(reader.result.indexOf(',') + 1);
}

export class Controls {
  // `working` receives the changes; each of `languages` has a column.
  constructor(working, languages) {
    this.working = working;
    this.languages = languages;
  }

  line(label, path, value, isNumber = false) {
    if (isLonger(value)) return element('div', {class: 'field'}, element('span', {}, label), lengthOf(value));
    const input = element('input', {type: 'text', inputmode: isNumber && 'numeric', value: value ?? '',
      'data-path': pathText(path), spellcheck: 'false', dir: 'auto'});
    input.oninput = () => this.take(path, isNumber && /^-?\d{1,15}$/.test(input.value) ? Number(input.value) : input.value);
    input.onchange = () => this.#dropIfEmpty(path, input.value);
    return element('label', {class: 'field'}, element('span', {}, label), input);
  }

  // A list of texts, one per line.
  lines(label, path, value) {
    const joined = listOf(value).join('\n');
    if (isLonger(joined)) return element('div', {class: 'field'}, element('span', {}, label), lengthOf(joined));
    const area = element('textarea', {rows: 2, value: joined, 'data-path': pathText(path), spellcheck: 'false'});
    area.oninput = () => this.take(path, area.value.split('\n').map((line) => line.trim()).filter(Boolean));
    return element('label', {class: 'field', 'data-group': pathText(path)}, element('span', {}, label), area);
  }

  // A localized text with one control per language. `own` returns the built-in text, which applies if the document has
  // none.
  text(label, pathIn, valueIn, {own = () => '', isLong = false, path} = {}) {
    const columns = this.languages.map((language) => {
      const value = valueIn(language);
      const title = element('span', {class: 'language', 'aria-hidden': 'true'}, language);
      if (isLonger(value)) return element('div', {class: 'column'}, title, lengthOf(value));
      // A single-line control would drop line breaks.
      const isArea = isLong || /[\r\n]/.test(value ?? '');
      const control = element(isArea ? 'textarea' : 'input', {
        type: !isArea && 'text', rows: isArea && 3, lang: language, dir: 'auto', value: value ?? '',
        placeholder: own(language), 'data-path': pathText(pathIn(language)),
        'aria-label': `${label}, ${language}`, class: value ? '' : 'missing'});
      control.oninput = () => {
        control.classList.toggle('missing', control.value === '');
        this.take(pathIn(language), control.value);
      };
      control.onchange = () => this.#dropIfEmpty(pathIn(language), control.value);
      return element('div', {class: 'column'}, title, control);
    });
    return element('div', {class: 'text', role: 'group', 'aria-label': label, 'data-group': path && pathText(path)},
      element('span', {class: 'label', 'aria-hidden': 'true'}, label), element('div', {class: 'columns'}, ...columns));
  }

  switch(label, path, isOn) {
    const input = element('input', {type: 'checkbox', checked: isOn, 'data-path': pathText(path)});
    input.onchange = () => this.take(path, input.checked);
    return element('label', {class: 'switch'}, input, element('span', {}, label));
  }

  // Offers "nothing" if no value is chosen or the value is optional.
  choice(label, path, value, choices, isOptional = false) {
    const known = choices.some((choice) => choice.value === value);
    const options = known || !value ? choices : [{value, label: value}, ...choices];
    const select = element('select', {'data-path': pathText(path)},
      (!value || isOptional) && element('option', {value: ''}, 'nothing'),
      ...options.map((choice) => element('option', {value: String(choice.value), selected: choice.value === value}, choice.label)));
    select.onchange = () => {
      const chosen = options.find((choice) => String(choice.value) === select.value);
      if (chosen) this.take(path, chosen.value);
      else this.working.remove(path);
    };
    return element('label', {class: 'field'}, element('span', {}, label), select);
  }

  color(label, path, value) {
    const isColor = /^#[0-9a-f]{6}$/i.test(value ?? '');
    const text = element('input', {type: 'text', value: value ?? '', 'data-path': pathText(path), spellcheck: 'false',
      'aria-label': label});
    const picker = element('input', {type: 'color', value: isColor ? value : '#000000', 'aria-label': `${label}, from a palette`});
    text.oninput = () => {
      if (/^#[0-9a-f]{6}$/i.test(text.value)) picker.value = text.value;
      this.take(path, text.value);
    };
    text.onchange = () => this.#dropIfEmpty(path, text.value);
    picker.oninput = () => {
      text.value = picker.value.toUpperCase();
      this.take(path, text.value);
    };
    return element('div', {class: 'field'}, element('span', {'aria-hidden': 'true'}, label), text, picker,
      element('span', {class: 'contrast', 'data-contrast': pathText(path)}));
  }

  picture(label, path, value) {
    const image = element('img', {class: 'logo', alt: `${label} as it is`});
    const file = element('input', {type: 'file', accept: 'image/png,image/jpeg,image/gif', 'aria-label': `${label}, from a file`,
      'data-path': pathText(path)});
    const remove = button('Remove', () => {
      this.working.remove(path);
      show('');
    }, {class: 'quiet', 'aria-label': `Remove ${label}`});
    const show = (text) => {
      const address = typeof text === 'string' ? pictureAddress(text) : undefined;
      image.hidden = !address;
      if (address) image.src = address;
      remove.hidden = !text;
    };
    file.onchange = async () => {
      const [chosen] = file.files;
      if (!chosen) return;
      if (chosen.size > largestPicture) return say(`${chosen.name} is larger than 768 KB, which the screens do not show.`, true);
      const text = await base64Of(chosen);
      this.take(path, text);
      show(text);
    };
    show(value);
    return element('div', {class: 'field'}, element('span', {'aria-hidden': 'true'}, label), file, image, remove);
  }

  // A list of purpose numbers, in the order of choosing. `purposes` are the existing ones, {number, name}.
  purposes(label, path, value, purposes) {
    let chosen = listOf(value);
    const unknown = [...new Set(chosen)].filter((number) => purposes.every((purpose) => purpose.number !== number));
    const all = [...purposes, ...unknown.map((number) => ({number, name: 'no such purpose'}))];
    const group = element('fieldset', {'data-group': pathText(path)}, element('legend', {}, label));
    // JavaScript would round larger numbers.
    if (all.length > mostBoxes || !all.every(({number}) => Number.isSafeInteger(number))) {
      group.append(element('p', {class: 'hint'}, 'These purposes can only be chosen in the JSON.'));
      return group;
    }
    const boxes = all.map(({number, name}) => {
      const box = element('input', {type: 'checkbox', checked: chosen.includes(number)});
      box.onchange = () => {
        chosen = box.checked ? [...chosen, number] : chosen.filter((other) => other !== number);
        this.take(path, chosen);
        showPaths();
      };
      group.append(element('label', {class: 'switch'}, box, element('span', {}, `${number}: `, apart(name))));
      return {box, number};
    });
    const showPaths = () => boxes.forEach(({box, number}) => {
      if (chosen.includes(number)) box.dataset.path = pathText([...path, chosen.indexOf(number)]);
      else delete box.dataset.path;
    });
    showPaths();
    if (all.length === 0) group.append(element('p', {class: 'hint'}, 'There are no purposes yet.'));
    return group;
  }

  remove(label, path) {
    return button('Remove', () => this.working.remove(path, true), {'aria-label': label, class: 'quiet'});
  }

  take(path, value) {
    this.working.change(path, value);
  }

  // Removes an empty text when the control loses focus; during typing it stays.
  #dropIfEmpty(path, value) {
    if (value === '') this.working.remove(path);
  }
}
