// What must hold, whatever happens: written from what the documentation promises. It shares no code with the SDK.
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

  // What happens to the processes and around them.
  void began(int owner) { lives_[owner] = {}; }
  // What it had under way may still be done.
  void ended(int owner) { lives_.at(owner).isEnded = true; }
  void forget(int owner) { lives_.erase(owner); }
  void closed(int owner) { lives_.at(owner).isClosed = true; }
  void setUp(int owner, const SessionView& session);
  void delivered(int owner, const std::string& url, int version);
  void diskHolds(std::optional<int> version);
  void trackingIs(bool isAuthorized) { isTrackingAuthorized_ = isAuthorized; }
  void signalIs(bool isOn) { isSignalOn_ = isOn; }
  // Everything that was under way in the process is over, a load for the present session among it, and nothing failed.
  void settled(int owner);
  // Nothing is under way in the process, in particular no load.
  void quiet(int owner) { lives_.at(owner).mayHaveBeenOvertaken = false; }

  // Two moments of the store: around an act, and around the jobs that ran after it.
  void judgeAct(const ActReport& act, const StoreView& before, const StoreView& after);
  void judgeJobs(const StoreView& before, const StoreView& after);
  void judgeAnswers(int owner, const Answers& answers, const StoreView& store, std::int64_t now);
  void judgeSink(int owner, const std::map<std::string, std::string>& signals, const StoreView& store);

  // Nothing is under way in the process, and nothing went wrong: what a signal decides is stored, or is over.
  void judgeSignals(int owner, const StoreView& store);
  // Analytics was told last of no consent that a signal refuses.
  void judgeTold(int owner, const std::map<std::string, std::string>& signals);
  // The purposes that a signal may refuse in some process.
  [[nodiscard]] std::set<int> mayBeRefused() const;

  void uploadSent(int owner, const Upload& upload, const StoreView& store);
  void uploadTaken(const Upload& upload);
  // Everything has healed, and had its time.
  void judgeEnd(const Document& published, const StoreView& store);

 private:
  enum class Sure { no, yes };
  struct Life {
    SessionView session;
    struct Replaced {
      SessionView session;
      std::set<int> versions;
    };
    std::optional<Replaced> replaced;  // what was before a set-up, within the same act
    std::set<int> versions;            // of the documents of which one may be in force; none before the first load
    std::set<std::optional<std::string>> places;  // for which it may be
    bool hasSession = false;                      // even one that it was given when it was closed
    bool isSetUp = false;
    bool isClosed = false;
    bool isEnded = false;
    bool isCertain = false;             // one of the versions is in force
    bool mayHaveBeenOvertaken = false;  // another process got a document while this one may have been loading one
  };

  const Document& document(int version) const { return documents_[static_cast<std::size_t>(version - 1)]; }
  static std::set<Law> lawsOf(const Document& document, const Life& life);
  std::set<int> everywhere() const;
  std::set<std::string> lawsInForce() const;
  std::set<int> atHand(const Life& life) const;
  // Those that may say what a privacy signal stands for.
  std::set<int> mayMap(const Life& life) const;
  // What a privacy signal does to a purpose: it refuses it for sure, or perhaps; its decision may be recorded, or end.
  bool isRefused(const Life& life, int purpose) const;
  bool mayBeRefused(const Life& life, int purpose) const;
  bool mayRecord(int purpose) const;
  bool mayEnd(int purpose) const;
  bool isSignalled(int purpose, const StoreView& before, const StoreView& after) const;
  // Whether a set-up may have had that effect.
  bool isSetUp(const StoreView& before, const StoreView& after) const;
  // Whether it stands for all that the banner would ask; perhaps, or for sure.
  bool isBannerSettled(const Life& life, Sure sure) const;
  // What passed for an answer, and was none that a signal must respect.
  void forgetSignalled(const StoreView& before, const StoreView& after);
  void judgeCauses(const std::string& sender, const Upload& upload, const StoreView& store);
  void judgeOwners(const StoreView& store);
  bool allowsUndecided(const Life& life, int version, int purpose) const;
  // Whether a default of that status may be recorded by some process.
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
  std::set<std::string> applications_;  // that were ever set up
  bool isTrackingAuthorized_ = false;
  bool isSignalOn_ = false;          // the device's
  std::map<int, std::string> told_;  // what the user decided last and was told is stored
  std::set<int> answers_;            // of these, what is the user's own word for sure
  std::set<int> mayBeAnswers_;       // and what may be
  int lastTaken_ = 0;
  std::map<int, std::string> onServer_;
  std::string subjectOnServer_;
};

}  // namespace quillon::sim
