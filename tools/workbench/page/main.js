// The workbench page: edit, preview, compare and publish a configuration.
import {languagesIn} from './controls.js';
import {askAboutConflict, askAboutPublishing, askForNew} from './dialogs.js';
import {byId, element, say, tabs} from './elements.js';
import {Form} from './form.js';
import {markFields, showComparison, showContent, showFindings, showNoContent} from './panels.js';
import {Screens} from './screens.js';
import * as server from './server.js';
import {Source} from './source.js';
import {Working} from './working.js';

const milliseconds = 2000;  // interval of polling the file
const mostColumns = 100;

let overview;
let working;
let inspection;
let ownLabels;
let isLooking = false;
let isWriting = false;  // a request of ours that changes the files is in flight
let isPublishing = false;
let turn = Promise.resolve();
let isUnanswered = false;
const furtherLanguages = new Set();
const screens = new Screens();
const source = new Source((text) => {
  working.replace(text);
  working.changedAt = performance.now();
});
const views = tabs(byId('views'), (id) => id === 'tab-source' && showSource());
tabs(byId('lower'));

const fileTitle = (name) => `${name.tenant} / ${name.application} / ${name.file}`;
// English first, since translations start from it.
const languages = () => [...new Set([...(inspection?.languages ?? []), ...furtherLanguages])].sort(
  (left, right) => (right === 'en') - (left === 'en') || left.localeCompare(right));

// The parsed document; undefined if it is not JSON.
function root() {
  try {
    return JSON.parse(working.text);
  } catch {
    return undefined;
  }
}

function showForm() {
  const values = root();
  byId('form-note').hidden = values !== undefined;
  byId('form').inert = values === undefined;
  if (values === undefined) return;
  const isFirst = byId('form').childElementCount === 0;
  const open = new Set([...byId('form').querySelectorAll('details[open]')].map((group) => group.dataset.group));
  const focused = document.activeElement?.dataset?.path;
  const form = new Form({working, languages: languages().slice(0, mostColumns), permissions: overview.permissions,
    own: ownLabels, open: isFirst ? undefined : open, onFilled: markGroup});
  byId('form').replaceChildren(form.build(values));
  const left = languages().length - mostColumns;
  if (left > 0) byId('form').prepend(element('p', {class: 'hint'}, `Texts of ${left} further languages are in the JSON only.`));
  if (focused) byId('form').querySelector(`[data-path=${CSS.escape(focused)}]`)?.focus();
}

// Marks the controls of a group with their findings.
function markGroup(group) {
  if (inspection?.findings) markFields(group, inspection.findings, inspection.colors ?? []);
}

function showSource() {
  if (!byId('panel-source').hidden) source.show(working?.text ?? '');
}

function onInspected(found, isRebuilt) {
  inspection = {...found, languages: found.languages ?? inspection?.languages ?? [...languagesIn(root())]};
  if (isRebuilt) showForm();
  else markGroup(byId('form'));
  showSource();
  showFindings(found.findings, showField, showLine);
  showComparison(found);
  if (!found.isValid) {
    screens.keep();
    showNoContent();
  } else {
    showContent(found.content, languages());
    screens.show(working.text, {...found, languages: languages()}, working.changedAt);
  }
  working.changedAt = undefined;
  showState();
}

function onFailed(refusal) {
  isUnanswered = refusal.status === 0;
  say(refusal.message, true);
  showState();
}

function showState() {
  const isUnsaved = working && !working.isSaved;
  byId('save').disabled = !isUnsaved;
  byId('undo').disabled = !working?.history.length;
  byId('publish').disabled = !working || isPublishing;
  byId('add-language').disabled = !working;
  document.title = `${isUnsaved ? '* ' : ''}${working ? working.name.application : 'Configurations'} - Workbench`;
}

