#include "signals/Pages/PageScript.h"

#include "core/Json/JsonWriter.h"
#include "core/Text/ScriptText.h"
#include "signals/Json/SignalsJson.h"
#include "signals/Pages/PageInterfaces.h"

namespace quillon::signals {
namespace {

void writeRecords(std::string& json, std::initializer_list<const Record*> records) {
  json += '[';
  for (const Record* const record : records) {
    if (record == nullptr) continue;
    json::separate(json, '[');
    writeJson(json, *record);
  }
  json += ']';
}

const Record* pointerTo(const std::optional<Record>& record) {
  return record ? &*record : nullptr;
}

void writeSection(std::string& json, const GppSection& section) {
  if (const auto* const us = std::get_if<UsString>(&section)) {
    return writeRecords(json, {&us->core, pointerTo(us->subsection)});
  }
  const auto& tc = std::get<TcString>(section);
  writeRecords(json, {&tc.core, pointerTo(tc.disclosedVendors), pointerTo(tc.publisherTC)});
}

void writeSupported(std::string& json, const SignalOptions& options) {
  json += '[';
  const auto add = [&json](std::uint16_t id) {
    json::separate(json, '[');
    json::writeText(json, std::to_string(id) + ":" + std::string(sectionPrefix(id)));
  };
  if (options.tcf) add(tcfEuSection);
  if (options.us) {
    for (const auto& section : usSections()) add(section.id);
  }
  json += ']';
}

void writeTcf(std::string& json, const SignalRules& rules, const SignalState& state, const GppString& gpp) {
  json += '{';
  json::writeKey(json, "policy");
  json::writeInteger(json, rules.vendorList.tcfPolicyVersion);
  json::writeKey(json, "vendorList");
  json::writeInteger(json, rules.vendorList.vendorListVersion);
  if (const auto applies = isGdprPlace(state.place)) {
    json::writeKey(json, "applies");
    json += *applies ? "true" : "false";
  }
  if (const auto tc = gpp.sections.find(tcfEuSection); tc != gpp.sections.end()) {
    json::writeKey(json, "string");
    json::writeText(json, encode(tc->second).value_or(std::string()));
    json::writeKey(json, "segments");
    writeJson(json, tc->second);
  }
  json += '}';
}

void writeGpp(std::string& json, const EncodedGpp& encoded) {
  json += '{';
  json::writeKey(json, "string");
  json::writeText(json, encoded.text);
  json::writeKey(json, "ids");
  json += '[';
  for (const auto& [id, section] : encoded.gpp.sections) {
    json::separate(json, '[');
    json::writeInteger(json, id);
  }
  json += ']';
  json::writeKey(json, "sections");
  json += '{';
  for (const auto& [id, section] : encoded.gpp.sections) {
    json::writeKey(json, sectionPrefix(id));
    writeSection(json, section);
  }
  json += "}}";
}

}  // namespace

std::string pageScript(const SignalRules& rules, const SignalState& state) {
  const auto encoded = gppOf(rules, state);
  std::string json = "{";
  json::writeKey(json, "cmpId");
  json::writeInteger(json, rules.options.cmpId);
  json::writeKey(json, "cmpVersion");
  json::writeInteger(json, rules.options.cmpVersion);
  json::writeKey(json, "supported");
  writeSupported(json, rules.options);
  if (rules.options.tcf) {
    json::writeKey(json, "tcf");
    writeTcf(json, rules, state, encoded.gpp);
  }
  if (state.place) {
    json::writeKey(json, "gpp");
    writeGpp(json, encoded);
  }
  json += '}';
  return std::string(pageInterfaces) + "(" + scriptText(json) + ");\n";
}

}  // namespace quillon::signals
