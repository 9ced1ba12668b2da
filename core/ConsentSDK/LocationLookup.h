// Where the user is, as far as that decides which banner and which consent-mode mapping apply.
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
  // All must outlive it. `late` is told, in the background, when an answer has come for which somebody waited in vain.
  LocationLookup(const Platform& platform, UserDefaultManager& store, Work& work, ServerApi& server,
                 std::function<void()> late)
      : platform_(platform), store_(store), work_(work), server_(server), late_(std::move(late)) {}

  // The session's location, the remembered one of the last hour, else the server's answer. Nothing when it is unknown,
  // or when the configuration makes no difference by it. Waits at most 5 s for the server, 1 s for ten minutes after a
  // failure; a later answer is remembered all the same.
  Task<std::optional<std::string>> locationFor(SessionPointer session,
                                               std::shared_ptr<const MainConfiguration> configuration);
  // The location as far as it is known without asking anybody.
  std::optional<std::string> known(const SessionPointer& session) const;

 private:
  // Whether the time under that key lies no longer back than that.
  bool isWithin(std::string_view timestamp, std::chrono::seconds limit) const;
  // Starts a request unless one is in flight; the event is signalled when it is over.
  std::shared_ptr<TaskEvent> request(const std::string& language);
  Task<void> ask(std::string language);

  const Platform& platform_;
  UserDefaultManager& store_;
  Work& work_;
  ServerApi& server_;
  const std::function<void()> late_;
  std::mutex mutex_;  // guards the member below
  std::shared_ptr<TaskEvent> inFlight_;
};

}  // namespace quillon
