#include "tools/serve/ConfigurationFolder.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <functional>
#include <system_error>

#include "core/Json/Codec.h"
#include "quillon/MainConfiguration.h"

namespace quillon::tools {
namespace {

namespace fs = std::filesystem;

constexpr std::uintmax_t kMaxBytes = 32u << 20;

bool isInside(const fs::path& file, const fs::path& folder) {
  return std::mismatch(folder.begin(), folder.end(), file.begin(), file.end()).first == folder.end();
}

}  // namespace

std::string entityTagOf(std::string_view content) {
  char tag[64];
  std::snprintf(tag, sizeof tag, "\"%zx-%zx\"", content.size(), std::hash<std::string_view>{}(content));
  return tag;
}

std::optional<ConfigurationFolder::Document> ConfigurationFolder::read(std::string_view urlPath) const {
  if (urlPath.empty() || urlPath.find('\0') != std::string_view::npos) return std::nullopt;
  std::error_code error;
  const fs::path file = fs::canonical(root_ / urlPath.substr(1), error);
  if (error || !isInside(file, root_) || file.extension() != ".json") return std::nullopt;
  if (!fs::is_regular_file(file, error)) return std::nullopt;
  const auto size = fs::file_size(file, error);
  if (error || size > kMaxBytes) return std::nullopt;

  std::ifstream stream(file, std::ios::binary);
  Document document;
  document.content.resize(size);
  if (!stream.read(document.content.data(), static_cast<std::streamsize>(size))) return std::nullopt;
  document.entityTag = entityTagOf(document.content);
  return document;
}

std::set<std::string> ConfigurationFolder::accessTokens(std::string_view appId) const {
  std::set<std::string> tokens;
  std::error_code error;
  // Below this folder: tenant / application / channel / file.
  fs::recursive_directory_iterator entry(root_ / "consent" / "mobile_banner", error);
  for (; !error && entry != fs::recursive_directory_iterator(); entry.increment(error)) {
    if (entry.depth() == 3) entry.disable_recursion_pending();
    if (entry.depth() != 3 || entry->path().parent_path().parent_path().filename() != appId) continue;
    const auto document = read("/" + entry->path().lexically_relative(root_).string());
    if (!document) continue;
    const auto configuration = decode<MainConfiguration>(document->content);
    if (configuration && configuration->token) tokens.insert(*configuration->token);
  }
  return tokens;
}

}  // namespace quillon::tools
