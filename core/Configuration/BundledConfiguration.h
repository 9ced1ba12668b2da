// The bundled configuration.
#pragma once

#include <mutex>
#include <optional>
#include <string>

#include "core/Configuration/ConfigurationPointer.h"
#include "core/Persistance/UserDefaults/UserDefaultManager.h"
#include "platform/Platform.h"

namespace quillon {

// Thread-safe. Read once per setup.
class BundledConfiguration {
 public:
  // All must outlive it.
  BundledConfiguration(const Platform& platform, UserDefaultManager& store, SDKLogger& logger)
      : platform_(platform), store_(store), logger_(logger) {}

  // Sets the resource's name; nullopt when the application ships none.
  void name(std::optional<std::string> resource, std::string language);

  // The configuration in the user's language, else the common one. Null when there is none, when it is unreadable
  // (logged once), and when a newer version was applied before.
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
