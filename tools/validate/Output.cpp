#include "tools/validate/Output.h"

#include <boost/json/array.hpp>
#include <boost/json/object.hpp>
#include <boost/json/serialize.hpp>
#include <boost/url/encode.hpp>
#include <boost/url/rfc/unreserved_chars.hpp>

#include "core/Text/LogText.h"
#include "tools/fairness/Fairness.h"
#include "tools/validate/Lint.h"

namespace quillon::tools {
namespace {

namespace json = boost::json;

// File names are bytes and need not be UTF-8.
std::string text(std::string_view bytes) {
  return escapedForLog(bytes);
}

json::object physicalLocation(const CheckedFile& file, const Finding& finding) {
  constexpr auto plain = boost::urls::unreserved_chars + boost::urls::grammar::lut_chars('/');
  const std::string uri = boost::urls::encode(file.name, plain);
  return {{"artifactLocation", {{"uri", file.name.starts_with('/') ? "file://" + uri : uri}}},
          {"region", {{"startLine", finding.line}, {"startColumn", finding.column}}}};
}

json::object sarifResult(const CheckedFile& file, const Finding& finding) {
  return {{"ruleId", finding.rule},
          {"level", nameOf(finding.level)},
          {"message", {{"text", finding.path + ": " + finding.text}}},
          {"locations", json::array{{{"physicalLocation", physicalLocation(file, finding)},
                                     {"logicalLocations", json::array{{{"fullyQualifiedName", finding.path}}}}}}}};
}

json::array sarifRules() {
  json::array all;
  for (const auto group : {documentRules(), lintRules(), fairnessRules()}) {
    for (const Rule& rule : group) {
      all.push_back({{"id", rule.name},
                     {"shortDescription", {{"text", rule.expects}}},
                     {"defaultConfiguration", {{"level", nameOf(rule.level)}}}});
    }
  }
  return all;
}

}  // namespace

json::array toJson(const std::vector<Finding>& findings) {
  json::array all;
  for (const Finding& finding : findings) {
    all.push_back({{"level", nameOf(finding.level)},
                   {"rule", finding.rule},
                   {"path", finding.path},
                   {"line", finding.line},
                   {"column", finding.column},
                   {"text", finding.text}});
  }
  return all;
}

void writeText(std::ostream& out, const CheckedFile& file) {
  const std::string name = text(file.name);
  if (file.isValid) out << name << ": ok\n";
  for (const Finding& finding : file.findings) {
    out << name << ':' << finding.line << ':' << finding.column << ": " << nameOf(finding.level) << ": "
        << escapedForLog(finding.path + ": " + finding.text) << " [" << finding.rule << "]\n";
  }
}

void writeJson(std::ostream& out, const std::vector<CheckedFile>& files) {
  json::array all;
  for (const CheckedFile& file : files) {
    all.push_back({{"file", text(file.name)}, {"valid", file.isValid}, {"findings", toJson(file.findings)}});
  }
  out << json::serialize(json::object{{"files", std::move(all)}}) << '\n';
}

void writeSarif(std::ostream& out, const std::vector<CheckedFile>& files) {
  json::array results;
  for (const CheckedFile& file : files) {
    for (const Finding& finding : file.findings) results.push_back(sarifResult(file, finding));
  }
  const json::object driver{{"name", "quillon-consent"}, {"rules", sarifRules()}};
  const json::object run{
      {"tool", {{"driver", driver}}}, {"columnKind", "unicodeCodePoints"}, {"results", std::move(results)}};
  out << json::serialize(json::object{{"$schema", "https://json.schemastore.org/sarif-2.1.0.json"},
                                      {"version", "2.1.0"},
                                      {"runs", json::array{run}}})
      << '\n';
}

}  // namespace quillon::tools
