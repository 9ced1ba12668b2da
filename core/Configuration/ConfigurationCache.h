// The one copy of the configuration on disk, and its decoded form in memory.
#pragma once

#include <filesystem>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "core/Configuration/ConfigurationPointer.h"
#include "core/Persistance/UserDefaults/UserDefaultManager.h"
#include "platform/Platform.h"

namespace quillon {

// Thread-safe; file operations of one process do not overlap. Killed at any moment it leaves the old configuration or
// the new one, at worst under the name of the backup, from where the next reading brings it back.
class ConfigurationCache {
 public:
  static constexpr std::string_view fileName = "quillon-sdk-cdn.json";
  static constexpr std::string_view backupName = "quillon-sdk-cdn-backup.json";

  // The source of a document.
  struct Origin {
    std::string address;   // requested first, before any fallback
    std::string language;  // requested
    std::optional<std::string> etag;
  };

  // All must outlive it.
  ConfigurationCache(const Platform& platform, UserDefaultManager& store, SDKLogger& logger)
      : platform_(platform), store_(store), logger_(logger) {}

  // The cached configuration; null when there is none or it is unreadable. Decoded again only when the file has
  // changed. isCache: do not log failures.
  ConfigurationPointer readCDNFile(bool isCache);

  // Writes the file, keeping the earlier one as a backup until the new one is safe, and remembers when and where it was
  // saved and where it comes from. On failure the earlier file is back in place. Does nothing when the document is not
  // wanted any more once it is its turn to be written.
  void saveCDNToFile(const MainConfiguration& config, std::string_view fileName, const Origin& origin,
                     const std::function<bool()>& isWanted);

  // Removes the cached file. The caller removes the entity tag.
  void reset();

 private:
  void removeCDNFile(FileSystem& files, const std::filesystem::path& file);

  const Platform& platform_;
  UserDefaultManager& store_;
  SDKLogger& logger_;

  std::mutex mutex_;  // held during file operations; guards the members below
  std::optional<FileStamp> stamp_;
  ConfigurationPointer decoded_;
};

}  // namespace quillon
