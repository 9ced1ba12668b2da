// Makes the strings that the IAB's own encoders write for random states, which the tests compare with ours:
//
//   npm install --no-save @iabtcf/core@1.5.6 @iabgpp/cmpapi@3.2.0
//   node make-vectors.mjs            writes tcf.txt and gpp.txt
//   node make-vectors.mjs --full     prints all strings instead
//
// A state follows from its number, here as in RandomStates.h. The files hold the first strings in full, and for every
// thousand of them the SHA-256 of their lines, so that a difference in any string fails the test.
//
// Where these encoders do otherwise than the standard's text says, the text decides, and the string is mended here:
// GPP segments are filled up to whole characters; they fill them up to whole bytes first.
import { createHash } from 'node:crypto';
import { readFileSync, writeFileSync } from 'node:fs';
import { createRequire } from 'node:module';
import { PurposeRestriction, Segment, SegmentEncoder, TCModel } from '@iabtcf/core';
import { GppModel } from '@iabgpp/cmpapi';

const versions = { '@iabtcf/core': '1.5.6', '@iabgpp/cmpapi': '3.2.0' };
for (const [name, version] of Object.entries(versions)) {
  const main = createRequire(import.meta.url).resolve(name);
  const folder = main.slice(0, main.indexOf(name) + name.length);
  const installed = JSON.parse(readFileSync(folder + '/package.json')).version;
  if (installed !== version) throw Error(`${name} is ${installed}, not ${version}`);
}

const statesOfEach = 50_000;
const inFull = 200;
const inBlock = 1000;

class Random {
  constructor(number) {
    this.state = (Math.imul(number, 2654435761) ^ 0x9e3779b9) >>> 0 || 1;
  }
  below(bound) {
    this.state = (this.state ^ (this.state << 13)) >>> 0;
    this.state = (this.state ^ (this.state >>> 17)) >>> 0;
    this.state = (this.state ^ (this.state << 5)) >>> 0;
    return this.state % bound;
  }
  letters() {
    return String.fromCharCode(65 + this.below(26), 65 + this.below(26));
  }
  set(count) {
    const ids = [];
    for (let id = 1; id <= count; ++id) if (this.below(2)) ids.push(id);
    return ids;
  }
  values(count, bound) {
    return Array.from({ length: count }, () => this.below(bound));
  }
  day() {
    return (18262 + this.below(5000)) * 86400;
  }
  // Few vendors far apart, ranges of them, every second one, or none.
  vendors() {
    const kind = this.below(4);
    const ids = new Set();
    const largest = [300, 300, 300, 300, 2000, 65535][this.below(6)];
    if (kind === 1) {
      for (let left = this.below(20); left > 0; --left) ids.add(1 + this.below(largest));
    } else if (kind === 2) {
      for (let left = 1 + this.below(10); left > 0; --left) {
        const first = 1 + this.below(largest);
        const last = Math.min(largest, first + this.below(40));
        for (let id = first; id <= last; ++id) ids.add(id);
      }
    } else if (kind === 3) {
      for (const id of this.set(Math.min(largest, 300))) ids.add(id);
    }
    return [...ids].sort((a, b) => a - b);
  }
}

const languages = ['EN', 'DE', 'FR', 'ES', 'IT', 'NL', 'PL', 'SV'];

function tcState(random) {
  const state = {
    Created: random.day(),
    LastUpdated: random.day(),
    CmpId: 2 + random.below(4094),
    CmpVersion: random.below(4096),
    ConsentScreen: random.below(64),
    ConsentLanguage: languages[random.below(languages.length)],
    VendorListVersion: 1 + random.below(4095),
    TcfPolicyVersion: 1 + random.below(63),
    IsServiceSpecific: true,
    UseNonStandardTexts: random.below(2) === 1,
    SpecialFeatureOptIns: random.set(12),
    PurposesConsent: random.set(24),
    PurposesLITransparency: random.set(24),
    PurposeOneTreatment: random.below(2) === 1,
    PublisherCC: random.letters(),
    VendorConsent: random.vendors(),
    VendorLegitimateInterest: random.vendors(),
    PubRestrictions: [],
  };
  for (let purpose = 1; purpose <= 24; ++purpose) {
    if (random.below(24) > 0) continue;
    const type = random.below(3);
    const ids = random.vendors();
    if (ids.length > 0) state.PubRestrictions.push({ purpose, type, ids });
  }
  state.DisclosedVendors = random.vendors();
  state.hasPublisher = random.below(2) === 1;
  state.PubPurposesConsent = random.set(24);
  state.PubPurposesLITransparency = random.set(24);
  state.NumCustomPurposes = random.below(64);
  state.CustomPurposesConsent = random.set(state.NumCustomPurposes);
  state.CustomPurposesLITransparency = random.set(state.NumCustomPurposes);
  return state;
}

