// The requests and uploads of running applications, and the injected faults.
import {byId, element, say} from './elements.js';
import * as server from './server.js';

const milliseconds = 500;
const mostRows = 500;

let last = 0;

const time = (number) => new Date(number).toLocaleTimeString('en-GB');

function details({upload, message}) {
  const parts = [];
  if (message) parts.push(element('p', {class: 'error'}, message));
  if (upload) {
    const what = [`application ${upload.application}`, `version ${upload.version}`, upload.banner && `banner ${upload.banner}`,
      upload.isImplicit ? 'implicit: defaults, nobody chose' : 'explicit: the user chose', upload.isTest && 'test mode'];
    parts.push(element('p', {}, what.filter(Boolean).join(', ')));
    parts.push(element('ul', {},
      ...upload.purposes.map((purpose) => element('li', {},
        `purpose ${purpose.id} "${purpose.name ?? 'unknown'}": `, element('strong', {}, purpose.status),
        purpose.isEssential && ' (essential)', purpose.cause && ` (${purpose.cause})`)),
      ...upload.permissions.map((permission) => element('li', {}, `${permission.name}: `, element('strong', {}, permission.status)))));
    parts.push(element('p', {class: 'hint'}, `subject ${upload.subject}`));
  }
  return parts;
}

function add(exchanges) {
  const rows = byId('exchanges');
  for (const exchange of exchanges) {
    last = exchange.number;
    rows.prepend(element('tr', {}, element('td', {class: 'time'}, time(exchange.time)),
      element('td', {class: 'target'}, `${exchange.method} ${exchange.target}`),
      element('td', {class: exchange.status >= 400 ? 'error' : ''}, String(exchange.status)),
      element('td', {}, ...details(exchange))));
  }
  while (rows.childElementCount > mostRows) rows.lastElementChild.remove();
  byId('none').hidden = rows.childElementCount > 0;
  if (exchanges.length > 0) say(`${exchanges.length} new ${exchanges.length === 1 ? 'request' : 'requests'}`);
}

function showFaults({uploadStatus, fail, delay}) {
  byId('refuse').checked = uploadStatus !== 0;
  byId('fail').checked = fail !== 0;
  if (fail !== 0) byId('fail-status').value = fail;
  byId('slow').checked = delay !== 0;
  if (delay !== 0) byId('delay').value = delay;
}

async function setFaults() {
  try {
    showFaults(await server.setFaults({
      uploadStatus: byId('refuse').checked ? 1 : 0,
      fail: byId('fail').checked ? Number(byId('fail-status').value) : 0,
      delay: byId('slow').checked ? Number(byId('delay').value) : 0}));
    say('The faults are in force.');
  } catch (refusal) {
    say(`The faults were not changed: ${refusal.message}`, true);
  }
}

async function look(isFirst) {
  try {
    const {exchanges, faults, applications} = await server.traffic(last);
    if (isFirst) showFaults(faults);
    byId('applications').textContent = applications;
    add(exchanges);
  } catch (refusal) {
    say(refusal.message, true);
  }
  setTimeout(() => look(false), milliseconds);
}

for (const id of ['refuse', 'fail', 'fail-status', 'slow', 'delay']) byId(id).onchange = setFaults;
byId('clear').onclick = () => {
  byId('exchanges').replaceChildren();
  byId('none').hidden = false;
};
look(true);
