#include "core/Configuration/BundledConfiguration.h"

#include "core/Json/Codec.h"
#include "core/Logger/UnitLog.h"
#include "core/Persistance/UserDefaults/StoreKeys.h"

namespace quillon {

void BundledConfiguration::name(std::optional<std::string> resource, std::string language) {
  const std::scoped_lock lock(mutex_);
  resource_ = std::move(resource);
  language_ = std::move(language);
  isRead_ = false;
  configuration_.reset();
}

ConfigurationPointer BundledConfiguration::get() {
  const std::scoped_lock lock(mutex_);
  if (!resource_) return nullptr;
  if (!isRead_) configuration_ = read();
  isRead_ = true;
  if (!configuration_) return nullptr;
  // A version older than the one applied before would let the next download look new, and ask the user again.
  const bool isOlder = configuration_->version.value_or(0) < store_.getInt64(key::configurationVersion, 0);
  return isOlder ? nullptr : configuration_;
}

ConfigurationPointer BundledConfiguration::read() const {
  constexpr std::string_view extension = "json";
  std::string_view resource = *resource_;
  if (resource.ends_with(".json")) resource.remove_suffix(extension.size() + 1);
  const UnitLog log(logger_, unit::cdnUtils);
  std::string name = std::string(resource) + "_" + language_;
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

}  // namespace quillon