const everyVendor = new Set(Array.from({ length: 65535 }, (_, i) => i + 1));

function tcString(state) {
  const model = new TCModel();
  model.vendorListVersion = state.VendorListVersion;
  model.policyVersion = state.TcfPolicyVersion;
  model.isServiceSpecific = state.IsServiceSpecific;
  model.created = new Date(state.Created * 1000);
  model.lastUpdated = new Date(state.LastUpdated * 1000);
  model.cmpId = state.CmpId;
  model.cmpVersion = state.CmpVersion;
  model.consentScreen = state.ConsentScreen;
  model.consentLanguage = state.ConsentLanguage;
  model.useNonStandardStacks = state.UseNonStandardTexts;
  model.purposeOneTreatment = state.PurposeOneTreatment;
  model.publisherCountryCode = state.PublisherCC;
  model.numCustomPurposes = state.NumCustomPurposes;
  const sets = {
    specialFeatureOptins: 'SpecialFeatureOptIns', purposeConsents: 'PurposesConsent',
    purposeLegitimateInterests: 'PurposesLITransparency', vendorConsents: 'VendorConsent',
    vendorLegitimateInterests: 'VendorLegitimateInterest', vendorsDisclosed: 'DisclosedVendors',
    publisherConsents: 'PubPurposesConsent', publisherLegitimateInterests: 'PubPurposesLITransparency',
    publisherCustomConsents: 'CustomPurposesConsent',
    publisherCustomLegitimateInterests: 'CustomPurposesLITransparency',
  };
  for (const [name, field] of Object.entries(sets)) if (state[field].length > 0) model[name].set(state[field]);
  for (const { purpose, type, ids } of state.PubRestrictions) {
    for (const id of ids) model.publisherRestrictions.add(id, new PurposeRestriction(purpose, type));
  }
  // What lies between two vendors of a restriction may join them when the list lacks it; this one lacks nothing.
  model.publisherRestrictions.gvl_ = { vendorIds: everyVendor };
  const segments = [Segment.CORE, Segment.VENDORS_DISCLOSED];
  if (state.hasPublisher) segments.push(Segment.PUBLISHER_TC);
  // Not by TCString.encode, which discloses every vendor of a list, whatever the state says.
  return segments.map((segment) => SegmentEncoder.encode(model, segment)).join('.');
}

// Names after the number of values and how many of them a field holds; 2 bits, from 0 to 2, but for these two.
const bounds = { MspaCoveredTransaction: [1, 2], MspaVersion: [0, 64] };
const core = (notice, sensitive, child, more = [], extra = []) => [
  [notice], ['SaleOptOutNotice'], ['TargetedAdvertisingOptOutNotice'], ...extra, ['SaleOptOut'],
  ['TargetedAdvertisingOptOut'], ['SensitiveDataProcessing', sensitive], ['KnownChildSensitiveDataConsents', child],
  ...more, ...mspa,
];
const mspa = [['MspaCoveredTransaction'], ['MspaOptOutOptionMode'], ['MspaServiceProviderMode']];
const additional = [['AdditionalDataProcessingConsent']];
const newer = (more) => [
  ['MspaVersion'], ['MspaCoveredTransaction'], ['MspaMode'], ['ProcessingNotice'], ['SaleOptOutNotice'],
  ['TargetedAdvertisingOptOutNotice'], ['SaleOptOut'], ['TargetedAdvertisingOptOut'], ...more, ...additional,
];
const sensitive = [['SensitiveDataProcessing', 8]];
const usSections = [
  [7, 'gpc', [['SharingNotice'], ['SaleOptOutNotice'], ['SharingOptOutNotice'], ['TargetedAdvertisingOptOutNotice'],
    ['SensitiveDataProcessingOptOutNotice'], ['SensitiveDataLimitUseNotice'], ['SaleOptOut'], ['SharingOptOut'],
    ['TargetedAdvertisingOptOut'], ['SensitiveDataProcessing', 16], ['KnownChildSensitiveDataConsents', 3],
    ['PersonalDataConsents'], ...mspa]],
  [8, 'gpc', [['SaleOptOutNotice'], ['SharingOptOutNotice'], ['SensitiveDataLimitUseNotice'], ['SaleOptOut'],
    ['SharingOptOut'], ['SensitiveDataProcessing', 9], ['KnownChildSensitiveDataConsents', 2], ['PersonalDataConsents'],
    ...mspa]],
  [9, '', core('SharingNotice', 8, 0)],
  [10, 'gpc', core('SharingNotice', 7, 0)],
  [11, '', core('SharingNotice', 8, 0, [], [['SensitiveDataProcessingOptOutNotice']])],
  [12, 'gpc', core('SharingNotice', 8, 3)],
  [13, '', core('ProcessingNotice', 8, 3, additional)],
  [14, 'gpc', core('SharingNotice', 8, 3, additional)],
  [15, 'gpc', core('ProcessingNotice', 11, 3, additional)],
  [16, 'gpc', core('ProcessingNotice', 8, 0, additional)],
  [17, 'gpc', core('ProcessingNotice', 9, 5, additional)],
  [18, 'gpc', core('ProcessingNotice', 8, 0, [], [['SensitiveDataOptOutNotice']])],
  [19, 'gpc', core('ProcessingNotice', 8, 0, additional)],
  [20, 'gpc', core('ProcessingNotice', 8, 3, additional)],
  [21, 'gpc', core('ProcessingNotice', 10, 5, additional)],
  [22, 'gpc', core('ProcessingNotice', 8, 0, additional)],
  [23, 'gpc', core('ProcessingNotice', 8, 0, additional)],
  [24, 'gpc', newer([])],
  [25, 'sensitive', newer([['KnownChildSensitiveDataConsents']])],
  [26, 'sensitive', newer([['KnownChildSensitiveDataConsents']])],
  [27, 'sensitive', newer([['KnownChildSensitiveDataConsents']])],
];

