#include "tools/store/StoreCommand.h"

#include <CLI/CLI.hpp>
#include <boost/json/parse.hpp>
#include <boost/json/serialize.hpp>
#include <expected>
#include <iostream>
#include <memory>
#include <ranges>
#include <string>

#include "core/History/NoticeArchive.h"
#include "core/Persistance/UserDefaults/StoreKeys.h"
#include "core/Persistance/UserDefaults/StoredValues.h"
#include "core/Text/Sha256.h"
#include "tools/HistoryJson.h"
#include "tools/SuiteJson.h"
#include "tools/store/NoticeDocument.h"
#include "tools/store/StoreReading.h"
#include "tools/store/StoreReceipts.h"

namespace quillon::tools {
namespace {

constexpr const char* storeFooter = R"(
A host may run on the folder meanwhile: reading finds what it has committed, and after a reset it finds its store empty
within a tenth of a second. Reading neither makes nor mends a store; a damaged one is reported and left as it is, while a
reset keeps it beside the new one. A receipt or an export makes the device's key when there is none. The access token is shown as "***". The exit status is 1 when the folder holds no
store, the key is absent, or the store cannot be read or written.)";

struct StoreOptions : StoreReceiptOptions {
  std::string key;
  bool isForPreview = false;
};

// Opens the store of the data folder.
std::expected<SuiteFile::Opened, std::string> open(const StoreOptions& options) {
  return openSuite(platformOver(options.dataDirectory), key::suiteName);
}

// The entries, with the token masked.
std::expected<SuiteEntries, std::string> read(const StoreOptions& options) {
  auto opened = open(options);
  if (!opened) return std::unexpected(opened.error());
  auto entries = std::move(opened->content.entries);
  if (const auto token = entries.find(key::xAuthToken); token != entries.end()) token->second = std::string("***");
  return entries;
}

std::expected<void, std::string> print(const boost::json::value& value) {
  std::cout << boost::json::serialize(value) << std::endl;
  if (!std::cout) return std::unexpected("standard output cannot be written");
  return {};
}

std::expected<void, std::string> dump(const StoreOptions& options) {
  const auto entries = read(options);
  return entries ? print(toJson(*entries)) : std::unexpected(entries.error());
}

std::expected<void, std::string> get(const StoreOptions& options) {
  const auto entries = read(options);
  if (!entries) return std::unexpected(entries.error());
  const auto entry = entries->find(options.key);
  return entry != entries->end() ? print(toJson(entry->second)) : std::unexpected("no value under " + options.key);
}

// Reports every entry whose hash chain link is broken.
std::expected<void, std::string> holdsTogether(const HistoryPage& history) {
  std::size_t faults = history.isNewestMissing ? 1 : 0;
  if (history.isNewestMissing) std::cerr << "quillon-consent store: the newest entry was changed or is missing\n";
  for (const HistoryEntry& entry : history.entries | std::views::reverse) {
    if (entry.link != HistoryLink::broken) continue;
    ++faults;
    std::cerr
        << "quillon-consent store: entry " << entry.number
        << " does not follow the one after which it was written: that one was changed, moved or removed, or this one"
           " was inserted\n";
  }
  if (faults == 0) return {};
  return std::unexpected("the history does not hold together");
}

// One decision per line, oldest first.
std::expected<void, std::string> history(const StoreOptions& options) {
  auto opened = open(options);
  if (!opened) return std::unexpected(opened.error());
  const auto history = historyIn(opened->file, opened->content.entries);
  if (!history) return std::unexpected(history.error());
  for (const HistoryEntry& entry : history->entries | std::views::reverse) {
    if (auto printed = print(toJson(entry)); !printed) return printed;
  }
  return holdsTogether(*history);
}

// The notice that a decision answered.
std::expected<void, std::string> notice(const StoreOptions& options) {
  const auto opened = openSuite(platformOver(options.dataDirectory), noticeSuiteName);
  if (!opened) return std::unexpected(opened.error());
  const auto found = opened->content.entries.find(options.key);
  const auto* text = found == opened->content.entries.end() ? nullptr : std::get_if<std::string>(&found->second);
  if (!text || !isSha256(options.key)) return std::unexpected("no notice " + options.key);
  if (text->empty()) return std::unexpected("the notice " + options.key + " was kept, and had to go for newer ones");
  if (sha256(*text) != options.key) return std::unexpected("the notice " + options.key + " was changed");
  boost::system::error_code error;
  const auto value = boost::json::parse(*text, error);
  if (error || !value.is_object()) return std::unexpected("the notice " + options.key + " is damaged");
  return print(options.isForPreview ? documentShowing(value.get_object()) : value.get_object());
}

// All data stored about the person; excludes the token, which belongs to the application.
std::expected<void, std::string> exportPerson(const StoreOptions& options) {
  if (!options.out.empty()) return writeExport(options);
  auto opened = open(options);
  if (!opened) return std::unexpected(opened.error());
  const auto history = historyIn(opened->file, opened->content.entries);
  if (!history) return std::unexpected(history.error());
  const StoredValues stored(opened->content.entries);
  SuiteEntries purposes;
  SuiteEntries permissions;
  for (const auto& [key, value] : opened->content.entries) {
    if (stored.consent(key)) (key::isPurpose(key) ? purposes : permissions).emplace(key, value);
  }
  boost::json::array decisions;
  for (const HistoryEntry& entry : history->entries | std::views::reverse) decisions.push_back(toJson(entry));
  return print(boost::json::object{{"subject_id", stored.string(key::subjectId, {})},
                                   {"given_type", rawValue(stored.consentGivenType())},
                                   {"compliance_type", rawValue(stored.complianceType())},
                                   {"configuration_version", stored.integer(key::configurationVersion, 0)},
                                   {"purposes", toJson(purposes)},
                                   {"permissions", toJson(permissions)},
                                   {"damaged_decisions", history->damaged},
                                   {"decisions", std::move(decisions)}});
}

std::expected<void, std::string> reset(const StoreOptions& options) {
  const Platform platform = platformOver(options.dataDirectory);
  if (const auto file = suiteFile(platform, key::suiteName); !file) return std::unexpected(file.error());
  const auto suite = platform.store->open(key::suiteName, [](auto, const std::string& damage) {
    std::cerr << "quillon-consent store: " << damage << '\n';
  });
  if (!suite) return std::unexpected(suite.error());
  if (auto forgotten = platform.keys->forget(); !forgotten) return forgotten;
  return suite.value()->update([](const SuiteEntries& current) {
    SuiteUpdate update;
    for (const auto& [key, value] : current) update.changes.emplace(key, std::nullopt);
    update.clearsJournal = true;
    return update;
  });
}

}  // namespace

