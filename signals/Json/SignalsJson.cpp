#include "signals/Json/SignalsJson.h"

#include "core/Json/JsonWriter.h"
#include "signals/Records/Layout.h"

namespace quillon::signals {
namespace {

void writeNumbers(std::string& json, const Numbers& numbers) {
  json += '[';
  for (const auto number : numbers) {
    json::separate(json, '[');
    json::writeInteger(json, number);
  }
  json += ']';
}

void writeRestrictions(std::string& json, const std::vector<Restriction>& restrictions) {
  json += '[';
  for (const auto& restriction : restrictions) {
    json::separate(json, '[');
    json += '{';
    json::writeKey(json, restrictionNames.purposeId);
    json::writeInteger(json, restriction.purposeId);
    json::writeKey(json, restrictionNames.type);
    json::writeInteger(json, restriction.type);
    json::writeKey(json, restrictionNames.vendorIds);
    writeNumbers(json, restriction.vendorIds);
    json += '}';
  }
  json += ']';
}

void writeValue(std::string& json, const Field& field, const FieldValue& value) {
  switch (field.kind) {
    case FieldKind::integer:
      return json::writeInteger(json, std::get<std::int64_t>(value));
    case FieldKind::boolean:
      json += std::get<std::int64_t>(value) != 0 ? "true" : "false";
      return;
    case FieldKind::time:
      return json::writeInteger(json, std::get<std::int64_t>(value) / kTimeUnitsASecond);
    case FieldKind::letters:
      return json::writeText(json, std::get<std::string>(value));
    case FieldKind::set:
    case FieldKind::sizedSet:
    case FieldKind::values:
    case FieldKind::vendors:
    case FieldKind::sections:
      return writeNumbers(json, std::get<Numbers>(value));
    case FieldKind::restrictions:
      return writeRestrictions(json, std::get<std::vector<Restriction>>(value));
  }
}

void writeFields(std::string& json, const Record& record) {
  for (std::size_t i = 0; i < record.values().size(); ++i) {
    const Field& field = record.layout().fields[i];
    json::writeKey(json, field.name);
    writeValue(json, field, record.values()[i]);
  }
}

void writeSegment(std::string& json, const Record& record) {
  json::writeKey(json, record.layout().name);
  writeJson(json, record);
}

}  // namespace

void writeJson(std::string& json, const Record& record) {
  json += '{';
  writeFields(json, record);
  json += '}';
}

void writeJson(std::string& json, const TcString& tc) {
  json += '{';
  writeSegment(json, tc.core);
  if (tc.disclosedVendors) writeSegment(json, *tc.disclosedVendors);
  if (tc.publisherTC) writeSegment(json, *tc.publisherTC);
  json += '}';
}

void writeJson(std::string& json, const GppSection& section) {
  if (const auto* const text = std::get_if<std::string>(&section)) return json::writeText(json, *text);
  if (const auto* const tc = std::get_if<TcString>(&section)) return writeJson(json, *tc);
  const auto& us = std::get<UsString>(section);
  json += '{';
  writeFields(json, us.core);
  if (us.subsection) writeFields(json, *us.subsection);
  json += '}';
}

void writeJson(std::string& json, const GppString& gpp) {
  json += '{';
  writeSegment(json, headerOf(gpp));
  for (const auto& [id, section] : gpp.sections) {
    const auto prefix = sectionPrefix(id);
    json::writeKey(json, prefix.empty() ? std::to_string(id) : prefix);
    writeJson(json, section);
  }
  json += '}';
}

}  // namespace quillon::signals
