// Elements of the page. What comes out of a document is always a text, never HTML.

// element('button', {type: 'button', onclick: f}, 'Save'): attributes by their names, handlers and properties as such.
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

// `content` is a text, or a list of texts and elements.
export const button = (content, onclick, attributes = {}) =>
  element('button', {type: 'button', onclick, ...attributes}, ...[content].flat());

// A text of the document among others, whose direction it does not turn.
export const apart = (text) => element('bdi', {}, text);

export const byId = (id) => document.getElementById(id);

// Tabs by the pattern of the ARIA practices: arrow keys move between them. `list` has buttons that control the panels.
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

// What a person should know now; screen readers say it, too.
export function say(text, isError = false) {
  const status = byId('status');
  status.textContent = text;
  status.classList.toggle('error', isError);
}
