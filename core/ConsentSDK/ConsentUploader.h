// Decisions on their way to the application server.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>

#include "core/ConsentSDK/ConfigurationLoader.h"

namespace quillon {

// Thread-safe. Uploads take turns, in this process and among all processes of the application: overtaking one another
// they would leave an earlier decision on the server. What is still to be sent is told by the numbers of the history.
class ConsentUploader {
 public:
  // What it calls; all must outlive it.
  struct Services : Foundation {
    ServerApi& server;
    ConfigurationLoader& loader;
    std::function<void()> answered;  // after every upload that was accepted or failed
  };
  explicit ConsentUploader(Services services) : s_(std::move(services)) {}

  // Drops the follow-up upload. Nothing is scheduled any more.
  void close();

  enum class Trigger {
    automatic,    // leaves what the server has refused for good
    application,  // sends everything that is pending
  };
  // Uploads what is pending and listed by the configuration. True when the server took it or there was nothing. While
  // another process uploads it answers false, and the upload follows a second later.
  Task<bool> uploadPending(Trigger trigger);

  // The application's own request; what was pending when it is sent counts as sent with it.
  Task<void> upload(std::string url, PostConsentsRequest request);

  // Uploads what is pending about a second from now, together with what else is decided until then.
  void schedule();

  // Whether an automatic upload would send something.
  bool isUploadDue(const ConfigurationPointer& configuration) const;

 private:
  // What an upload carries, to tell later whether it was changed meanwhile.
  struct Sent {
    NewestDecisions decisions;
    std::int64_t newest = 0;  // record of the history when it was made
  };

  // Whether it is this process's turn: it is, without one, when another has had it for longer than any exchange takes,
  // since a process that stands still must not hold up the others for good.
  bool takeTurn(std::unique_ptr<StoreTurn>& turn);
  PostConsentsRequest request(const Session& session, const StoredValues& stored,
                              const ConfigurationPointer& configuration);
  Task<bool> send(std::string url, PostConsentsRequest request, Sent sent);
  void settle(const GenericResponse& response, const PostConsentsRequest& request, const Sent& sent);
  bool isDue(const StoredValues& stored, const NewestDecisions& newest,
             const ConfigurationPointer& configuration) const;

  const Services s_;
  TaskQueue turns_;
  std::mutex mutex_;  // guards the members below; never held while anything else is called
  std::unique_ptr<Timer> followUp_;
  bool isScheduled_ = false;
  int missedTurns_ = 0;       // in a row
  std::uint64_t number_ = 0;  // of the upload scheduled last
};

}  // namespace quillon
