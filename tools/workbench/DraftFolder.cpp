#include "tools/workbench/DraftFolder.h"

#include <algorithm>
#include <map>
#include <system_error>

#include "core/Text/Utf8.h"
#include "tools/FileContent.h"
#include "tools/serve/ConfigurationFolder.h"

namespace quillon::tools {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view channels[] = {"draft", "live"};

fs::path applications(const fs::path& root) {
  return root / "consent" / "mobile_banner";
}

// Rejects names that could leave the folder.
bool isName(std::string_view text) {
  constexpr std::size_t longest = 200;
  return !text.empty() && text.size() <= longest && text.front() != '.' && isUtf8(text) &&
         std::ranges::none_of(text, [](unsigned char c) { return c < ' ' || c == '/' || c == 0x7f; });
}

bool isFileName(std::string_view text) {
  return isName(text) && text.ends_with(".json") && (text == "config.json" || text.starts_with("config_"));
}

// Sorted valid names of a folder's entries of one type; links are excluded.
std::vector<std::string> namesIn(const fs::path& folder, fs::file_type type) {
  std::vector<std::string> names;
  std::error_code error;
  for (fs::directory_iterator entry(folder, error); !error && entry != fs::directory_iterator();
       entry.increment(error)) {
    std::error_code none;
    std::string name = entry->path().filename();
    if (isName(name) && entry->symlink_status(none).type() == type) names.push_back(std::move(name));
  }
  std::ranges::sort(names);
  return names;
}

}  // namespace

std::vector<DraftFolder::Entry> DraftFolder::list() const {
  constexpr std::size_t most = 1000;
  std::map<DocumentName, Entry> entries;
  const fs::path folder = applications(root_);
  for (const auto& tenant : namesIn(folder, fs::file_type::directory)) {
    for (const auto& application : namesIn(folder / tenant, fs::file_type::directory)) {
      for (const auto channel : channels) {
        for (const auto& file : namesIn(folder / tenant / application / channel, fs::file_type::regular)) {
          if (!isFileName(file) || entries.size() == most) continue;
          const DocumentName name{tenant, application, file};
          Entry& entry = entries.try_emplace(name, Entry{.name = name}).first->second;
          (channel == "draft" ? entry.isDraft : entry.isLive) = true;
        }
      }
    }
  }
  std::vector<Entry> list;
  for (auto& [name, entry] : entries) list.push_back(std::move(entry));
  return list;
}

std::expected<fs::path, std::string> DraftFolder::path(const DocumentName& name, Channel channel) const {
  if (!isName(name.tenant) || !isName(name.application) || !isFileName(name.file)) {
    return std::unexpected("there can be no document of that name");
  }
  std::error_code error;
  const auto path = fs::weakly_canonical(
      applications(root_) / name.tenant / name.application / channels[static_cast<int>(channel)] / name.file, error);
  if (error) return std::unexpected(error.message());
  const auto [end, rest] = std::ranges::mismatch(root_, path);
  if (end != root_.end()) return std::unexpected("the file is a link to somewhere else");
  return path;
}

std::expected<std::optional<StoredDocument>, std::string> DraftFolder::read(const DocumentName& name,
                                                                            Channel channel) const {
  const auto file = path(name, channel);
  if (!file) return std::unexpected(file.error());
  std::error_code error;
  const auto status = fs::status(*file, error);
  if (status.type() == fs::file_type::not_found) return std::nullopt;
  // Other file types may block forever or have no content.
  if (status.type() != fs::file_type::regular) return std::unexpected(name.file + " is no file");
  auto text = contentOf(*file);
  if (!text) return std::unexpected(name.file + " cannot be read: " + text.error());
  if (text->size() > largestDocument) return std::unexpected(name.file + " is larger than 32 MiB");
  // A browser would silently replace invalid bytes.
  if (!isUtf8(*text)) return std::unexpected(name.file + " is no UTF-8 text");
  const std::string tag = entityTagOf(*text);
  return StoredDocument{*std::move(text), tag};
}

std::expected<std::string, DraftFolder::Failure> DraftFolder::write(const DocumentName& name, Channel channel,
                                                                    const std::string& text, const std::string& tag) {
  const auto failure = [](std::string why) { return std::unexpected(Failure{.text = std::move(why)}); };
  if (text.size() > largestDocument) return failure("the document is larger than 32 MiB");
  const auto file = path(name, channel);
  if (!file) return failure(file.error());
  const std::lock_guard lock(writing_);
  const auto current = read(name, channel);
  if (!current) return failure(current.error());
  if ((*current ? (*current)->tag : std::string()) != tag) {
    return std::unexpected(Failure{.isConflict = true, .text = name.file + " has changed on disk"});
  }
  std::error_code error;
  fs::create_directories(file->parent_path(), error);
  if (error) return failure(file->parent_path().string() + " cannot be made: " + error.message());
  if (const auto written = replaceContent(*file, text); !written) {
    return failure(file->string() + " cannot be written: " + written.error());
  }
  return entityTagOf(text);
}

}  // namespace quillon::tools
