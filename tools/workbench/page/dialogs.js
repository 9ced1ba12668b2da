// Modal dialogs.
import {apart, button, byId, element} from './elements.js';
import * as server from './server.js';

// Shows a dialog with contents and actions, {text: action}. Resolves with the result of the chosen action, or undefined
// when closed. If an action throws, the dialog stays open and shows the error.
function asked(heading, contents, actions) {
  return new Promise((resolve) => {
    const dialog = byId('dialog');
    const problem = element('p', {class: 'error', role: 'alert'});
    let answer;
    const buttons = Object.entries(actions).map(([text, action]) => button(text, async () => {
      try {
        answer = await action();
        dialog.close();
      } catch (refusal) {
        problem.textContent = refusal.message;
      }
    }));
    dialog.replaceChildren(element('h2', {id: 'dialog-heading'}, heading), ...contents, problem,
      element('div', {class: 'actions'}, ...buttons, button('Cancel', () => dialog.close(), {class: 'quiet'})));
    dialog.onclose = () => resolve(answer);
    dialog.showModal();
  });
}

const mostLines = 200;
const longestText = 20_000;

// Shows both texts from their first difference on. Resolves with 'theirs', 'mine' or undefined.
export function askAboutConflict(file, mine, theirs) {
  const [left, right] = [mine.split('\n'), theirs.split('\n')];
  let first = 0;
  while (first < left.length && left[first] === right[first]) ++first;
  const side = (title, lines) => element('div', {}, element('h3', {}, title),
    element('textarea', {readonly: true, rows: 16, wrap: 'off', 'aria-label': title, value: lines.slice(Math.max(0, first - 2), first + mostLines).join('\n').slice(0, longestText)}));
  return asked(`${file} has changed on disk`, [
    element('p', {}, `Somebody else has written the file. It differs from line ${first + 1} on; nothing is overwritten unasked.`),
    element('div', {class: 'sides'}, side('Yours', left), side('On disk', right))],
    {'Take the file on disk': () => 'theirs', 'Overwrite it with mine': () => 'mine'});
}

// Resolves with true if the draft is to be published.
export function askAboutPublishing(name, {findings, isValid, comparison}) {
  const list = findings.filter((finding) => finding.level !== 'note' && finding.rule !== 'version-rises');
  const again = comparison
    ? `${comparison.isOlder ? 'The version of the draft is less than that of what is live: the draft may be an old one. ' : ''}${comparison.raisedVersion ? `The version is raised to ${comparison.raisedVersion}. ` : ''}Asked again: ${comparison.askedAgain}.`
    : 'Nothing is live yet.';
  const told = list.map((finding) => element('li', {class: finding.level}, `${finding.level}: `, apart(finding.path), ': ', apart(finding.text)));
  const actions = !isValid ? {} : {[list.length > 0 ? 'Publish all the same' : 'Publish now']: () => true};
  return asked(`Publish ${name.application}, ${name.file}?`, [
    element('p', {}, isValid ? again : 'Applications would refuse the draft, so it cannot be published.'),
    list.length > 0 && element('ul', {class: 'told'}, ...told)].filter(Boolean), actions);
}

const wordsOf = (text) => text.split(',').map((word) => word.trim()).filter(Boolean);

// Asks for a new configuration's data and creates it. Resolves with its name, or undefined.
export function askForNew({purposes, permissions, languages}) {
  const input = (label, id, value = '', hint = '') => element('label', {class: 'field'}, element('span', {}, label),
    element('input', {type: 'text', id, value, placeholder: hint, spellcheck: 'false'}));
  const rules = element('select', {id: 'new-elsewhere'},
    ...['opt-in', 'opt-out', 'notice-only'].map((rule) => element('option', {value: rule}, rule)));
  const contents = [
    element('p', {}, `Texts are there in ${languages.join(', ')}, and for the purposes ${purposes.join(', ')}; any other purpose is a name of yours.`),
    input('Name of the application', 'new-name'),
    input('Tenant, as in the address', 'new-tenant'),
    input('Application, as in the address', 'new-application'),
    input('Languages', 'new-languages', 'en'),
    input('Purposes', 'new-purposes', 'essential, measurement'),
    input('Permissions', 'new-permissions', '', permissions.slice(0, 2).join(', ')),
    input('Places where users opt in', 'new-opt-in', 'EU'),
    input('Places where users opt out', 'new-opt-out', '', 'US'),
    element('label', {class: 'field'}, element('span', {}, 'Rule elsewhere'), rules),
    input('Address of the privacy notice', 'new-notice', '', 'https://'),
    input('Access token for uploads', 'new-token')];
  const value = (id) => byId(id).value.trim();
  const create = () => server.create({
    name: value('new-name'), tenant: value('new-tenant'), application: value('new-application'),
    languages: wordsOf(value('new-languages')), purposes: wordsOf(value('new-purposes')),
    permissions: wordsOf(value('new-permissions')), optIn: wordsOf(value('new-opt-in')),
    optOut: wordsOf(value('new-opt-out')), elsewhere: value('new-elsewhere'),
    privacyNotice: value('new-notice'), token: value('new-token')});
  return asked('New configuration', contents, {'Create it': create});
}
