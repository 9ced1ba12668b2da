// Uploads decisions to the application server.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>

#include "core/ConsentSDK/ConfigurationLoader.h"

namespace quillon {

// Thread-safe. Uploads are serialised, in this process and across the application's processes: an upload that overtakes
// another would leave an earlier decision on the server. Pending decisions are identified by history number.
class ConsentUploader {
 public:
  // Collaborators; all must outlive it.
  struct Services : Foundation {
    ServerApi& server;
    ConfigurationLoader& loader;
    std::function<void()> answered;     // called after every upload that was accepted, failed or not possible
    std::function<void()> leftPending;  // called when an upload has left something pending that must be retried
  };
  explicit ConsentUploader(Services services) : s_(std::move(services)) {}

  // Cancels the scheduled upload. Nothing is scheduled afterwards.
  void close();

  enum class Trigger {
    automatic,    // skips decisions that the server has rejected for good
    application,  // sends all pending decisions
  };
  // Uploads pending decisions that the configuration lists. True when the server accepted them or there were none.
  // While another process uploads it returns false, and retries a second later.
  Task<bool> uploadPending(Trigger trigger);

  // Sends the application's own request; decisions pending when it is sent count as sent with it.
  Task<void> upload(std::string url, PostConsentsRequest request);

  // Schedules an upload of pending decisions in about a second, so that decisions are batched.
  void schedule();

  // Whether an automatic upload would send something.
  bool isUploadDue(const ConfigurationPointer& configuration) const;

 private:
  // Identifies the decisions in an upload: those on its subjects, up to an entry of the history. Distinguishes them
  // from decisions made during the upload.
  struct Sent {
    std::set<DecisionSubject> subjects;
    JournalRecord newest;  // unmarked history entry when the request was made; number 0 without one
    std::string subject;   // stored identifier when the request was made
  };

  Task<bool> uploadInTurn(SessionPointer session, Trigger trigger);
  // Tries to acquire the cross-process lock. Also true, without the lock, once another process has held it for longer
  // than any exchange takes: a stopped process must not block the others forever.
  bool acquireLock(std::unique_ptr<StoreLock>& turn);
  PostConsentsRequest request(const Session& session, const StoredValues& stored,
                              const ConfigurationPointer& configuration);
  Task<bool> send(std::string url, PostConsentsRequest request, Sent sent);
  // False when the consents were removed during the upload, which restarts the history at 1.
  static bool isOfSameHistory(const Sent& sent, const StoredValues& stored, const std::vector<JournalRecord>& unmarked);
  void applyAnswer(const GenericResponse& response, const PostConsentsRequest& request, const Sent& sent);
  // The stored content with as much of the history as isDue() needs.
  std::optional<SuiteReading> read() const;
  bool isDue(const SuiteReading& reading, const ConfigurationPointer& configuration) const;

  const Services s_;
  TaskQueue turns_;
  std::mutex mutex_;  // guards the members below; never held while anything else is called
  std::unique_ptr<Timer> followUp_;
  bool isScheduled_ = false;
  int missedTurns_ = 0;       // in a row
  std::uint64_t number_ = 0;  // of the upload scheduled last
};

}  // namespace quillon
