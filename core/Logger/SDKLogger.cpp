#include "quillon/SDKLogger.h"

#include "core/ConsentSDK/SDKVersion.h"
#include "core/Persistance/UserDefaults/StoreKeys.h"
#include "core/Persistance/UserDefaults/UserDefaultManager.h"

namespace quillon {

void SDKLogger::log(std::string_view message, LogLevel level, std::string_view functionName, std::string_view fileName,
                    int lineNnumber) {
  const LogLevel threshold = logLevel();
  if (level < threshold) return;
  const std::int64_t configurationVersion = store_.getInt64(key::configurationVersion, 0);

  std::string block;
  if (threshold == LogLevel::debug) {
    if (const auto version = installedSDKVersion(*platform_.host)) platform_.console->write("SDK Version: " + *version);
    if (store_.getBoolean(key::isATTEnabled)) {
      const auto identifier = platform_.tracking->advertisingIdentifier();
      if (identifier && !identifier->empty()) platform_.console->write("ATT AD ID: " + *identifier);
    }
    block += "Subject Identity: " + store_.getSubjectId() + "\n";
  }
  block += "Configuration Version: " + std::to_string(configurationVersion) + "\n";
  block += platform_.clock->localText(platform_.clock->now());
  block.append(" [").append(rawValue(level)).append("]");
  if (threshold == LogLevel::debug) {
    block.append(" [").append(fileName.substr(fileName.rfind('/') + 1)).append(":");
    block.append(std::to_string(lineNnumber)).append("] ").append(functionName).append(" - ");
  }
  block += message;
  platform_.console->write(block);
}

}  // namespace quillon
