// The one copy of the configuration on disk, its decoded form in memory, and the one that ships with the application.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "core/Persistance/UserDefaults/UserDefaultManager.h"
#include "platform/Platform.h"
#include "quillon/MainConfiguration.h"

namespace quillon {

using ConfigurationPointer = std::shared_ptr<const MainConfiguration>;

// Thread-safe; file operations of one process do not overlap. Killed at any moment it leaves the old configuration or
// the new one, at worst under the name of the backup, from where the next reading brings it back.
class ConfigurationCache {
 public:
  static constexpr std::string_view fileName = "quillon-sdk-cdn.json";
  static constexpr std::string_view backupName = "quillon-sdk-cdn-backup.json";

  // Where a document comes from.
  struct Origin {
    std::string address;   // that was asked first, before any fall-back
    std::string language;  // that was asked for
    std::optional<std::string> etag;
  };

  // All must outlive it.
  ConfigurationCache(const Platform& platform, UserDefaultManager& store, SDKLogger& logger)
      : platform_(platform), store_(store), logger_(logger) {}

  // The cached configuration; null when there is none that can be read. Decoded again only after the file changed.
  // isCache: a silent probe, which logs no failure.
  ConfigurationPointer readCDNFile(bool isCache);

  // The configuration that ships with the application, once set-up has named it: in the user's language, else the
  // common one. Null when there is none, when it cannot be read (which is logged once), and when a newer one was
  // applied before.
  ConfigurationPointer bundled();
  void setBundled(std::optional<std::string> resource, std::string language);

  // Writes the file, keeping the earlier one as a backup until the new one is safe, and remembers when and where it was
  // saved and where it comes from. On failure the earlier file is back in place. Does nothing when the document is not
  // wanted any more once it is its turn to be written.
  void saveCDNToFile(const MainConfiguration& config, std::string_view fileName, const Origin& origin,
                     const std::function<bool()>& isWanted);

  // Removes the cached file. The caller drops the entity tag.
  void reset();

 private:
  ConfigurationPointer readBundled(std::string_view resource) const;
  void removeCDNFile(FileSystem& files, const std::filesystem::path& file);

  const Platform& platform_;
  UserDefaultManager& store_;
  SDKLogger& logger_;

  std::mutex mutex_;  // held during file operations; guards the members below
  std::optional<FileStamp> stamp_;
  ConfigurationPointer decoded_;

  std::mutex bundledMutex_;  // held while the resource is read; guards the members below
  std::optional<std::string> bundledResource_;
  std::string bundledLanguage_;
  bool isBundledRead_ = false;
  ConfigurationPointer bundled_;
};

}  // namespace quillon
