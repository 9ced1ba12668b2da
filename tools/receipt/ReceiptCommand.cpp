#include "tools/receipt/ReceiptCommand.h"

#include <CLI/CLI.hpp>
#include <chrono>
#include <expected>
#include <filesystem>
#include <iostream>
#include <memory>
#include <string>

#include "core/Text/LogText.h"
#include "proof/Check/SignedDocument.h"
#include "proof/Check/Verification.h"
#include "proof/Export/Export.h"
#include "proof/Json/Members.h"
#include "proof/Page/HtmlPage.h"
#include "proof/Page/Summary.h"
#include "tools/FileContent.h"
#include "tools/receipt/ExportFolder.h"
#include "ui/Common/Labels/Languages.h"
#include "ui/Common/Labels/ReceiptWords.h"

namespace quillon::tools {
namespace {

using namespace quillon::proof;
namespace fs = std::filesystem;

constexpr const char* receiptFooter = R"(
verify prints a line for everything that holds, does not hold, or should be known: "holds: WHAT: ...", "fault: WHAT: ..."
and "note: WHAT: ...". The exit status is 0 only when there is no fault. A signature shows that a receipt was not changed
since it was made; with --key also by whom: a file with the key (key.json of an export), or its thumbprint.)";

struct ReceiptOptions {
  std::string path;
  std::string key;
  std::string history;
  std::string language;
  bool isHtml = false;
};

template <class T>
using Result = std::expected<T, std::string>;

bool isFolder(const std::string& path) {
  std::error_code error;
  return fs::is_directory(path, error);
}

Result<std::string> read(const std::string& path) {
  auto content = contentOf(path);
  if (!content) return std::unexpected(path + ": cannot be read: " + content.error());
  return content;
}

Result<ExportFiles> readExport(const std::string& path) {
  auto files = readFolder(path);
  if (!files) return std::unexpected(path + ": " + files.error());
  return files;
}

Result<Expectations> expectations(const std::string& key) {
  Expectations expected;
  expected.now = std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now()).time_since_epoch().count();
  if (key.empty()) return expected;
  std::error_code error;
  expected.keyThumbprint = thumbprintOf(key);
  if (expected.keyThumbprint.empty() && fs::exists(key, error)) {
    const auto content = read(key);
    if (!content) return std::unexpected(content.error());
    expected.keyThumbprint = thumbprintOf(*content);
  }
  if (expected.keyThumbprint.empty()) return std::unexpected(key + ": is neither an Ed25519 key nor a thumbprint");
  return expected;
}

// The history to compare a receipt with; verifies the history itself as far as possible.
Result<ExportedHistory> historyFrom(const std::string& path, const Expectations& expected, proof::Findings& findings) {
  std::string text;
  if (isFolder(path)) {
    const auto files = readExport(path);
    if (!files) return std::unexpected(files.error());
    checkExport(*files, expected, findings);
    const auto found = files->find(file::history);
    if (found == files->end()) return std::unexpected(path + ": holds no history.json");
    text = found->second;
  } else {
    auto content = read(path);
    if (!content) return std::unexpected(content.error());
    text = std::move(*content);
  }
  auto history = readHistory(text);
  if (!history) return std::unexpected(path + ": " + history.error());
  if (isFolder(path)) return history;
  checkChain(history->entries, history->state, findings);
  checkTimes(history->entries, expected.now, findings);
  return history;
}

Result<proof::Findings> verified(const ReceiptOptions& options) {
  const auto expected = expectations(options.key);
  if (!expected) return std::unexpected(expected.error());
  proof::Findings findings;
  if (isFolder(options.path)) {
    const auto files = readExport(options.path);
    if (!files) return std::unexpected(files.error());
    checkExport(*files, *expected, findings);
    return findings;
  }
  const auto document = read(options.path);
  if (!document) return std::unexpected(document.error());
  if (options.history.empty()) {
    checkReceipt(*document, *expected, std::nullopt, findings);
    return findings;
  }
  const auto history = historyFrom(options.history, *expected, findings);
  if (!history) return std::unexpected(history.error());
  checkReceipt(*document, *expected, KnownHistory{*history}, findings);
  return findings;
}