void addStoreCommand(CLI::App& app, int& exitCode) {
  const auto options = std::make_shared<StoreOptions>();
  auto* const store = app.add_subcommand("store", "Reads or empties the stored consent state of a data folder");
  store->footer(storeFooter);
  store->require_subcommand(1);
  store->add_option("--data-dir", options->dataDirectory, "The data folder; without it, that of the command host");

  using Operation = std::expected<void, std::string> (*)(const StoreOptions&);
  const auto add = [&](const char* name, const char* description, Operation operation) {
    auto* const command = store->add_subcommand(name, description);
    command->fallthrough();
    command->callback([options, operation, &exitCode] {
      if (const auto done = operation(*options); !done) {
        std::cerr << "quillon-consent store: " << done.error() << '\n';
        exitCode = 1;
      }
    });
    return command;
  };
  add("dump", "Print everything as one JSON object, dates as seconds since 1970", dump);
  add("get", "Print one value as JSON", get)->add_option("KEY", options->key, "Its key")->required();
  auto* const shown = add("notice", "Print what was on the screen when a decision was made", notice);
  shown->add_option("HASH", options->key, "The \"notice\" of that decision")->required();
  shown->add_flag("--as-configuration", options->isForPreview,
                  "As a configuration, of which preview makes the picture");
  add("history", "Print the decisions as JSON, one a line, oldest first, and say whether any was changed", history);
  const auto addController = [&options](CLI::App* command) {
    command->add_option("--controller", options->controller, "A file with what only the application knows, as JSON");
  };
  auto* const person =
      add("export", "Print what is kept of the person as one JSON object, decisions included", exportPerson);
  person->add_option("--out", options->out, "A new folder, to which it is written with proof of it, signed");
  addController(person);
  auto* const receipt = add("receipt", "Write a signed receipt of the person's consents",
                            [](const StoreOptions& given) { return writeReceipt(given); });
  receipt->add_option("--out", options->out, "The file to write; - is standard output")->required();
  receipt->add_option("--purpose", options->purposes, "Only this one. Several times for more");
  addController(receipt);
  add("reset", "Remove every value and the history", reset);
}

}  // namespace quillon::tools
