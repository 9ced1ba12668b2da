// Panels about a document: findings, comparison with the live one, content by location.
import {apart, button, byId, element} from './elements.js';

export function showFindings(findings, onShow, onShowSource) {
  byId('tab-findings').textContent = `Findings (${findings.length})`;
  const items = findings.map((finding) => element('li', {class: finding.level},
    element('span', {class: 'level'}, finding.level),
    button([apart(finding.path), ': ', apart(finding.text)], () => onShow(finding), {class: 'link'}),
    button(`line ${finding.line}`, () => onShowSource(finding),
      {class: 'link', 'aria-label': `line ${finding.line} of the JSON: ${finding.path}`}),
    element('code', {}, finding.rule)));
  byId('findings').replaceChildren(
    items.length > 0 ? element('ol', {}, ...items) : element('p', {}, 'Nothing is wrong.'));
}

export function showComparison({comparison, isLive, isValid}) {
  const panel = byId('comparison');
  if (!isLive) return panel.replaceChildren(element('p', {}, 'Nothing is live yet.'));
  if (!comparison) {
    const which = isValid ? 'What is live' : 'The draft';
    return panel.replaceChildren(element('p', {}, `${which} is no valid configuration, so there is nothing to compare.`));
  }
  const {askedAgain, raisedVersion, leftOut, differences} = comparison;
  const items = differences.map(({isMaterial, text}) => element('li', {class: isMaterial ? 'warning' : 'note'},
    element('span', {class: 'level'}, isMaterial ? 'material' : 'cosmetic'), apart(text)));
  panel.replaceChildren(
    element('p', {}, raisedVersion && `Publishing raises the version to ${raisedVersion}. `,
      element('strong', {}, 'Asked again: '), `${askedAgain}.`),
    items.length > 0 ? element('ul', {}, ...items) : element('p', {}, 'The draft is what is live.'),
    leftOut > 0 && element('p', {}, `And ${leftOut} more.`));
}

const longestText = 200;
const shortened = (text) => (text.length > longestText ? `${text.slice(0, longestText)}…` : text);
const placeName = (place) => place || 'elsewhere';

export function showContent(content, languages) {
  const cell = (row, language) => {
    const texts = row.texts[language];
    if (!texts) return element('td', {}, 'no texts');
    const answers = [texts.reject, texts.accept].filter(Boolean).map((text) => `[${text}]`).join(' ');
    return element('td', {lang: texts.isForeign ? undefined : language, dir: 'auto'},
      element('strong', {}, texts.heading ?? ''), element('p', {}, shortened(texts.text ?? '')), element('p', {}, answers),
      texts.isForeign && element('p', {class: 'foreign'}, 'in part in another language'));
  };
  byId('content').replaceChildren(element('table', {},
    element('caption', {}, 'What users of each place and language get'),
    element('thead', {}, element('tr', {}, ...['Places', 'Rule', ...languages].map((text) =>
      element('th', {scope: 'col'}, text)))),
    element('tbody', {}, ...content.map((row) => element('tr', {},
      element('th', {scope: 'row'}, row.places.map(placeName).join(', ')),
      element('td', {}, `${row.type}, valid for ${row.validity}`, element('p', {}, 'banner ', apart(row.category))),
      ...languages.map((language) => cell(row, language)))))));
}

export function showNoContent() {
  byId('content').replaceChildren(element('p', {}, 'Applications would refuse the document.'));
}

// Marks fields with their findings and colour contrasts.
export function markFields(form, findings, colors) {
  const wrong = new Map(findings.filter((finding) => finding.level !== 'note').map((finding) => [finding.path, finding]));
  for (const field of form.querySelectorAll('[data-path]')) {
    const finding = wrong.get(field.dataset.path);
    // There may be thousands of fields, most without a finding.
    if (!finding && !field.hasAttribute('aria-invalid')) continue;
    field.toggleAttribute('aria-invalid', Boolean(finding));
    if (finding) field.setAttribute('aria-invalid', 'true');
    field.title = finding ? finding.text : '';
  }
  for (const note of form.querySelectorAll('[data-contrast]')) note.textContent = '';
  for (const {category, key, on, contrast, enough} of colors) {
    const note = form.querySelector(`[data-contrast=${CSS.escape(`banner_config.categories.${category}.palette.${key}`)}]`);
    if (!note) continue;
    // Rounded down, so that a contrast just below the limit is not shown as meeting it.
    note.textContent = `${Math.floor(contrast * 10) / 10}:1 on ${on.replaceAll('_', ' ')}${contrast < enough ? `, needs ${enough}:1` : ''}`;
    note.classList.toggle('error', contrast < enough);
  }
}
