#pragma once

#include <filesystem>
#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace quillon::tools {

// The published files of a folder. Immutable, so safe from any thread; every call looks at the disk anew.
class ConfigurationFolder {
 public:
  struct Document {
    std::string content;
    std::string entityTag;  // strong: equal tags mean equal contents
  };

  // root must be canonical.
  explicit ConfigurationFolder(std::filesystem::path root) : root_(std::move(root)) {}

  // The .json file at a decoded URL path. Nothing when there is none, when it lies outside the folder (also by way of a
  // symbolic link) or when it is larger than a client accepts.
  [[nodiscard]] std::optional<Document> read(std::string_view urlPath) const;

  // The access tokens that the published configurations of an application carry.
  [[nodiscard]] std::set<std::string> accessTokens(std::string_view appId) const;

 private:
  std::filesystem::path root_;
};

}  // namespace quillon::tools
