// The user's location, which selects the banner and the consent-mode mapping.
#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "core/ConsentSDK/ServerApi.h"
#include "core/ConsentSDK/Work.h"
#include "core/Tasks/TaskEvent.h"

namespace quillon {

// Thread-safe. At most one request is in flight.
class LocationLookup {
 public:
  // All must outlive it. `lateAnswer` is called in the background when an answer arrives after a wait for it has timed
  // out.
  LocationLookup(const Platform& platform, UserDefaultManager& store, Work& work, ServerApi& server,
                 std::function<void()> lateAnswer)
      : platform_(platform), store_(store), work_(work), server_(server), lateAnswer_(std::move(lateAnswer)) {}

  // The session's location, else one stored within the last hour, else the server's answer, else an older stored one;
  // nullopt when unknown, or when the configuration does not depend on it. Waits at most 5 s for the server, 1 s for
  // ten minutes after a failure; a later answer is stored.
  Task<std::optional<std::string>> locationFor(SessionPointer session,
                                               std::shared_ptr<const MainConfiguration> configuration);
  // The location known without a request.
  std::optional<std::string> known(const SessionPointer& session) const;

 private:
  // Whether the stored timestamp is at most `limit` old.
  bool isWithin(std::string_view timestamp, std::chrono::seconds limit) const;
  // Starts a request unless one is in flight; the event is signalled when it ends.
  std::shared_ptr<TaskEvent> request(const std::string& language);
  Task<void> ask(std::string language);

  const Platform& platform_;
  UserDefaultManager& store_;
  Work& work_;
  ServerApi& server_;
  const std::function<void()> lateAnswer_;
  std::mutex mutex_;  // guards the member below
  std::shared_ptr<TaskEvent> inFlight_;
};

}  // namespace quillon
