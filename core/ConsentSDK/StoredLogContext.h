// The log context from store and platform.
#pragma once

#include <functional>

#include "core/ConsentSDK/SDKVersion.h"
#include "core/Logger/LogContext.h"
#include "core/Persistance/UserDefaults/StoreKeys.h"
#include "core/Persistance/UserDefaults/UserDefaultManager.h"
#include "platform/Platform.h"

namespace quillon {

class StoredLogContext : public LogContext {
 public:
  // Both must outlive it; neither is used before the first log line.
  StoredLogContext(const Platform& platform, UserDefaultManager& store) : platform_(platform), store_(store) {}

  void write(std::string_view block) override { platform_.console->write(block); }
  bool take(LogLevel level, std::string_view text, std::string_view unit) override {
    return platform_.console->take(level, text, unit);
  }
  std::string time() override { return platform_.clock->localText(platform_.clock->now()); }
  std::int64_t configurationVersion() override { return store_.getInt64(key::configurationVersion, 0); }
  std::optional<std::string> sdkVersion() override { return installedSDKVersion(*platform_.host); }
  std::optional<std::string> advertisingIdentifier() override {
    return store_.getBoolean(key::isATTEnabled) ? platform_.tracking->advertisingIdentifier() : std::nullopt;
  }
  std::string subjectId() override { return store_.getSubjectId(); }

 private:
  const Platform& platform_;
  UserDefaultManager& store_;
};

}  // namespace quillon
