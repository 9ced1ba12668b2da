#include "tools/store/StoreReading.h"

#include <chrono>
#include <iostream>
#include <limits>

#include "core/History/DecisionChain.h"
#include "core/Persistance/UserDefaults/StoreKeys.h"
#include "core/Persistance/UserDefaults/StoredValues.h"
#include "platform/linux/LinuxPlatform.h"
#include "tools/HostApplicationId.h"

namespace quillon::tools {
namespace {

constexpr std::chrono::seconds writerWait{2};

}  // namespace

Platform platformOver(const std::filesystem::path& dataDirectory) {
  LinuxOptions linux_{.applicationId = hostApplicationId};
  if (!dataDirectory.empty()) linux_.dataDirectory = dataDirectory;
  return linuxPlatform(linux_);
}

std::expected<std::filesystem::path, std::string> suiteFile(const Platform& platform, std::string_view suite) {
  const auto folder = platform.files->applicationSupportDirectory();
  if (!folder) return std::unexpected("there is no data folder; give one with --data-dir");
  std::error_code error;
  auto file = std::filesystem::canonical(*folder, error) / (std::string(suite) + ".sqlite");
  if (error || !std::filesystem::exists(file, error)) return std::unexpected(folder->string() + " holds no store");
  return file;
}

std::expected<SuiteFile::Opened, std::string> openSuite(const Platform& platform, std::string_view suite) {
  const auto file = suiteFile(platform, suite);
  if (!file) return std::unexpected(file.error());
  auto opened = SuiteFile::open(*file, std::chrono::steady_clock::now() + writerWait);
  if (!opened) return std::unexpected(file->string() + ": " + opened.error().text);
  for (const auto& damaged : opened->content.unreadable) {
    std::cerr << "quillon-consent store: a damaged entry is left out: " << damaged << '\n';
  }
  return std::move(*opened);
}

std::expected<HistoryPage, std::string> historyIn(SuiteFile& file, const SuiteEntries& entries) {
  const auto journal = file.readJournal(std::numeric_limits<std::int64_t>::max(), maximumJournalRecords,
                                        std::chrono::steady_clock::now() + writerWait);
  if (!journal) return std::unexpected(journal.error().text);
  ChainState state{StoredValues(entries).string(key::historyHead, {}), {}, true};
  if (!journal->records.empty()) state.newestNumber = journal->records.front().number;
  auto history = verifiedHistory(*journal, maximumJournalRecords, state);
  if (history.damaged > 0) {
    std::cerr << "quillon-consent store: damaged entries of the history are left out: " << history.damaged << '\n';
  }
  return history;
}

}  // namespace quillon::tools
