// What the library of the advertising trade's signals may ask of the SDK.
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

  // All from one content of the store. May read the configuration's file.
  virtual SignalState state() = 0;
  // Calls in the background after anything changed that state() tells of, until the handle is dropped; not once the SDK
  // is closed.
  [[nodiscard]] virtual std::shared_ptr<void> followChanges(std::function<void()> changed) = 0;
  // Calls with each script for the application's own pages, to append to, until the handle is dropped.
  [[nodiscard]] virtual std::shared_ptr<void> followPageScripts(std::function<void(std::string&)> append) = 0;
  virtual SDKLogger& logger() = 0;
};

}  // namespace quillon
