// The drafts and the published documents of a folder, as the development server and devices know them:
// consent/mobile_banner/TENANT/APPLICATION/CHANNEL/config.json and config_LANGUAGE.json.
#pragma once

#include <expected>
#include <filesystem>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace quillon::tools {

struct DocumentName {
  std::string tenant;
  std::string application;
  std::string file;

  auto operator<=>(const DocumentName&) const = default;
};

enum class Channel { draft, live };

struct StoredDocument {
  std::string text;
  std::string tag;  // equal tags mean equal texts
};

// Thread-safe. Nothing outside the folder is read or written, also through links.
class DraftFolder {
 public:
  struct Entry {
    DocumentName name;
    bool isDraft = false;
    bool isLive = false;
  };

  struct Failure {
    bool isConflict = false;  // the file is not what the caller knows
    std::string text;
  };

  // `root` must be canonical.
  explicit DraftFolder(std::filesystem::path root) : root_(std::move(root)) {}

  // By their names; a link to another file is no document of its own. The first thousand.
  [[nodiscard]] std::vector<Entry> list() const;

  // None when there is no such file.
  [[nodiscard]] std::expected<std::optional<StoredDocument>, std::string> read(const DocumentName& name,
                                                                               Channel channel) const;

  // Replaces the file if its tag is still the one given, or makes it if the tag is empty and there is none. Returns the
  // new tag.
  [[nodiscard]] std::expected<std::string, Failure> write(const DocumentName& name, Channel channel,
                                                          const std::string& text, const std::string& tag);

 private:
  [[nodiscard]] std::expected<std::filesystem::path, std::string> path(const DocumentName& name, Channel channel) const;

  const std::filesystem::path root_;
  std::mutex writing_;
};

}  // namespace quillon::tools
