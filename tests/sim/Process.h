// One run of an application process: its SDK, the calls it made, and the callbacks it received.
#pragma once

#include <deque>
#include <functional>
#include <future>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "quillon/ConsentSDK.h"
#include "quillon/Held.h"
#include "tests/sim/Screens.h"
#include "tests/sim/Storage.h"
#include "tests/sim/Surroundings.h"

namespace quillon::sim {

class Process {
 public:
  // `owner` is unique to this run. `killed` is called when the process dies during a change to the store or a file; it
  // must then be destroyed once the current job returns.
  Process(Surroundings& around, int owner, std::function<void()> killed);
  ~Process();
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;

  [[nodiscard]] int owner() const { return owner_; }
  [[nodiscard]] bool isDead() const { return isDead_; }
  [[nodiscard]] bool isClosed() const { return isClosed_; }
  [[nodiscard]] bool isSetUp() const { return isSetUp_; }
  [[nodiscard]] bool isReady() const { return sdk_->getStatus() == SDKStatus::ready; }

  void setUp(unsigned what, unsigned how);
  void close();
  // Ends the process without notifying the SDK. Requests in flight arrive if `arrives`, else never.
  void kill(bool arrives);
  void decide(unsigned what, unsigned how, ActReport& report);
  void decideOnPermission(unsigned what);
  void answer(unsigned what, ActReport& report);
  void askBannerDue(ActReport& report);
  void ask(unsigned what);
  void checkConsents(unsigned what);
  void uploadPending(unsigned what);
  void watchGate(unsigned what);
  void hold(unsigned what);

  ConsentSDK& sdk() { return *sdk_; }
  Screens& screens() { return *screens_; }
  Storage& storage() { return storage_; }

  [[nodiscard]] Answers answers() const;
  // Whether the process is idle.
  [[nodiscard]] bool isQuiet() const;
  // Checks what must hold when no job is queued, even if a response is outstanding.
  void judgeTold() const;
  // Checks what must hold while idle.
  void judgeQuiet();
  // Whether a load has ended since the last call.
  bool takeLoaded() { return std::exchange(hasLoaded_, false); }

 private:
  struct Call {
    std::string what;
    int times = 0;
  };
  struct Gate {
    int purpose;
    bool isOpen = false;
    Listening listening;
  };
  struct Keeping {
    std::vector<int> delivered;
    int added = 0;
    std::unique_ptr<Held<int>> held;
  };
  class HostConsole;

  Platform platform();
  void listen();
  // A callback that must be called exactly once, unless the SDK is closed first.
  template <class Then>
  auto expect(std::string what, Then then);
  void called(Call& call);
  template <class T>
  void expectFuture(std::future<T> future);
  void judgeStatuses(const char* what, std::size_t since, const std::vector<Purpose>& purposes) const;
  void judgeSignal(const Decision& decision) const;
  void judgeHistory(std::size_t since, const HistoryPage& page) const;
  void judgeScript(std::size_t since, const std::string& script) const;
  void fail(int claim, const std::string& reason) const;

  Surroundings& around_;
  const int owner_;
  const std::function<void()> killed_;
  bool isDead_ = false;
  bool isClosed_ = false;
  bool isSetUp_ = false;
  bool hasLoaded_ = false;
  Storage storage_;
  std::shared_ptr<HostConsole> console_;
  std::shared_ptr<Screens> screens_;
  std::unique_ptr<ConsentSDK> sdk_;
  std::vector<std::shared_ptr<Call>> calls_;
  std::vector<std::function<bool()>> unready_;  // futures
  std::map<int, std::string> heard_;            // last reported decision of each purpose
  std::optional<SDKStatus> heardStatus_;
  std::deque<Gate> gates_;
  std::deque<Keeping> keepings_;
  std::map<std::string, std::string> signals_;
  std::vector<Listening> listenings_;
};

}  // namespace quillon::sim
