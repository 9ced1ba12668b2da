#include "tools/store/StoreReading.h"

#include <chrono>
#include <iostream>
#include <limits>

#include "core/Persistance/UserDefaults/StoreKeys.h"
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

std::expected<std::filesystem::path, std::string> storeFile(const Platform& platform) {
  const auto folder = platform.files->applicationSupportDirectory();
  if (!folder) return std::unexpected("there is no data folder; give one with --data-dir");
  std::error_code error;
  auto file = std::filesystem::canonical(*folder, error) / (std::string(key::suiteName) + ".sqlite");
  if (error || !std::filesystem::exists(file, error)) return std::unexpected(folder->string() + " holds no store");
  return file;
}

std::expected<SuiteFile::Opened, std::string> openSuite(const std::filesystem::path& file) {
  auto opened = SuiteFile::open(file, std::chrono::steady_clock::now() + writerWait);
  if (!opened) return std::unexpected(file.string() + ": " + opened.error().text);
  for (const auto& damaged : opened->content.unreadable) {
    std::cerr << "quillon-consent store: a damaged entry is left out: " << damaged << '\n';
  }
  return std::move(*opened);
}

std::expected<HistoryPage, std::string> historyIn(SuiteFile& file) {
  const auto journal = file.readJournal(std::numeric_limits<std::int64_t>::max(), maximumJournalRecords,
                                        std::chrono::steady_clock::now() + writerWait);
  if (!journal) return std::unexpected(journal.error().text);
  auto history = historyOf(*journal, maximumJournalRecords);
  if (history.damaged > 0) {
    std::cerr << "quillon-consent store: damaged entries of the history are left out: " << history.damaged << '\n';
  }
  return history;
}

}  // namespace quillon::tools
