#include "core/History/NoticeArchive.h"

#include <algorithm>
#include <vector>

#include "core/Logger/UnitLog.h"
#include "core/Text/LogText.h"
#include "core/Text/Sha256.h"

namespace quillon {
namespace {

constexpr std::string_view orderKey = "ORDER";  // the digests, oldest first
constexpr std::size_t mostDigests = 1000;
// Leaves room for the key within a suite's limit of an entry.
constexpr std::size_t longestText = maximumNoticeBytes - 1024;

const std::string* textUnder(const SuiteEntries& entries, std::string_view digest) {
  const auto found = entries.find(digest);
  return found == entries.end() ? nullptr : std::get_if<std::string>(&found->second);
}

std::vector<std::string> orderIn(const SuiteEntries& entries) {
  const auto found = entries.find(orderKey);
  const auto* order = found == entries.end() ? nullptr : std::get_if<std::vector<std::string>>(&found->second);
  return order ? *order : std::vector<std::string>();
}

SuiteChanges adding(const SuiteEntries& current, const std::string& digest, const std::string& text) {
  std::vector<std::string> order = orderIn(current);
  std::erase(order, digest);
  SuiteChanges changes{{digest, text}};
  std::size_t bytes = text.size();
  for (auto older = order.rbegin(); older != order.rend(); ++older) {
    const auto* kept = textUnder(current, *older);
    if (!kept || kept->empty()) continue;
    bytes += kept->size();
    if (bytes > maximumNoticeBytes) changes.insert_or_assign(*older, std::string());
  }
  order.push_back(digest);
  while (order.size() > mostDigests) {
    changes.insert_or_assign(order.front(), std::nullopt);
    order.erase(order.begin());
  }
  changes.insert_or_assign(std::string(orderKey), std::move(order));
  return changes;
}

}  // namespace

KeyValueSuite* NoticeArchive::suite() {
  std::call_once(opened_, [this] {
    auto opened = platform_.store->open(noticeSuiteName, [](auto, const std::string&) {});
    if (opened) {
      suite_ = std::move(*opened);
    } else {
      report(opened.error());
    }
  });
  return suite_.get();
}

void NoticeArchive::report(std::string_view problem) {
  UnitLog(logger_, unit::notices)(LogLevel::error, "What was shown is not kept: " + escapedForLog(problem), "keep");
}

std::string NoticeArchive::keep(std::string text) {
  std::string digest = sha256(text);
  KeyValueSuite* const suite = this->suite();
  if (!suite) return digest;
  if (text.size() > longestText) {
    report("it takes " + std::to_string(text.size()) + " bytes");
    return digest;
  }
  const auto snapshot = suite->snapshot();
  const auto* kept = textUnder(*snapshot, digest);
  if (kept && !kept->empty()) return digest;
  const auto done = suite->update([&](const SuiteEntries& current) { return adding(current, digest, text); });
  if (!done) report(done.error());
  return digest;
}

std::map<std::string, std::string> NoticeArchive::texts() {
  std::map<std::string, std::string> texts;
  KeyValueSuite* const suite = this->suite();
  if (!suite) return texts;
  const auto reading = suite->read(0);
  if (!reading) {
    report(reading.error());
    return texts;
  }
  for (const auto& [name, value] : *reading->entries) {
    if (const auto* text = std::get_if<std::string>(&value); text && isSha256(name)) texts.emplace(name, *text);
  }
  return texts;
}

void NoticeArchive::clear() {
  KeyValueSuite* const suite = this->suite();
  if (!suite || suite->snapshot()->empty()) return;
  const auto done = suite->update([](const SuiteEntries& current) {
    SuiteChanges changes;
    for (const auto& [name, value] : current) changes.emplace(name, std::nullopt);
    return changes;
  });
  if (!done) report(done.error());
}

}  // namespace quillon
