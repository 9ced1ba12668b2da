// The configuration that ships with the application.
#pragma once

#include <mutex>
#include <optional>
#include <string>

#include "core/Configuration/ConfigurationPointer.h"
#include "core/Persistance/UserDefaults/UserDefaultManager.h"
#include "platform/Platform.h"

namespace quillon {

// Thread-safe. Read once for each set-up.
class BundledConfiguration {
 public:
  // All must outlive it.
  BundledConfiguration(const Platform& platform, UserDefaultManager& store, SDKLogger& logger)
      : platform_(platform), store_(store), logger_(logger) {}

  // Names the resource; nothing when the application ships none.
  void name(std::optional<std::string> resource, std::string language);

  // In the user's language, else the common one. Null when there is none, when it cannot be read (logged once), and when
  // a newer one was applied before.
  ConfigurationPointer get();

 private:
  ConfigurationPointer read() const;

  const Platform& platform_;
  UserDefaultManager& store_;
  SDKLogger& logger_;
  std::mutex mutex_;  // held while the resource is read; guards the members below
  std::optional<std::string> resource_;
  std::string language_;
  bool isRead_ = false;
  ConfigurationPointer configuration_;
};

}  // namespace quillon
