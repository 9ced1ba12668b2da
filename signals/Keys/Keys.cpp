#include "signals/Keys/Keys.h"

#include "signals/Keys/TcfKeys.h"

namespace quillon::signals {
namespace {

// The value when no section applies.
constexpr const char* kNoSection = "-1";
constexpr std::int64_t kMillisecondsATimeUnit = 100;

std::string joined(const Numbers& numbers) {
  std::string text;
  for (const auto number : numbers) {
    if (!text.empty()) text += '_';
    text += std::to_string(number);
  }
  return text;
}

// One key per purpose, whose number is appended to the name: pairs of vendor and restriction type.
void addRestrictions(SignalKeys& keys, const std::string& name, const std::vector<Restriction>& restrictions) {
  for (const auto& restriction : restrictions) {
    auto& text = std::get<std::string>(
        keys.try_emplace(name + std::to_string(restriction.purposeId), std::string()).first->second);
    for (const auto id : restriction.vendorIds) {
      if (!text.empty()) text += '_';
      text += std::to_string(id) + ":" + std::to_string(restriction.type);
    }
  }
}

// The GPP naming rule: prefix and field name; the value is a number or a text.
void addFields(SignalKeys& keys, const std::string& prefix, const Record& record) {
  for (std::size_t i = 0; i < record.values().size(); ++i) {
    const Field& field = record.layout().fields[i];
    const FieldValue& value = record.values()[i];
    std::string name = prefix + std::string(field.name);
    if (const auto* const restrictions = std::get_if<std::vector<Restriction>>(&value)) {
      addRestrictions(keys, name, *restrictions);
    } else if (const auto* const numbers = std::get_if<Numbers>(&value)) {
      keys.insert_or_assign(std::move(name), joined(*numbers));
    } else if (const auto* const text = std::get_if<std::string>(&value)) {
      keys.insert_or_assign(std::move(name), *text);
    } else {
      const auto number = std::get<std::int64_t>(value);
      keys.insert_or_assign(std::move(name), field.kind == FieldKind::time ? number * kMillisecondsATimeUnit : number);
    }
  }
}

std::string capitals(std::string_view text) {
  std::string result(text);
  for (char& c : result) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  return result;
}

void addSection(SignalKeys& keys, std::uint16_t id, const GppSection& section, std::string text) {
  keys.insert_or_assign("IABGPP_" + std::to_string(id) + "_String", std::move(text));
  if (const auto* const us = std::get_if<UsString>(&section)) {
    const auto prefix = "IABGPP_" + capitals(sectionPrefix(id)) + "_";
    addFields(keys, prefix, us->core);
    if (us->subsection) addFields(keys, prefix, *us->subsection);
    return;
  }
  const std::string prefix = "IABGPP_TCFEU2_";
  const auto& tc = std::get<TcString>(section);
  addFields(keys, prefix, tc.core);
  if (tc.disclosedVendors) addFields(keys, prefix, *tc.disclosedVendors);
  if (tc.publisherTC) addFields(keys, prefix, *tc.publisherTC);
  addGppCopiesOfTcfKeys(keys);
}

// The part between tildes: 0 is the header, 1 the first section.
std::string textOfSection(std::string_view gpp, std::size_t number) {
  for (; number > 0; --number) gpp.remove_prefix(gpp.find('~') + 1);
  return std::string(gpp.substr(0, gpp.find('~')));
}

}  // namespace

SignalKeys keysOf(const SignalRules& rules, const SignalState& state) {
  auto [gpp, text] = gppOf(rules, state);
  SignalKeys keys;
  if (rules.options.tcf) {
    const auto tc = gpp.sections.find(tcfEuSection);
    if (tc == gpp.sections.end()) {
      addTcfKeys(keys, rules, isGdprPlace(state.place), nullptr, {});
    } else {
      addTcfKeys(keys, rules, true, &std::get<TcString>(tc->second), textOfSection(text, 1));
    }
  }
  if (!state.place) return keys;
  const auto header = headerOf(gpp);
  const auto ids = joined(header.get<Ids>("Sections"));
  keys.insert_or_assign("IABGPP_HDR_Version", std::to_string(header.get("Version")));
  keys.insert_or_assign("IABGPP_HDR_Sections", ids);
  keys.insert_or_assign("IABGPP_GppSID", ids.empty() ? kNoSection : ids);
  std::size_t number = 0;
  for (const auto& [id, section] : gpp.sections) addSection(keys, id, section, textOfSection(text, ++number));
  keys.insert_or_assign("IABGPP_HDR_GppString", std::move(text));
  return keys;
}

}  // namespace quillon::signals
