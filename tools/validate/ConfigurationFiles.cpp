#include "tools/validate/ConfigurationFiles.h"

#include <algorithm>
#include <filesystem>
#include <set>
#include <system_error>

namespace quillon::tools {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t mostFiles = 10'000;

bool isConfiguration(const std::string& name) {
  return name == "config.json" || (name.starts_with("config_") && name.ends_with(".json"));
}

}  // namespace

std::expected<std::vector<std::string>, std::string> configurationsBelow(const std::string& folder) {
  std::vector<std::string> names;
  std::error_code error;
  for (fs::recursive_directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
    std::error_code unreadable;
    if (!isConfiguration(entry->path().filename().string()) || !entry->is_regular_file(unreadable)) continue;
    if (names.size() == mostFiles) return std::unexpected("has more than ten thousand configurations");
    names.push_back(entry->path().string());
  }
  if (error) return std::unexpected("cannot be read: " + error.message());
  // After sorting, a link to a sibling follows the file: config_de.json after config.json.
  std::ranges::sort(names);
  std::set<fs::path> seen;
  std::erase_if(names, [&seen](const std::string& name) {
    std::error_code unreadable;
    return !seen.insert(fs::canonical(name, unreadable)).second;
  });
  if (names.empty()) return std::unexpected("holds no config.json and no config_LANGUAGE.json");
  return names;
}

}  // namespace quillon::tools
