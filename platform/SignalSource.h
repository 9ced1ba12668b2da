// The SDK's interface for the library of advertising signals.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "quillon/SignalState.h"

namespace quillon {

class SDKLogger;

// Thread-safe. Holding it keeps the SDK's services alive.
class SignalSource {
 public:
  virtual ~SignalSource() = default;

  // From a consistent snapshot of the store. May read the configuration's file.
  virtual SignalState state() = 0;
  // Calls `changed` in the background after any change of state(), until the handle is dropped or the SDK closed.
  [[nodiscard]] virtual std::shared_ptr<void> followChanges(std::function<void()> changed) = 0;
  // Calls `append` with every script for the application's own pages, until the handle is dropped.
  [[nodiscard]] virtual std::shared_ptr<void> followPageScripts(std::function<void(std::string&)> append) = 0;
  virtual SDKLogger& logger() = 0;
};

}  // namespace quillon
