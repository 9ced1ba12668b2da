// A console that passes messages to the application's log.
#pragma once

#include <functional>
#include <utility>

#include "platform/linux/StandardConsole.h"
#include "platform/parts/Contained.h"

namespace quillon {

// Thread-safe if the function is. Fatal errors still go to standard error.
class HostConsole : public StandardConsole {
 public:
  using Log = std::function<void(LogLevel level, std::string_view text, std::string_view unit)>;
  explicit HostConsole(Log log) : log_(std::move(log)) {}

  bool take(LogLevel level, std::string_view text, std::string_view unit) override {
    contained([&] { log_(level, text, unit); });
    return true;
  }

 private:
  const Log log_;
};

}  // namespace quillon