function drawField(random, [name, count]) {
  if (count) return random.values(count, 3);
  const [least, bound] = bounds[name] ?? [0, 3];
  return least + random.below(bound);
}

function bitsOf(fields) {
  return fields.reduce((sum, [name, count]) => sum + (name === 'MspaVersion' ? 6 : 2 * (count || 1)), 0);
}

const fibonacci = [1, 2, 3, 5, 8, 13, 21, 34];
const fibonacciBits = (number) => fibonacci.filter((part) => part <= number).length + 1;

// The bits of the header of these sections, ascending.
function headerBits(ids) {
  let bits = 24;
  let last = 0;
  for (let i = 0; i < ids.length;) {
    let end = i;
    while (ids[end + 1] === ids[end] + 1) ++end;
    bits += 1 + fibonacciBits(ids[i] - last) + (end > i ? fibonacciBits(ids[end] - ids[i]) : 0);
    last = ids[end];
    i = end + 1;
  }
  return bits;
}

// Cuts what goes beyond the last character that holds a bit; nothing but zeros may.
function trimmed(text, bits) {
  const length = Math.ceil(bits / 6);
  if (text.length < length || /[^A]/.test(text.slice(length))) throw Error(`${text} has no ${bits} bits`);
  return text.slice(0, length);
}

function gppString(random) {
  const model = new GppModel();
  const ids = [];
  const sizes = [];
  for (const [id, subsection, fields] of usSections) {
    if (random.below(4) > 0) continue;
    ids.push(id);
    for (const field of fields) model.setFieldValueBySectionId(id, field[0], drawField(random, field));
    // A section of the newer kind says its version in a header that these encoders do not write.
    const parts = [bitsOf(fields) + (id < 24 ? 6 : 0)];
    const hasSubsection = subsection !== '' && random.below(2) === 1;
    if (subsection === 'gpc') {
      model.setFieldValueBySectionId(id, 'GpcSegmentIncluded', hasSubsection);
      if (hasSubsection) model.setFieldValueBySectionId(id, 'Gpc', random.below(2) === 1);
      if (hasSubsection) parts.push(3);
    } else if (subsection === 'sensitive') {
      model.setFieldValueBySectionId(id, 'SensitiveDataConsentSegmentIncluded', hasSubsection);
      if (hasSubsection) model.setFieldValueBySectionId(id, sensitive[0][0], drawField(random, sensitive[0]));
      if (hasSubsection) parts.push(bitsOf(sensitive));
    }
    sizes.push(parts);
  }
  if (ids.length === 0) return 'DBAA';
  const [header, ...sections] = model.encode().split('~');
  const texts = sections.map((section, i) => {
    const parts = section.split('.');
    if (parts.length !== sizes[i].length) throw Error(`section ${ids[i]}: ${section}`);
    return parts.map((part, at) => trimmed(part, sizes[i][at])).join('.');
  });
  return [trimmed(header, headerBits(ids)), ...texts].join('~');
}

const makers = {
  tcf: (number) => tcString(tcState(new Random(number))),
  gpp: (number) => gppString(new Random(number)),
};

for (const [name, make] of Object.entries(makers)) {
  const strings = Array.from({ length: statesOfEach }, (_, number) => make(number));
  if (process.argv.includes('--full')) {
    for (const string of strings) console.log(string);
    continue;
  }
  const lines = strings.slice(0, inFull);
  for (let at = 0; at < strings.length; at += inBlock) {
    const block = strings.slice(at, at + inBlock).map((string) => string + '\n').join('');
    lines.push('sha256 ' + createHash('sha256').update(block).digest('hex'));
  }
  writeFileSync(new URL(name + '.txt', import.meta.url), lines.join('\n') + '\n');
}