// Shows the field of a finding, or the nearest one; else the finding's line.
function showField(finding) {
  const {path: wanted, rule} = finding;
  if (rule === 'unknown-key' || rule === 'label-known') return showLine(finding);
  // A closed group has not created its controls yet, which may include further groups.
  const holds = ({dataset: {group}, isTitled}) => isTitled || (wanted.startsWith(group) && /^($|[.[])/.test(wanted.slice(group.length)));
  const unfilled = () => [...byId('form').querySelectorAll('details')].find((group) => group.fill && holds(group));
  for (let group = unfilled(); group; group = unfilled()) group.fill();
  const fields = [...byId('form').querySelectorAll('[data-path]')];
  const groups = [...byId('form').querySelectorAll('[data-group]')];
  for (let path = finding.path; path; path = path.replace(/(\.[^.[]*|\[\d+\]|^[^.[]*)$/, '')) {
    const group = groups.find((other) => other.dataset.group === path);
    const field = fields.find((other) => other.dataset.path === path) ??
      group?.querySelector('.missing[data-path]') ?? group?.querySelector('input, select, textarea') ??
      (path === finding.path ? fields.find((other) => other.dataset.path.startsWith(`${path}.`)) : undefined);
    if (!field) continue;
    views.show('tab-form');
    for (let above = field.closest('details'); above; above = above.parentElement.closest('details')) above.open = true;
    field.scrollIntoView({block: 'center'});
    return field.focus();
  }
  showLine(finding);
}

function showLine(place) {
  views.show('tab-source');
  source.select(place);
}

async function open(name) {
  try {
    const stored = await server.read(name);
    if (!stored.draft && !stored.live) return say(`${fileTitle(name)} is not there any more.`, true);
    furtherLanguages.clear();
    byId('form').replaceChildren();
    inspection = undefined;
    working = new Working(name, stored, onInspected, onFailed);
    history.replaceState(null, '', `#${new URLSearchParams(name)}`);
    say(stored.draft ? '' : 'There is no draft; this is what is live.');
  } catch (refusal) {
    say(`${fileTitle(name)} cannot be opened: ${refusal.message}`, true);
  } finally {
    showName();
  }
}

const known = ({tenant, application, file}) => JSON.stringify({tenant, application, file});

// Selects the open document again.
function showName() {
  byId('document').value = working ? known(working.name) : '';
}

const mayLeave = () => !working || working.isSaved || confirm('Leave without saving?');

async function showDocuments(chosen) {
  [overview, ownLabels] = await Promise.all([server.overview(), ownLabels ?? server.labels()]);
  byId('applications').textContent = overview.applications;
  byId('document').replaceChildren(element('option', {value: ''}, 'Choose a configuration'),
    ...overview.documents.map((entry) => element('option', {value: known(entry)},
      `${fileTitle(entry)}${entry.isDraft ? '' : ' (live only)'}`)));
  const only = overview.documents.length === 1 ? overview.documents[0] : undefined;
  const name = chosen ?? only;
  if (!name) return showState();
  await open(JSON.parse(known(name)));
}

// Only one of saving and publishing at a time; a second press waits for the first.
const inTurn = (work) => () => (turn = turn.then(work).catch(onFailed));

async function write(request) {
  isWriting = true;
  try {
    await request();
  } finally {
    isWriting = false;
  }
}

async function save() {
  const saved = working;
  document.activeElement?.blur();  // commits text that is still being typed
  saved.resume();
  await saved.settled();
  if (saved.waiting.size > 0) return say(`Not saved: ${byId('status').textContent}`, true);
  const {text} = saved;
  try {
    await write(async () => saved.written(text, {text, tag: (await server.save(saved.name, text, saved.tag)).tag}));
    say('Saved.');
  } catch (refusal) {
    if (refusal.status !== 412) say(`Not saved: ${refusal.message}`, true);
    else await resolveConflict(saved, text, refusal.answer.draft);
  }
  showState();
}

// Another program has written or removed the file.
async function resolveConflict(saved, mine, theirs) {
  if (!theirs) {
    saved.tag = '';
    return say('Not saved: the file is gone. Saving again makes it anew.', true);
  }
  const answer = await askAboutConflict(saved.name.file, mine, theirs.text);
  if (answer === 'theirs') {
    saved.take(theirs);
    say('The file on disk was taken.');
  } else if (answer === 'mine') {
    saved.tag = theirs.tag;
    await save();
  } else {
    say('Not saved: the file has changed on disk.', true);
  }
}

async function publish() {
  if (isPublishing) return;
  isPublishing = true;
  showState();
  try {
    await publishWorking();
  } finally {
    isPublishing = false;
    showState();
  }
}

async function publishWorking() {
  const published = working;
  published.resume();
  await published.settled();
  if (published !== working) return;
  // Exactly what is shown now is published, over what is live now.
  const shown = inspection;
  const {text} = published;
  if (!shown?.findings) return say('Not published: the document has not been checked yet.', true);
  if (!(await askAboutPublishing(published.name, shown))) return;
  if (!published.isSaved) await save();
  if (!published.isSaved || published.text !== text) return say(`Not published. ${byId('status').textContent}`, true);
  try {
    await write(async () => {
      const {draft, version, isRaised} = await server.publish(published.name, published.tag, shown.liveTag);
      published.written(text, draft);
      published.inspectAgain();
      say(`Version ${version} is live${isRaised ? '; the version was raised' : ''}.`);
    });
  } catch (refusal) {
    say(`Not published: ${refusal.message}`, true);
  }
}

// Polls for changes by other programs. An answer from before or beside a change of ours tells nothing about others.
async function watch() {
  if (!working || working.running || isWriting || document.hidden || byId('dialog').open) return;
  const watched = working;
  const before = working.tag;
  const isLate = () => watched !== working || working.running || isWriting || working.tag !== before;
  const {draft, live} = await server.tags(watched.name);
  if (isLate()) return;
  if (isUnanswered) say('The workbench answers again.');
  isUnanswered = false;
  working.resume();
  if ((live?.tag ?? '') !== working.liveTag) {
    working.liveTag = live?.tag ?? '';
    working.inspectAgain();
  }
  const tag = draft?.tag ?? '';
  if (tag === working.tag || tag === working.seenTag) return;
  if (working.isSaved && draft) {
    const stored = await server.read(working.name);
    if (isLate() || !working.isSaved || !stored.draft) return;
    working.take(stored.draft);
    say('The file changed on disk; this is what it says now.');
  } else {
    working.seenTag = tag;
    say(draft ? 'The file changed on disk. Saving shows both.' : 'The file on disk is gone.', true);
  }
}

async function look() {
  if (isLooking) return;
  isLooking = true;
  await watch().catch(onFailed);
  isLooking = false;
}

function addLanguage() {
  const code = byId('language-code').value.trim().toLowerCase();
  if (!code || languages().includes(code)) return;
  furtherLanguages.add(code);
  byId('language-code').value = '';
  showForm();
  say(`Texts have a column for ${code}.`);
}

byId('document').onchange = async (event) => {
  const chosen = event.target.value;
  if (chosen && mayLeave()) await open(JSON.parse(chosen));
  else showName();
};
byId('new').onclick = async () => {
  if (!mayLeave()) return;
  const name = await askForNew(overview);
  if (!name) return;
  await showDocuments(name);
  say('The configuration was made. Findings tell what is still to be done.');
};
byId('save').onclick = inTurn(save);
byId('publish').onclick = inTurn(publish);
byId('undo').onclick = () => working.undo();
byId('add-language').onclick = addLanguage;
document.addEventListener('keydown', (event) => {
  if ((event.ctrlKey || event.metaKey) && event.key === 's' && working) {
    event.preventDefault();
    inTurn(save)();
  }
});
window.addEventListener('beforeunload', (event) => working && !working.isSaved && event.preventDefault());
setInterval(look, milliseconds);
window.addEventListener('focus', look);  // returning from another program

const linked = Object.fromEntries(new URLSearchParams(location.hash.slice(1)));
await showDocuments(linked.file ? linked : undefined).catch(onFailed);
