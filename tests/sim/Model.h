// The invariants of the simulation, derived from the documentation. Shares no code with the SDK.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "tests/sim/Documents.h"
#include "tests/sim/Reports.h"
#include "tests/sim/Servers.h"
#include "tests/sim/StoreView.h"
#include "tests/sim/Trail.h"

namespace quillon::sim {

class Model {
 public:
  Model(const std::vector<Document>& documents, Trail& trail) : documents_(documents), trail_(trail) {}

  // Events of the processes and their environment.
  void began(int owner) { lives_[owner] = {}; }
  // Work in flight may still complete.
  void ended(int owner) { lives_.at(owner).isEnded = true; }
  void forget(int owner) { lives_.erase(owner); }
  void closed(int owner) { lives_.at(owner).isClosed = true; }
  void setUp(int owner, const SessionView& session);
  void delivered(int owner, const std::string& url, int version);
  void diskHolds(std::optional<int> version);
  void trackingIs(bool isAuthorized) { isTrackingAuthorized_ = isAuthorized; }
  void signalIs(bool isOn) { isSignalOn_ = isOn; }
  // All work of the process has ended without failure, including a load for its current session.
  void settled(int owner);
  // The process is idle; in particular no load is in flight.
  void quiet(int owner) { lives_.at(owner).mayHaveBeenOvertaken = false; }

  // Compare snapshots of the store: before and after an act, and before and after the jobs that followed it.
  void judgeAct(const ActReport& act, const StoreView& before, const StoreView& after);
  void judgeJobs(const StoreView& before, const StoreView& after);
  void judgeAnswers(int owner, const Answers& answers, const StoreView& store, std::int64_t now);
  void judgeSink(int owner, const std::map<std::string, std::string>& signals, const StoreView& store);

  // The process is idle and nothing failed: a signal's decisions must be stored, or have ended.
  void judgeSignals(int owner, const StoreView& store);
  // The last value that analytics received must not be a consent that a signal refuses.
  void judgeTold(int owner, const std::map<std::string, std::string>& signals);
  // The purposes that a signal may refuse in any process.
  [[nodiscard]] std::set<int> mayBeRefused() const;

  void uploadSent(int owner, const Upload& upload, const StoreView& store);
  void uploadTaken(const Upload& upload);
  // All faults have been removed, and enough time has passed.
  void judgeEnd(const Document& published, const StoreView& store);

 private:
  enum class Sure { no, yes };
  struct Life {
    SessionView session;
    struct Replaced {
      SessionView session;
      std::set<int> versions;
    };
    std::optional<Replaced> replaced;             // the state before a set-up, while the same act runs
    std::set<int> versions;                       // versions that may be in force; empty before the first load
    std::set<std::optional<std::string>> places;  // locations that may be in effect
    bool hasSession = false;                      // also if it was set when already closed
    bool isSetUp = false;
    bool isClosed = false;
    bool isEnded = false;
    bool isCertain = false;             // one of `versions` is in force
    bool mayHaveBeenOvertaken = false;  // another process received a document while this one may have been loading
  };

  const Document& document(int version) const { return documents_[static_cast<std::size_t>(version - 1)]; }
  static std::set<Law> lawsOf(const Document& document, const Life& life);
  std::set<int> everywhere() const;
  std::set<std::string> lawsInForce() const;
  std::set<int> atHand(const Life& life) const;
  // The versions that may define the purposes of a privacy signal.
  std::set<int> mayMap(const Life& life) const;
  // Effects of a privacy signal on a purpose: it certainly, or possibly, refuses it; its decision may be recorded, or
  // may end.
  bool isRefused(const Life& life, int purpose) const;
  bool mayBeRefused(const Life& life, int purpose) const;
  bool mayRecord(int purpose) const;
  bool mayEnd(int purpose) const;
  bool isSignalled(int purpose, const StoreView& before, const StoreView& after) const;
  // Whether a set-up may have caused the change.
  bool isSetUp(const StoreView& before, const StoreView& after) const;
  // Whether the signal covers all purposes that the banner would ask for; certainly or possibly.
  bool isBannerSettled(const Life& life, Sure sure) const;
  // Drops recorded answers that a signal need not respect after all.
  void forgetSignalled(const StoreView& before, const StoreView& after);
  void judgeCauses(const std::string& sender, const Upload& upload, const StoreView& store);
  void judgeOwners(const StoreView& store);
  bool allowsUndecided(const Life& life, int version, int purpose) const;
  // Whether some process may record that status as a default.
  bool isDefault(int purpose, const std::string& status, const StoreView& before, const StoreView& after) const;
  bool isFollowingTracking(int purpose, const std::string& status) const;
  bool isGivenByJobs(const StoreView& before, const StoreView& after) const;
  bool isAnswerBy(const Document& at, const ActReport& act, const StoreView& before, const StoreView& after) const;
  bool isEffect(const ActReport& act, const StoreView& before, const StoreView& after) const;
  void keepAnswers(const ActReport& act, const StoreView& after);
  void keepTold(const ActReport& act, const StoreView& before, const StoreView& after);
  bool isBannerDue(const StoreView& store, std::int64_t now, bool& isNear) const;

  const std::vector<Document>& documents_;
  Trail& trail_;
  std::map<int, Life> lives_;
  std::optional<int> disk_;
  std::set<std::string> applications_;  // of all set-ups so far
  bool isTrackingAuthorized_ = false;
  bool isSignalOn_ = false;          // the device's signal
  std::map<int, std::string> told_;  // the user's last decisions that the SDK reported as stored
  std::set<int> answers_;            // purposes among them that the user has certainly answered
  std::set<int> mayBeAnswers_;       // purposes that the user may have answered
  int lastTaken_ = 0;
  std::map<int, std::string> onServer_;
  std::string subjectOnServer_;
};

}  // namespace quillon::sim
