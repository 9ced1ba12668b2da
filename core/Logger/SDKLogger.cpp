#include "quillon/SDKLogger.h"

#include "core/ConsentSDK/SDKVersion.h"
#include "core/Persistance/UserDefaults/StoreKeys.h"
#include "core/Persistance/UserDefaults/UserDefaultManager.h"
#include "core/Text/LogText.h"

namespace quillon {

void SDKLogger::log(std::string_view message, LogLevel level, std::string_view functionName, std::string_view fileName,
                    int lineNnumber) {
  const LogLevel threshold = logLevel();
  if (level < threshold) return;
  const auto entries = store_.snapshot();
  const StoredValues stored(*entries);
  const auto write = [&](const std::string& text) { platform_.console->write(printableForLog(text)); };

  std::string block;
  if (threshold == LogLevel::debug) {
    if (const auto version = installedSDKVersion(*platform_.host)) write("SDK Version: " + escapedForLog(*version));
    if (stored.boolean(key::isATTEnabled)) {
      const auto identifier = platform_.tracking->advertisingIdentifier();
      if (identifier && !identifier->empty()) write("ATT AD ID: " + escapedForLog(*identifier));
    }
    block += "Subject Identity: " + escapedForLog(store_.getSubjectId()) + "\n";
  }
  block += "Configuration Version: " + std::to_string(stored.integer(key::configurationVersion, 0)) + "\n";
  block += platform_.clock->localText(platform_.clock->now());
  block.append(" [").append(rawValue(level)).append("]");
  if (threshold == LogLevel::debug) {
    block.append(" [").append(fileName.substr(fileName.rfind('/') + 1)).append(":");
    block.append(std::to_string(lineNnumber)).append("] ").append(functionName).append(" - ");
  }
  write(block.append(message));
}

}  // namespace quillon
