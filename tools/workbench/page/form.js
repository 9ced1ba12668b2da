// The document as a form. Groups create their controls when opened.
import {Controls, listOf, objectOf, pathText} from './controls.js';
import {button, element, say} from './elements.js';
import * as fields from './fields.js';

// Entries of a list shown at once; a button shows more.
const mostEntries = 200;
const longestTitle = 100;

// One more than the list's highest number.
const nextNumber = (list, key) => 1 + Math.max(0, ...listOf(list).map((entry) => Number(objectOf(entry)[key]) || 0));

// Builds the form of one document.
export class Form {
  // `working` receives the changes; each of `languages` has a column; `own` are the built-in labels. `open` has the
  // names of the groups to open; if undefined, all top-level groups are open. onFilled(group) is called when a group
  // has created its controls.
  constructor({working, languages, permissions, own, open, onFilled}) {
    this.working = working;
    this.controls = new Controls(working, languages);
    this.languages = languages;
    this.permissions = permissions;
    this.own = own;
    this.open = open;
    this.onFilled = onFilled;
  }

  build(root) {
    const banners = objectOf(root.banner_config);
    this.purposes = this.#purposeNames(root);
    const closed = {isClosed: true};
    return element('div', {},
      this.#group('Application', () => this.#fields(fields.general, [], root)),
      this.#purposes(root),
      this.#banners(root, banners),
      this.#map('Places', ['banner_config', 'locations'], banners.locations, fields.place,
        (path, category, place) => this.controls.choice(place === 'default' ? 'default (elsewhere)' : place, path, category, [
          ...Object.keys(objectOf(banners.categories)), ...Object.keys(objectOf(banners.names_map))].map(
          (value) => ({value, label: value}))), () => Object.keys(objectOf(banners.categories))[0]),
      this.#map('Other names of banners', ['banner_config', 'names_map'], banners.names_map, fields.name,
        (path, category, name) => this.controls.choice(name, path, category,
          Object.keys(objectOf(banners.categories)).map((value) => ({value, label: value}))),
        () => Object.keys(objectOf(banners.categories))[0]),
      this.#permissionList(root),
      this.#group('Prompt for the system settings', () => this.#prompt(root), closed),
      this.#group('Tracking', () => this.#fields(fields.tracking, [], root), closed),
      this.#group('Consent mode', () => this.#consentMode(root), closed),
      this.#group('Labels of the screens', () => this.#labels(root), {...closed, path: ['i18n']}));
  }

  #group(title, content, {isClosed = false, path} = {}) {
    const name = path ? pathText(path) : title;
    const isOpen = this.open ? this.open.has(name) : !isClosed;
    const group = element('details', {open: isOpen, 'data-group': name}, element('summary', {}, String(title).slice(0, longestTitle)));
    group.isTitled = !path;
    // Controls are created lazily, since large documents have more than a browser can lay out.
    group.fill = () => {
      group.fill = undefined;
      group.append(...content());
      this.onFilled(group);
    };
    if (isOpen) group.fill();
    group.ontoggle = () => group.open && group.fill?.();
    return group;
  }

  #fields(list, path, values) {
    return list.map((field) => {
      const keys = [...path, ...(field.in ?? []), field.key];
      const parent = (field.in ?? []).reduce((value, key) => objectOf(value[key]), values);
      return this.#field(field, keys, parent[field.key]);
    });
  }

  #field({kind, label, choices, isOptional}, path, value) {
    const {controls} = this;
    if (kind === 'text' || kind === 'long') {
      const texts = objectOf(value);
      return controls.text(label, (language) => [...path, language], (language) => texts[language], {isLong: kind === 'long', path});
    }
    if (kind === 'switch') return controls.switch(label, path, value === true);
    if (kind === 'choice') return controls.choice(label, path, value, choices, isOptional);
    if (kind === 'permission') {
      return controls.choice(label, path, value, this.permissions.map((key) => ({value: key, label: key})));
    }
    if (kind === 'color') return controls.color(label, path, value);
    if (kind === 'picture') return controls.picture(label, path, value);
    if (kind === 'lines') return controls.lines(label, path, value);
    if (kind === 'purposes') return controls.purposes(label, path, value, this.purposes);
    return controls.line(label, path, value, kind === 'integer');
  }

  // The controls of a list's first entries, and a button for more.
  #list(entries, make, start = 0) {
    const end = start + mostEntries;
    const made = entries.slice(start, end).map((entry, i) => make(entry, start + i));
    if (end < entries.length) {
      const more = button(`Show more of ${entries.length}`, () => {
        const further = this.#list(entries, make, end);
        more.replaceWith(...further);
        for (const group of further) this.onFilled(group);
      });
      made.push(more);
    }
    return made;
  }

  // Appends an entry; creates the list if missing.
  #append(path, list, entry) {
    if (Array.isArray(list)) this.working.change([...path, list.length], entry, true);
    else this.working.change(path, [entry], true);
  }

  #purposeNames(root) {
    const byNumber = new Map(listOf(root.purposes).map(objectOf).map((purpose) =>
      [purpose.purpose_id, {number: purpose.purpose_id, name: this.#nameOf(purpose.purpose_name) || 'without a name'}]));
    byNumber.delete(undefined);
    return [...byNumber.values()];
  }

  #purposes(root) {
    const all = listOf(root.purposes);
    const add = () => this.#append(['purposes'], root.purposes, {
      purpose_id: nextNumber(all, 'purpose_id'), purpose_name: {}, purpose_description: {}, sdks: [],
      consent_status: 'not_determined', disable_opt_out: false});
    return this.#group('Purposes', () => [
      ...this.#list(all, (purpose, i) => this.#purpose(objectOf(purpose), ['purposes', i])), button('Add a purpose', add)]);
  }

  #purpose(purpose, path) {
    const name = this.#nameOf(purpose.purpose_name) || `Purpose ${purpose.purpose_id ?? ''}`;
    const list = [...path, 'sdks'];
    const components = listOf(purpose.sdks);
    const add = () => this.#append(list, purpose.sdks, {sdk_id: nextNumber(components, 'sdk_id'), sdk_name: {}, vendor: ''});
    return this.#group(name, () => [
      ...this.#fields(fields.purpose, path, purpose),
      ...this.#list(components, (component, i) => this.#group(
        `Component: ${this.#nameOf(objectOf(component).sdk_name) || i + 1}`,
        () => [...this.#fields(fields.component, [...list, i], objectOf(component)),
          this.controls.remove(`Remove component ${i + 1} of ${name}`, [...list, i])],
        {isClosed: true, path: [...list, i]})),
      element('div', {class: 'actions'},
        button('Add a component', add, {'aria-label': `Add a component to ${name}`}),
        this.controls.remove(`Remove ${name}`, path))], {isClosed: true, path});
  }

  #banners(root, banners) {
    const categories = Object.entries(objectOf(banners.categories));
    const name = element('input', {type: 'text', spellcheck: 'false', 'aria-label': 'Name of a further banner'});
    const add = () => {
      const category = name.value.trim();
      if (!this.#isNew(category, banners.categories)) return;
      const banner = categories[0]?.[1] ?? {compliance_type: 'opt-in'};
      // All three members are required.
      if (!root.banner_config) {
        this.working.change(['banner_config'], {categories: {[category]: banner}, locations: {default: category}, names_map: {}}, true);
      } else {
        this.working.change(['banner_config', 'categories', category], banner, true);
      }
    };
    return this.#group('Banners', () => [
      ...this.#list(categories, ([category, banner]) => this.#banner(category, objectOf(banner))),
      element('div', {class: 'actions'}, name, button('Add a banner', add, {title: 'a copy of the first'}))]);
  }

  #banner(category, banner) {
    const path = ['banner_config', 'categories', category];
    const palette = [...path, 'palette'];
    const colors = () => (banner.palette
      ? this.#fields(fields.palette, palette, objectOf(banner.palette))
      : [button('Give it colours of its own', () => this.working.change(palette, fields.newPalette, true))]);
    return this.#group(category, () => [...this.#fields(fields.banner, path, banner),
      this.#group('Colours', colors, {isClosed: true, path: palette}),
      this.controls.remove(`Remove banner ${category}`, path)], {isClosed: true, path});
  }

  // An object with keys of the user's choice: one row or group per member. makeControl(path, value, key).
  #map(title, path, values, words, makeControl, newValue) {
    const row = ([key, value]) => element('div', {class: 'place'}, makeControl([...path, key], value, key),
      this.controls.remove(`Remove ${key}`, [...path, key]));
    const name = element('input', {type: 'text', spellcheck: 'false', placeholder: words.example, 'aria-label': words.label});
    const add = () => {
      const key = name.value.trim();
      const value = newValue();
      if (value !== undefined && this.#isNew(key, values)) this.working.change([...path, key], value, true);
    };
    return this.#group(title, () => [...this.#list(Object.entries(objectOf(values)), row),
      element('div', {class: 'actions'}, name, button(words.add, add))], {isClosed: true, path});
  }

  // Whether a member of that name can be added; an existing one is not replaced.
  #isNew(name, members) {
    const isThere = Object.hasOwn(objectOf(members), name);
    if (isThere) say(`There is a ${name} already.`, true);
    return name !== '' && !isThere;
  }

  #permissionList(root) {
    const all = listOf(root.permissions);
    const add = () => this.#append(['permissions'], root.permissions, {id: nextNumber(all, 'id'), permission_id: this.permissions[0]});
    return this.#group('Permissions', () => [
      ...this.#list(all, (permission, i) => this.#group(objectOf(permission).permission_id ?? `Permission ${i + 1}`,
        () => [...this.#fields(fields.permission, ['permissions', i], objectOf(permission)),
          this.controls.remove(`Remove permission ${i + 1}`, ['permissions', i])], {isClosed: true, path: ['permissions', i]})),
      button('Add a permission', add)], {isClosed: true});
  }

  #prompt(root) {
    const path = ['settings_prompt', 'permissions'];
    const chosen = objectOf(objectOf(root.settings_prompt).permissions);
    const listed = listOf(root.permissions).map((permission) => objectOf(permission).permission_id).filter((key) => typeof key === 'string');
    return [...this.#fields(fields.prompt, [], root),
      element('fieldset', {'data-group': pathText(path)}, element('legend', {}, 'Offered for'),
        ...this.#list([...new Set([...listed, ...Object.keys(chosen)])],
          (key) => this.controls.switch(key, [...path, key], chosen[key] === true)))];
  }

  #consentMode(root) {
    const path = ['gcm_config', 'region_overrides'];
    const regions = objectOf(root.gcm_config).region_overrides;
    return [...this.#fields(fields.consentMode, [], root),
      this.#group('Everywhere', () => this.#fields(fields.signals, ['gcm_config', 'default_mapping'],
        objectOf(objectOf(root.gcm_config).default_mapping)), {isClosed: true, path: ['gcm_config', 'default_mapping']}),
      this.#map('In regions of its own', path, regions, fields.region,
        (at, mapping, region) => this.#group(region, () => this.#fields(fields.signals, at, objectOf(mapping)), {isClosed: true, path: at}),
        () => Object.fromEntries(fields.signals.map(({key}) => [key, []])))];
  }

  // The screens' labels: many, and rarely changed.
  #labels(root) {
    const tables = objectOf(root.i18n);
    return this.own.keys.map((key, i) => this.controls.text(key, (language) => ['i18n', language, key],
      (language) => objectOf(tables[language])[key], {own: (language) => this.own.languages[language]?.[i] ?? ''}));
  }

  #nameOf(text) {
    const name = objectOf(text)[this.languages[0]] || Object.values(objectOf(text)).find(Boolean);
    return typeof name === 'string' ? name.slice(0, longestTitle) : undefined;
  }
}
