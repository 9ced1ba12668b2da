#include "core/Configuration/ConfigurationCache.h"

#include <boost/url/encode.hpp>
#include <boost/url/rfc/unreserved_chars.hpp>

#include "core/Configuration/DocumentSeal.h"
#include "core/Json/Codec.h"
#include "core/Logger/UnitLog.h"
#include "core/Persistance/UserDefaults/StoreKeys.h"

namespace quillon {
namespace {

constexpr std::size_t maximumFileBytes = std::size_t{32} << 20;

std::string fileUrl(const std::filesystem::path& file) {
  constexpr auto plain = boost::urls::unreserved_chars + boost::urls::grammar::lut_chars('/');
  return "file://" + boost::urls::encode(file.string(), plain);
}

}  // namespace

ConfigurationPointer ConfigurationCache::readCDNFile(bool isCache) {
  const auto folder = platform_.files->applicationSupportDirectory();
  if (!folder) return nullptr;
  const auto file = *folder / fileName;
  const std::scoped_lock lock(mutex_);

  auto stamp = platform_.files->stamp(file);
  if (!stamp && platform_.files->move(*folder / backupName, file)) {
    stamp = platform_.files->stamp(file);  // An interrupted save had moved the file but not written the new one.
  }
  if (stamp && stamp == stamp_) return decoded_;
  stamp_.reset();
  decoded_.reset();

  std::string error;
  const auto bytes = platform_.files->read(file, maximumFileBytes);
  if (!bytes) {
    error = bytes.error();
  } else if (!sealIsIntact(*bytes)) {
    error = "The file is damaged";
  } else {
    auto configuration = decode<MainConfiguration>(*bytes);
    if (configuration) {
      stamp_ = stamp;
      decoded_ = std::make_shared<const MainConfiguration>(std::move(*configuration));
      return decoded_;
    }
    error = configuration.error();
  }
  if (!isCache) {
    UnitLog(logger_, unit::cdnUtils)(LogLevel::error, "Error reading or decoding CDN: " + escapedForLog(error),
                                     "readCDNFile(isCache:)");
  }
  return nullptr;
}

void ConfigurationCache::saveCDNToFile(const MainConfiguration& config, std::string_view name, const Origin& origin,
                                       const std::function<bool()>& isWanted) {
  constexpr std::string_view function = "saveCDNToFile(config:fileName:)";
  const UnitLog log(logger_, unit::cdnUtils);
  FileSystem& files = *platform_.files;
  const auto folder = files.applicationSupportDirectory();
  if (!folder) return;
  const std::scoped_lock lock(mutex_);
  if (!isWanted()) return;
  if (const auto made = files.createDirectories(*folder); !made) {
    log(LogLevel::error,
        "Error creating Application Support directory for Quillon Consent SDK: " + escapedForLog(made.error()),
        function);
    return;
  }

  const auto target = *folder / name;
  const auto backup = *folder / backupName;
  if (files.stamp(target)) {
    if (files.stamp(backup)) removeCDNFile(files, backup);  // left by a save that was interrupted after writing
    if (const auto moved = files.move(target, backup); moved) {
      log(LogLevel::info, "Backup created: " + escapedForLog(backup.string()), function);
    } else {
      log(LogLevel::error, "Error creating backup: " + escapedForLog(moved.error()), function);
    }
  }

  if (const auto written = files.write(target, sealed(encode(config))); !written) {
    log(LogLevel::error, "Error saving CDN: " + escapedForLog(written.error()), function);
    if (!files.stamp(backup)) return;
    if (const auto restored = files.move(backup, target); restored) {
      log(LogLevel::info, "Backup restored to original: " + escapedForLog(target.string()), function);
    } else {
      log(LogLevel::error, "Error restoring backup: " + escapedForLog(restored.error()), function);
    }
    return;
  }

  if (files.stamp(backup)) removeCDNFile(files, backup);
  store_.transact([&](StoreTransaction& transaction) {
    transaction.set(key::cdnFileLocation, fileUrl(target));
    transaction.set(key::cdnCachedTimestamp, wholeSeconds(platform_.clock->now()));
    transaction.set(key::languageCode, origin.language);
    transaction.set(key::cdnAddress, origin.address);
    if (origin.etag) {
      transaction.set(key::cdnEtag, *origin.etag);
    } else {
      transaction.remove(key::cdnEtag);
    }
  });
  log(LogLevel::info, "CDN saved at: " + escapedForLog(target.string()), function);
}

void ConfigurationCache::reset(const std::function<bool()>& isWanted) {
  const auto folder = platform_.files->applicationSupportDirectory();
  if (!folder) return;
  const std::scoped_lock lock(mutex_);
  if (!isWanted()) return;
  if (platform_.files->stamp(*folder / fileName)) removeCDNFile(*platform_.files, *folder / fileName);
  // A backup left by an interrupted save would be restored as the configuration.
  if (platform_.files->stamp(*folder / backupName)) removeCDNFile(*platform_.files, *folder / backupName);
}

void ConfigurationCache::removeCDNFile(FileSystem& files, const std::filesystem::path& file) {
  const UnitLog log(logger_, unit::cdnUtils);
  if (const auto removed = files.remove(file); removed) {
    log(LogLevel::info, "Existing file removed: " + escapedForLog(file.string()), "removeCDNFile(_:_:)");
  } else {
    log(LogLevel::error, "Error removing existing file: " + escapedForLog(removed.error()), "removeCDNFile(_:_:)");
  }
}

}  // namespace quillon
