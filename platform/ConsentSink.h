// The host application's analytics library, if any.
#pragma once

#include <map>
#include <string>
#include <string_view>

namespace quillon {

// Thread-safe. Called from a background thread; must not block for long.
class ConsentSink {
 public:
  virtual ~ConsentSink() = default;

  // Whether the library accepts consents at all.
  virtual bool takesConsent() const = 0;
  // Passes the consent-mode signals by name ("ad_storage"), each "granted" or "denied". Exceptions are contained.
  virtual void setConsent(const std::map<std::string, std::string>& values) = 0;
};

}  // namespace quillon
