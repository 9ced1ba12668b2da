#include "core/Configuration/ConfigurationCache.h"

#include "core/Configuration/DocumentSeal.h"
#include "core/Json/Codec.h"
#include "core/Logger/UnitLog.h"
#include "core/Persistance/UserDefaults/StoreKeys.h"
#include "core/Text/Ascii.h"

namespace quillon {
namespace {

constexpr std::string_view sourceFile = "ConsentSDK/ConsentSDK+CDNUtils";
constexpr std::size_t maximumFileBytes = std::size_t{32} << 20;

std::string fileUrl(const std::filesystem::path& file) {
  constexpr std::string_view plain = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-._~/";
  std::string url = "file://";
  for (const char c : file.string()) {
    if (plain.find(c) != std::string_view::npos) {
      url += c;
    } else {
      url += '%';
      appendHex(url, c, upperHexDigits);
    }
  }
  return url;
}

}  // namespace

ConfigurationPointer ConfigurationCache::readCDNFile(bool isCache) {
  const auto folder = platform_.files->applicationSupportDirectory();
  if (!folder) return nullptr;
  const auto file = *folder / fileName;
  const std::scoped_lock lock(mutex_);

  auto stamp = platform_.files->stamp(file);
  if (!stamp && platform_.files->move(*folder / backupName, file)) {
    stamp = platform_.files->stamp(file);  // A save was cut short before it wrote anything.
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
    UnitLog(logger_, sourceFile)(LogLevel::error, "Error reading or decoding CDN: " + escapedForLog(error),
                                 "readCDNFile(isCache:)");
  }
  return nullptr;
}

void ConfigurationCache::setBundled(std::optional<std::string> resource, std::string language) {
  const std::scoped_lock lock(bundledMutex_);
  bundledResource_ = std::move(resource);
  bundledLanguage_ = std::move(language);
  isBundledRead_ = false;
  bundled_.reset();
}

ConfigurationPointer ConfigurationCache::bundled() {
  const std::scoped_lock lock(bundledMutex_);
  if (!bundledResource_) return nullptr;
  if (!isBundledRead_) bundled_ = readBundled(*bundledResource_);
  isBundledRead_ = true;
  if (!bundled_) return nullptr;
  // An older one would make the newer look new again when it is downloaded, and ask the user once more.
  return bundled_->version.value_or(0) < store_.getInt64(key::configurationVersion, 0) ? nullptr : bundled_;
}

ConfigurationPointer ConfigurationCache::readBundled(std::string_view resource) const {
  constexpr std::string_view extension = "json";
  if (resource.ends_with(".json")) resource.remove_suffix(extension.size() + 1);
  const UnitLog log(logger_, sourceFile);
  std::string name = std::string(resource) + "_" + bundledLanguage_;
  auto document = platform_.host->resource(name, extension);
  if (!document) document = platform_.host->resource(name = resource, extension);
  name = escapedForLog(name) + "." + std::string(extension);
  if (!document) {
    log(LogLevel::error, "The bundled configuration is missing: " + name, "bundled()");
    return nullptr;
  }
  auto configuration = decode<MainConfiguration>(*document);
  if (configuration) return std::make_shared<const MainConfiguration>(std::move(*configuration));
  log(LogLevel::error, "The bundled configuration is ignored: " + name + ": " + configuration.error(), "bundled()");
  return nullptr;
}

void ConfigurationCache::saveCDNToFile(const MainConfiguration& config, std::string_view name, const Origin& origin,
                                       const std::function<bool()>& isWanted) {
  constexpr std::string_view function = "saveCDNToFile(config:fileName:)";
  const UnitLog log(logger_, sourceFile);
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
    if (files.stamp(backup)) removeCDNFile(files, backup);  // of a save that was cut short after it had written
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

void ConfigurationCache::reset() {
  const auto folder = platform_.files->applicationSupportDirectory();
  if (!folder) return;
  const std::scoped_lock lock(mutex_);
  if (platform_.files->stamp(*folder / fileName)) removeCDNFile(*platform_.files, *folder / fileName);
  // A backup left by a save that was cut short would come back as the configuration.
  if (platform_.files->stamp(*folder / backupName)) removeCDNFile(*platform_.files, *folder / backupName);
}

void ConfigurationCache::removeCDNFile(FileSystem& files, const std::filesystem::path& file) {
  const UnitLog log(logger_, sourceFile);
  if (const auto removed = files.remove(file); removed) {
    log(LogLevel::info, "Existing file removed: " + escapedForLog(file.string()), "removeCDNFile(_:_:)");
  } else {
    log(LogLevel::error, "Error removing existing file: " + escapedForLog(removed.error()), "removeCDNFile(_:_:)");
  }
}

}  // namespace quillon