const char* word(proof::Finding::Kind kind) {
  switch (kind) {
    case proof::Finding::Kind::holds:
      return "holds: ";
    case proof::Finding::Kind::note:
      return "note: ";
    case proof::Finding::Kind::fault:
      break;
  }
  return "fault: ";
}

Result<bool> verify(const ReceiptOptions& options) {
  const auto findings = verified(options);
  if (!findings) return std::unexpected(findings.error());
  for (const auto& each : findings->all()) {
    std::cout << word(each.kind) << escapedForLog(each.subject) << ": " << escapedForLog(each.text) << '\n';
  }
  if (findings->faults() == 0) {
    std::cout << "everything holds\n";
  } else {
    std::cout << findings->faults() << (findings->faults() == 1 ? " fault\n" : " faults\n");
  }
  return findings->faults() == 0;
}

void printText(const std::vector<ReceiptLine>& lines) {
  for (const auto& line : lines) {
    if (line.kind == ReceiptLine::Kind::section) std::cout << '\n';
    if (line.kind == ReceiptLine::Kind::fact) std::cout << "  " << escapedForLog(line.name) << ": ";
    std::cout << escapedForLog(line.text) << '\n';
  }
}

Result<bool> show(const ReceiptOptions& options) {
  const auto path = isFolder(options.path) ? (fs::path(options.path) / file::receipt).string() : options.path;
  const auto document = read(path);
  if (!document) return std::unexpected(document.error());
  const auto expected = expectations("");
  proof::Findings unread;
  const auto receipt = checkSigned("receipt", *document, *expected, unread);
  if (!receipt) return std::unexpected(path + ": " + unread.all().front().text);
  proof::Findings findings;
  checkReceipt(*document, *expected, std::nullopt, findings);
  const auto language = options.language.empty() ? std::string(textIn(receipt->content, "dct:language").value_or("en"))
                                                 : options.language;
  const auto* const known = labelLanguage(language);
  const auto& labels = known != nullptr ? *known : englishLabels();
  const auto words = receiptWords([&](Label label) { return std::string(labels.text(label)); });
  const auto lines = summaryOf(receipt->content, findings, words);
  if (options.isHtml) {
    std::cout << htmlPage(lines, labels.code, labels.code == "ar" || labels.code == "he");
  } else {
    printText(lines);
  }
  return true;
}

}  // namespace

void addReceiptCommand(CLI::App& app, int& exitCode) {
  const auto options = std::make_shared<ReceiptOptions>();
  auto* const command = app.add_subcommand("receipt", "Checks and shows receipts of consents");
  command->footer(receiptFooter);
  command->require_subcommand(1);
  const auto add = [&](const char* name, const char* what, const char* path,
                       Result<bool> (*run)(const ReceiptOptions&)) {
    auto* const part = command->add_subcommand(name, what);
    part->add_option("FILE", options->path, path)->required();
    part->callback([options, run, &exitCode] {
      auto done = run(*options);
      if (!std::cout.flush()) done = std::unexpected("standard output cannot be written");
      if (!done) std::cerr << "quillon-consent receipt: " << escapedForLog(done.error()) << '\n';
      if (!done || !*done) exitCode = 1;
    });
    return part;
  };
  auto* const verification =
      add("verify", "Says what of a receipt or an export holds", "A receipt, or the folder of an export", &verify);
  verification->add_option("--key", options->key, "The key that must have signed");
  verification->add_option(
      "--history", options->history,
      "What a receipt must be a part of: an export, its history.json, or what store history prints");
  auto* const page = add("show", "Shows a receipt to people", "A receipt, or the folder of an export", &show);
  page->add_flag("--html", options->isHtml, "As a page that can be printed");
  page->add_option("--language", options->language, "Of the words; without it, that of the receipt");
}

}  // namespace quillon::tools
