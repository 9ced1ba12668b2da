// The cached configuration: the file and its decoded form in memory.
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

// Thread-safe; file operations of one process do not overlap. A crash at any moment leaves the old or the new
// configuration, possibly under the backup's name, from which the next read restores it.
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

  // Writes the file, keeping the previous one as a backup until the new one is durable, and stores the time, address
  // and origin. On failure the previous file is restored. Does nothing when `isWanted` is false once the lock is taken.
  void saveCDNToFile(const MainConfiguration& config, std::string_view fileName, const Origin& origin,
                     const std::function<bool()>& isWanted);

  // Removes the cached file; the caller removes the entity tag. Does nothing when `isWanted` is false once the lock is
  // taken.
  void reset(const std::function<bool()>& isWanted);

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
