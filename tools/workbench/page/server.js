// The workbench server's API, relative to the page's URL.

// An error response: HTTP status (0: none) and the server's message.
export class Refusal extends Error {
  constructor(status, answer) {
    super(answer.error ?? `The server answered ${status}.`);
    this.status = status;
    this.answer = answer;
  }
}

async function ask(method, path, {body, headers} = {}) {
  let response;
  try {
    response = await fetch(path, {method, body, headers});
  } catch {
    throw new Refusal(0, {error: 'The workbench does not answer. Is it still running? What you wrote is still here.'});
  }
  if (response.ok) return response;
  throw new Refusal(response.status, await response.json().catch(() => ({})));
}

const askJson = async (...parameters) => (await ask(...parameters)).json();
const query = (values) => new URLSearchParams(values).toString();

export const overview = () => askJson('GET', 'api/overview');
export const labels = () => askJson('GET', 'api/labels');
export const create = (wishes) => askJson('POST', 'api/create', {body: JSON.stringify(wishes)});
export const read = (name) => askJson('GET', `api/document?${query(name)}`);
export const tags = (name) => askJson('GET', `api/document?${query({...name, tags: 1})}`);
export const save = (name, text, tag) =>
  askJson('PUT', `api/document?${query(name)}`, {body: text, headers: {'If-Match': tag}});
export const inspect = (name, text, changes) =>
  askJson('POST', `api/inspect?${query(name)}`, {body: JSON.stringify({text, changes})});
export const publish = (name, tag, liveTag) =>
  askJson('POST', `api/publish?${query(name)}`, {body: JSON.stringify({tag, liveTag, isConfirmed: true})});
// Resolves with the picture and, for a banner, whether its measured answer buttons are 'alike' or 'unlike'.
export async function picture(view, text) {
  const response = await ask('POST', `api/picture?${query(view)}`, {body: text});
  return {blob: await response.blob(), answers: response.headers.get('Answers')};
}
export const traffic = (after) => askJson('GET', `api/traffic?${query({after})}`);
export const setFaults = (faults) => askJson('PUT', 'api/faults', {body: JSON.stringify(faults)});
