// The session begun by one setup.
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

// Immutable. A load holds its session, and drops its result when the session is no longer current.
struct Session {
  ConsentSDKOptions options;  // validated
  Mode mode;
  std::string language;          // code of the user interface's language
  std::uint64_t generation = 0;  // increases with every setup

  // The URL requested first for its configuration.
  [[nodiscard]] std::string configurationAddress() const;
  // Whether both use the same application and tenant, on the same channel of the same server.
  [[nodiscard]] bool isOfSameApplication(const Session& other) const;
};

using SessionPointer = std::shared_ptr<const Session>;

// The current session.
class Sessions {
 public:
  // The platform must outlive it.
  explicit Sessions(const Platform& platform) : platform_(platform), locale_(platform) {}

  // Null before the first setup.
  [[nodiscard]] SessionPointer current() const;
  [[nodiscard]] bool isCurrent(const Session& session) const;

  // Creates a session with these options and makes it current.
  SessionPointer begin(ConsentSDKOptions options);

  // The user interface's language: the session's, before a setup the device's.
  [[nodiscard]] std::string language() const;
  // The context of a decision made now.
  [[nodiscard]] DecisionContext context(GivenType given) const;

 private:
  const Platform& platform_;
  const LocaleUtils locale_;
  mutable std::mutex mutex_;  // guards the member below; never held while anything else is called
  SessionPointer current_;
};

}  // namespace quillon
