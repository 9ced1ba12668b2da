#include "tools/receipt/ExportFolder.h"

#include <filesystem>

#include "proof/Json/UntrustedJson.h"
#include "tools/FileContent.h"

namespace quillon::tools {
namespace {

namespace fs = std::filesystem;
using Failure = std::unexpected<std::string>;

constexpr std::size_t mostFiles = 20'000;
constexpr std::size_t mostBytes = std::size_t{128} << 20;

}  // namespace

std::expected<proof::ExportFiles, std::string> readFolder(const std::string& folder) {
  proof::ExportFiles files;
  std::size_t bytes = 0;
  std::error_code error;
  for (auto entry = fs::recursive_directory_iterator(folder, error); !error && entry != fs::end(entry);
       entry.increment(error)) {
    const auto name = entry->path().lexically_relative(folder).generic_string();
    const auto status = entry->symlink_status(error);
    if (error) break;
    if (fs::is_directory(status)) continue;
    if (!fs::is_regular_file(status)) return Failure(name + ": is no file");
    auto content = contentOf(entry->path().string());
    if (!content) return Failure(name + ": cannot be read: " + content.error());
    bytes += content->size();
    if (content->size() > proof::largestProofFile) return Failure(name + ": larger than 32 MiB");
    if (files.size() == mostFiles || bytes > mostBytes) return Failure("holds more than an export does");
    files.emplace(name, std::move(*content));
  }
  if (error) return Failure("cannot be read: " + error.message());
  return files;
}

std::expected<void, std::string> writeFolder(const std::string& folder, const proof::ExportFiles& files) {
  std::error_code error;
  fs::create_directories(folder, error);
  if (error || !fs::is_directory(folder, error)) {
    return Failure(folder + ": cannot be made" + (error ? ": " + error.message() : ""));
  }
  if (!fs::is_empty(folder, error)) return Failure(folder + ": is not empty");
  fs::permissions(folder, fs::perms::owner_all, error);
  if (error) return Failure(folder + ": " + error.message());
  for (const auto& [name, content] : files) {
    const fs::path path = fs::path(folder) / name;
    fs::create_directories(path.parent_path(), error);
    if (error) return Failure(path.parent_path().string() + ": cannot be made: " + error.message());
    if (const auto written = replaceContent(path.string(), content); !written) {
      return Failure(path.string() + ": cannot be written: " + written.error());
    }
  }
  return {};
}

}  // namespace quillon::tools
