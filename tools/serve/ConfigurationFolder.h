#pragma once

#include <filesystem>
#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace quillon::tools {

// Strong: equal tags mean equal contents. It depends on the content only, so it survives a restart.
[[nodiscard]] std::string entityTagOf(std::string_view content);

// The published files of a folder. Immutable and thread-safe; every call reads the disk.
class ConfigurationFolder {
 public:
  struct Document {
    std::string content;
    std::string entityTag;
  };

  // `root` must be canonical.
  explicit ConfigurationFolder(std::filesystem::path root) : root_(std::move(root)) {}

  // The .json file at a decoded URL path; nullopt when missing, outside the folder (also through a symbolic link) or
  // larger than a client accepts.
  [[nodiscard]] std::optional<Document> read(std::string_view urlPath) const;

  // The access tokens in an application's published configurations.
  [[nodiscard]] std::set<std::string> accessTokens(std::string_view appId) const;

 private:
  std::filesystem::path root_;
};

}  // namespace quillon::tools
