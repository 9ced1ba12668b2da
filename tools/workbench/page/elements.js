// Builds DOM elements. Document content becomes text, never HTML.

// element('button', {type: 'button', onclick: f}, 'Save'): attributes by name; functions, `value` and `checked` become
// properties.
export function element(tag, attributes = {}, ...children) {
  const made = document.createElement(tag);
  for (const [name, value] of Object.entries(attributes)) {
    if (value === undefined || value === null || value === false) continue;
    if (typeof value === 'function' || name === 'value' || name === 'checked') made[name] = value;
    else made.setAttribute(name, value === true ? '' : value);
  }
  made.append(...children.filter((child) => child !== undefined && child !== null && child !== false));
  return made;
}

// `content` is a text, or an array of texts and elements.
export const button = (content, onclick, attributes = {}) =>
  element('button', {type: 'button', onclick, ...attributes}, ...[content].flat());

// Isolates document text from the text direction around it.
export const apart = (text) => element('bdi', {}, text);

export const byId = (id) => document.getElementById(id);

// Tabs according to the ARIA practices, with arrow keys. `list` contains the buttons that control the panels.
export function tabs(list, onShown = () => {}) {
  const all = [...list.querySelectorAll('[role=tab]')];
  const show = (tab, isFocused) => {
    for (const other of all) {
      other.setAttribute('aria-selected', String(other === tab));
      other.tabIndex = other === tab ? 0 : -1;
      byId(other.getAttribute('aria-controls')).hidden = other !== tab;
    }
    if (isFocused) tab.focus();
    onShown(tab.id);
  };
  list.addEventListener('click', (event) => {
    const tab = event.target.closest('[role=tab]');
    if (tab) show(tab, false);
  });
  list.addEventListener('keydown', (event) => {
    const step = {ArrowRight: 1, ArrowLeft: -1}[event.key];
    if (!step) return;
    event.preventDefault();
    show(all[(all.indexOf(document.activeElement) + step + all.length) % all.length], true);
  });
  return {show: (id) => show(byId(id), false)};
}

// Shows a status message, which screen readers announce.
export function say(text, isError = false) {
  const status = byId('status');
  status.textContent = text;
  status.classList.toggle('error', isError);
}
