// An analytics library behind a function of the host.
#pragma once

#include <functional>
#include <utility>

#include "platform/ConsentSink.h"

namespace quillon {

// Thread-safe if the function is. Without a function, a library that takes no consents.
class FunctionConsentSink : public ConsentSink {
 public:
  using Function = std::function<void(const std::map<std::string, std::string>&)>;

  explicit FunctionConsentSink(Function function) : function_(std::move(function)) {}

  bool takesConsent() const override { return function_ != nullptr; }
  void setConsent(const std::map<std::string, std::string>& signals) override { function_(signals); }

 private:
  const Function function_;
};

}  // namespace quillon
