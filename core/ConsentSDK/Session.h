// What one set-up asked for.
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>

#include "core/History/DecisionHistory.h"
#include "core/Text/LocaleUtils.h"
#include "platform/Platform.h"
#include "quillon/ConsentSDKOptions.h"

namespace quillon {

// Immutable. Whoever loads something for a session keeps it, and drops the result when it is no longer the current one.
struct Session {
  ConsentSDKOptions options;  // checked
  Mode mode;
  std::string language;          // code in which the user is addressed
  std::uint64_t generation = 0;  // ascending with every set-up

  // The address under which its configuration is asked for first.
  [[nodiscard]] std::string configurationAddress() const;
  // Whether both are about the same application of the same tenant, on the same channel of the same server.
  [[nodiscard]] bool isOfSameApplication(const Session& other) const;
};

using SessionPointer = std::shared_ptr<const Session>;

// The session in force. Thread-safe.
class Sessions {
 public:
  // The platform must outlive it.
  explicit Sessions(const Platform& platform) : platform_(platform), locale_(platform) {}

  // Null before the first set-up.
  [[nodiscard]] SessionPointer current() const;
  [[nodiscard]] bool isCurrent(const Session& session) const;

  // Makes a session of these options the current one.
  SessionPointer begin(ConsentSDKOptions options);

  // In which the user is addressed: the session's language, before a set-up the device's.
  [[nodiscard]] std::string language() const;
  // The context of a decision that is made now.
  [[nodiscard]] DecisionContext context(GivenType given) const;

 private:
  const Platform& platform_;
  const LocaleUtils locale_;
  mutable std::mutex mutex_;  // guards the member below; never held while anything else is called
  SessionPointer current_;
};

}  // namespace quillon
