// Drafts and published documents in a folder with the layout of the development server:
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

// Thread-safe. Does not read or write anything outside the folder, not even through links.
class DraftFolder {
 public:
  struct Entry {
    DocumentName name;
    bool isDraft = false;
    bool isLive = false;
  };

  struct Failure {
    bool isConflict = false;  // the file differs from the version that the caller knows
    std::string text;
  };

  // `root` must be canonical.
  explicit DraftFolder(std::filesystem::path root) : root_(std::move(root)) {}

  // Sorted by name; links are not listed. At most a thousand.
  [[nodiscard]] std::vector<Entry> list() const;

  // nullopt if the file does not exist.
  [[nodiscard]] std::expected<std::optional<StoredDocument>, std::string> read(const DocumentName& name,
                                                                               Channel channel) const;

  // Replaces the file if its tag equals `tag`, or creates it if `tag` is empty and it does not exist. Returns the new
  // tag.
  [[nodiscard]] std::expected<std::string, Failure> write(const DocumentName& name, Channel channel,
                                                          const std::string& text, const std::string& tag);

 private:
  [[nodiscard]] std::expected<std::filesystem::path, std::string> path(const DocumentName& name, Channel channel) const;

  const std::filesystem::path root_;
  std::mutex writing_;
};

}  // namespace quillon::tools
