// The document as a form. Every control carries the path of its value, as findings spell it.
import {button, element} from './elements.js';
import * as fields from './fields.js';

const listOf = (value) => (Array.isArray(value) ? value : []);
const objectOf = (value) => (value && typeof value === 'object' && !Array.isArray(value) ? value : {});

export function pathText(path) {
  return path.map((step, i) => (typeof step === 'number' ? `[${step}]` : i === 0 ? step : `.${step}`)).join('');
}

// The free number after those that the list has.
const nextNumber = (list, key) => 1 + Math.max(0, ...listOf(list).map((entry) => Number(objectOf(entry)[key]) || 0));

// Builds the form of one document. `working` takes the changes; `languages` are those with a column.
export class Form {
  constructor(working, languages, permissions) {
    this.working = working;
    this.languages = languages;
    this.permissions = permissions;
  }

  build(root) {
    const banners = objectOf(root.banner_config);
    return element('div', {},
      this.#group('Application', this.#fields(fields.general, [], root)),
      this.#purposes(root),
      this.#banners(banners),
      this.#places(banners),
      this.#permissionList(root),
      this.#group('Prompt for the system settings', this.#fields(fields.prompt, ['settings_prompt'],
        objectOf(root.settings_prompt)), {isClosed: true}));
  }

  // The labels of the screens, of which `own` are those that are there without the document's.
  labels(root, own) {
    const tables = objectOf(root.i18n);
    return own.keys.map((key, i) => this.#text(key, (language) => ['i18n', language, key],
      (language) => objectOf(tables[language])[key], (language) => own.languages[language]?.[i] ?? ''));
  }

  #group(title, content, {isClosed = false, path} = {}) {
    return element('details', {open: !isClosed, 'data-group': path ? pathText(path) : title},
      element('summary', {}, title), ...content);
  }

  #fields(list, path, values) {
    return list.map((field) => this.#field(field, [...path, field.key], values[field.key]));
  }

  #field(field, path, value) {
    if (field.kind === 'text' || field.kind === 'long') {
      const texts = objectOf(value);
      return this.#text(field.label, (language) => [...path, language], (language) => texts[language], () => '',
        field.kind === 'long', path);
    }
    if (field.kind === 'switch') return this.#switch(field.label, path, value === true);
    if (field.kind === 'choice') return this.#choice(field.label, path, value, field.choices);
    if (field.kind === 'permission') {
      return this.#choice(field.label, path, value, this.permissions.map((key) => ({value: key, label: key})));
    }
    if (field.kind === 'color') return this.#color(field.label, path, value);
    const isNumber = field.kind === 'integer';
    const input = element('input', {type: 'text', inputmode: isNumber && 'numeric', value: value ?? '',
      'data-path': pathText(path), spellcheck: 'false'});
    input.oninput = () => this.#take(path, isNumber && /^-?\d{1,15}$/.test(input.value) ? Number(input.value) : input.value);
    input.onchange = () => this.#dropIfEmpty(path, input.value);
    return element('label', {class: 'field'}, element('span', {}, field.label), input);
  }

  // A text with a control for each language.
  #text(label, pathIn, valueIn, placeholderIn, isLong = false, path = undefined) {
    const columns = this.languages.map((language) => {
      const value = valueIn(language);
      const control = element(isLong ? 'textarea' : 'input', {
        type: !isLong && 'text', rows: isLong && 3, lang: language, dir: 'auto', value: value ?? '',
        placeholder: placeholderIn(language), 'data-path': pathText(pathIn(language)),
        'aria-label': `${label}, ${language}`, class: value ? '' : 'missing'});
      control.oninput = () => {
        control.classList.toggle('missing', control.value === '');
        this.#take(pathIn(language), control.value);
      };
      control.onchange = () => this.#dropIfEmpty(pathIn(language), control.value);
      return element('div', {class: 'column'}, element('span', {class: 'language', 'aria-hidden': 'true'}, language), control);
    });
    return element('div', {class: 'text', role: 'group', 'aria-label': label, 'data-group': path && pathText(path)},
      element('span', {class: 'label', 'aria-hidden': 'true'}, label), element('div', {class: 'columns'}, ...columns));
  }

  #switch(label, path, isOn) {
    const input = element('input', {type: 'checkbox', checked: isOn, 'data-path': pathText(path)});
    input.onchange = () => this.#take(path, input.checked);
    return element('label', {class: 'switch'}, input, element('span', {}, label));
  }

  #choice(label, path, value, choices) {
    const known = choices.some((choice) => choice.value === value);
    const options = known || !value ? choices : [{value, label: value}, ...choices];
    const select = element('select', {'data-path': pathText(path)},
      !value && element('option', {value: ''}, 'nothing'),
      ...options.map((choice) => element('option', {value: choice.value, selected: choice.value === value}, choice.label)));
    select.onchange = () => this.#take(path, select.value);
    return element('label', {class: 'field'}, element('span', {}, label), select);
  }

  #color(label, path, value) {
    const isColor = /^#[0-9a-f]{6}$/i.test(value ?? '');
    const text = element('input', {type: 'text', value: value ?? '', 'data-path': pathText(path), spellcheck: 'false',
      'aria-label': label});
    const picker = element('input', {type: 'color', value: isColor ? value : '#000000', 'aria-label': `${label}, from a palette`});
    text.oninput = () => {
      if (/^#[0-9a-f]{6}$/i.test(text.value)) picker.value = text.value;
      this.#take(path, text.value);
    };
    picker.oninput = () => {
      text.value = picker.value.toUpperCase();
      this.#take(path, text.value);
    };
    return element('div', {class: 'field'}, element('span', {'aria-hidden': 'true'}, label), text, picker,
      element('span', {class: 'contrast', 'data-contrast': pathText(path)}));
  }

  #purposes(root) {
    const all = listOf(root.purposes);
    const add = () => this.working.change(['purposes', all.length], {
      purpose_id: nextNumber(all, 'purpose_id'), purpose_name: {}, purpose_description: {}, sdks: [],
      consent_status: 'not_determined', disable_opt_out: false}, true);
    return this.#group('Purposes', [
      ...all.map((purpose, i) => this.#purpose(objectOf(purpose), ['purposes', i])),
      button('Add a purpose', Array.isArray(root.purposes) ? add : () => this.working.change(['purposes'], [], true))]);
  }

  #purpose(purpose, path) {
    const name = this.#nameOf(purpose.purpose_name) || `Purpose ${purpose.purpose_id ?? ''}`;
    const components = listOf(purpose.sdks);
    const add = () => this.working.change([...path, 'sdks', components.length],
      {sdk_id: nextNumber(components, 'sdk_id'), sdk_name: {}, vendor: ''}, true);
    return this.#group(name, [
      ...this.#fields(fields.purpose, path, purpose),
      ...components.map((component, i) => this.#group(
        `Component: ${this.#nameOf(objectOf(component).sdk_name) || i + 1}`,
        [...this.#fields(fields.component, [...path, 'sdks', i], objectOf(component)),
          this.#remove(`Remove component ${i + 1} of ${name}`, [...path, 'sdks', i])],
        {isClosed: true, path: [...path, 'sdks', i]})),
      element('div', {class: 'actions'},
        Array.isArray(purpose.sdks) && button('Add a component', add, {'aria-label': `Add a component to ${name}`}),
        this.#remove(`Remove ${name}`, path))], {isClosed: true, path});
  }

  #banners(banners) {
    const categories = Object.entries(objectOf(banners.categories));
    const name = element('input', {type: 'text', spellcheck: 'false', 'aria-label': 'Name of a further banner'});
    const add = () => name.value.trim() && this.working.change(['banner_config', 'categories', name.value.trim()],
      categories[0]?.[1] ?? {compliance_type: 'opt-in'}, true);
    return this.#group('Banners', [...categories.map(([category, banner]) => this.#banner(category, objectOf(banner))),
      element('div', {class: 'actions'}, name, button('Add a banner', add, {title: 'a copy of the first'}))]);
  }

  #banner(category, banner) {
    const path = ['banner_config', 'categories', category];
    const palette = [...path, 'palette'];
    const colors = banner.palette
      ? this.#fields(fields.palette, palette, objectOf(banner.palette))
      : [button('Give it colours of its own', () => this.working.change(palette, fields.newPalette, true))];
    return this.#group(category, [...this.#fields(fields.banner, path, banner),
      this.#group('Colours', colors, {isClosed: true, path: palette}),
      this.#remove(`Remove banner ${category}`, path)], {isClosed: true, path});
  }

  #places(banners) {
    const path = ['banner_config', 'locations'];
    const categories = Object.keys(objectOf(banners.categories)).map((value) => ({value, label: value}));
    const rows = Object.entries(objectOf(banners.locations)).map(([place, category]) =>
      element('div', {class: 'place'},
        this.#choice(place === 'default' ? 'default (elsewhere)' : place, [...path, place], category, categories),
        this.#remove(`Remove ${place}`, [...path, place])));
    const place = element('input', {type: 'text', spellcheck: 'false', placeholder: 'DE or US#CA', 'aria-label': 'A further place'});
    const add = () => place.value.trim() && categories.length > 0 &&
      this.working.change([...path, place.value.trim()], categories[0].value, true);
    return this.#group('Places', [...rows, element('div', {class: 'actions'}, place, button('Add a place', add))],
      {isClosed: true, path});
  }

  #permissionList(root) {
    const all = listOf(root.permissions);
    const add = () => {
      const entry = {id: nextNumber(all, 'id'), permission_id: this.permissions[0]};
      const hasList = Array.isArray(root.permissions);
      this.working.change(hasList ? ['permissions', all.length] : ['permissions'], hasList ? entry : [entry], true);
    };
    return this.#group('Permissions', [
      ...all.map((permission, i) => this.#group(objectOf(permission).permission_id ?? `Permission ${i + 1}`,
        [...this.#fields(fields.permission, ['permissions', i], objectOf(permission)),
          this.#remove(`Remove permission ${i + 1}`, ['permissions', i])], {isClosed: true, path: ['permissions', i]})),
      button('Add a permission', add)], {isClosed: true});
  }

  #remove(label, path) {
    return button('Remove', () => this.working.remove(path, true), {'aria-label': label, class: 'quiet'});
  }

  #nameOf(text) {
    return objectOf(text)[this.languages[0]] || Object.values(objectOf(text))[0];
  }

  #take(path, value) {
    this.working.change(path, value);
  }

  // A text that is left empty is none; while somebody types it keeps its place.
  #dropIfEmpty(path, value) {
    if (value === '') this.working.remove(path);
  }
}
