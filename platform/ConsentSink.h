// The analytics library of the host application, if it contains one.
#pragma once

#include <map>
#include <string>
#include <string_view>

namespace quillon {

// Thread-safe. Called from a background thread; must not block for long.
class ConsentSink {
 public:
  virtual ~ConsentSink() = default;

  // Whether the library that was found takes consents at all.
  virtual bool takesConsent() const = 0;
  // The consent-mode signals by name ("ad_storage"), each "granted" or "denied". May throw: that is contained.
  virtual void setConsent(const std::map<std::string, std::string>& values) = 0;
};

}  // namespace quillon
