#include "tests/sim/Process.h"

#include <algorithm>
#include <utility>

#include "platform/Platform.h"
#include "platform/memory/FixedHostApplication.h"
#include "platform/memory/FixedLocale.h"
#include "platform/memory/SeededRandom.h"
#include "platform/parts/FatalError.h"
#include "platform/parts/FunctionConsentSink.h"

namespace quillon::sim {
namespace {

class Tracking : public AppTracking {
 public:
  explicit Tracking(std::shared_ptr<const bool> isAuthorized) : isAuthorized_(std::move(isAuthorized)) {}
  TrackingAuthorization authorization() const override {
    return *isAuthorized_ ? TrackingAuthorization::authorized : TrackingAuthorization::denied;
  }
  std::optional<std::string> advertisingIdentifier() const override { return "AD"; }

 private:
  const std::shared_ptr<const bool> isAuthorized_;
};

std::string words(ConsentStatus status) {
  return std::string(rawValue(status));
}

}  // namespace

class Process::HostConsole : public Console {
 public:
  HostConsole(Surroundings& around, Process& process) : around_(around), process_(&process) {}
  void leave() { process_ = nullptr; }

  void write(std::string_view block) override {
    if (!process_) return;
    if (around_.trail.isKept()) {
      around_.trail.note("  p" + std::to_string(process_->owner_) + " log: " + std::string(block));
    }
    if (block.find("[ERROR]") != std::string_view::npos) around_.errorLogged(std::string(block));
  }
  [[noreturn]] void fatal(std::string_view message, std::string_view file) override { abortWithMessage(message, file); }

 private:
  Surroundings& around_;
  Process* process_;
};

Process::Process(Surroundings& around, int owner, std::function<void()> killed)
    : around_(around),
      owner_(owner),
      killed_(std::move(killed)),
      storage_(*around.store, around.files, [this] { kill(owner_ % 2 == 0); }),
      console_(std::make_shared<HostConsole>(around, *this)),
      screens_(std::make_shared<Screens>(around)),
      sdk_(std::make_unique<ConsentSDK>(platform())) {
  around_.model.began(owner_);
  listen();
}

Process::~Process() {
  const bool wasKilled = std::exchange(isDead_, true);  // the store may still fail, but must not kill the process again
  screens_->clear();
  keepings_.clear();
  gates_.clear();
  listenings_.clear();
  if (!wasKilled) around_.model.ended(owner_);
  sdk_.reset();
  console_->leave();
}

Platform Process::platform() {
  Platform platform;
  platform.console = console_;
  platform.clock = around_.clock;
  platform.executors = around_.scheduler->executorsFor(owner_);
  platform.files = storage_.files();
  platform.store = storage_.store();
  platform.http = around_.servers.sessionFor(owner_);
  platform.network = around_.network;
  platform.locale = std::make_shared<FixedLocale>(std::vector<std::string>{around_.language});
  platform.tracking = std::make_shared<Tracking>(around_.isTrackingAuthorized);
  platform.permissions = around_.permissions;
  platform.signals = around_.signals;
  platform.host = std::make_shared<FixedHostApplication>(
      FixedHostApplication::Description{.resources = {{"bundled.json", around_.documents.front().json()}}});
  platform.random = std::make_shared<SeededRandom>(around_.plan.seed + static_cast<unsigned>(owner_));
  platform.consentSink =
      std::make_shared<FunctionConsentSink>([this](const std::map<std::string, std::string>& signals) {
        if (isDead_) return;
        if (isClosed_) fail(7, "analytics was called after the end");
        around_.model.judgeSink(owner_, signals, around_.view());
        signals_ = signals;
      });
  platform.screens = screens_;
  platform.vendorUrl = Servers::address;
  return platform;
}

void Process::fail(int claim, const std::string& reason) const {
  around_.trail.fail(claim, "process " + std::to_string(owner_) + ": " + reason);
}

void Process::listen() {
  const auto live = [this] {
    if (isDead_ || isClosed_) fail(7, "a listener was called after the end");
  };
  // Decisions of other processes before the set-up are not reported.
  if (around_.plan.processes == 1) {
    for (const int purpose : purposes) heard_[purpose] = sdk_->isDecided(purpose) ? words(sdk_->get(purpose)) : "";
  }
  listenings_.push_back(sdk_->listenToConsents([this, live](const Decision& decision) {
    live();
    if (!decision.purposeId) return;
    const int purpose = static_cast<int>(*decision.purposeId);
    judgeSignal(decision);
    const bool isRemoved = decision.cause == DecisionCause::removed;
    const std::string from = decision.from ? words(*decision.from) : "";
    const std::string to = isRemoved ? "" : words(decision.to);
    if (from == to) fail(7, "a listener heard of a change that is none");
    const auto before = heard_.find(purpose);
    // Of several decisions by other processes only the last is reported.
    const bool isAlone = around_.plan.processes == 1;
    if (isAlone && before != heard_.end() && before->second != from) fail(7, "a listener missed a change");
    heard_[purpose] = to;
  }));
  listenings_.push_back(sdk_->listenToUploads([live](const UploadEvent&) { live(); }));
  listenings_.push_back(sdk_->listenToScreens([live](const ScreenEvent&) { live(); }));
  listenings_.push_back(sdk_->listenToBannerDue([live](const BannerExplanation&) { live(); }));
  sdk_->isReady([this, live](SDKStatus status) {
    live();
    if (heardStatus_ == status) fail(7, "a status was reported twice");
    heardStatus_ = status;
  });
}

void Process::called(Call& call) {
  if (isDead_ || isClosed_) fail(7, call.what + " was answered after the end");
  if (++call.times > 1) fail(7, call.what + " was answered twice");
}

template <class Then>
auto Process::expect(std::string what, Then then) {
  const auto call = calls_.emplace_back(std::make_shared<Call>(Call{std::move(what), 0}));
  return [this, call, then](const auto&... results) {
    called(*call);
    then(results...);
  };
}

template <class T>
void Process::expectFuture(std::future<T> future) {
  unready_.push_back([future = std::make_shared<std::future<T>>(std::move(future))] {
    return future->wait_for(std::chrono::seconds(0)) != std::future_status::ready;
  });
}

void Process::setUp(unsigned what, unsigned how) {
  SessionView session;
  ConsentSDKOptions options{.appUrl = Servers::address, .cdnUrl = Servers::address, .tenantId = "tenant", .appId = "a"};
  if (how % 16 == 1) options.appId = session.application = "b";
  if (how / 16 % 8 == 1) {
    options.testingMode = true;
    session.channel = "draft";
  }
  if (how / 128 % 3 == 1) options.locationCode = session.place = lawfulPlace;
  if (how / 128 % 3 == 2) options.locationCode = session.place = "DE";
  if (what % 3 == 1) options.languageCode = "en";
  if (what % 3 == 2) options.languageCode = "de";
  if (what / 3 % 4 == 1) {
    options.bundledConfiguration = "bundled";
    session.bundled = around_.documents.front().version;
  }
  if (what / 12 % 4 == 1) options.readyWithin = std::chrono::seconds(2);
  if (auto use = signalsOf(around_.plan, how)) {
    session.signals = std::move(use);
    options.privacySignal = PrivacySignal{.isGiven = session.signals->isGiven};
    if (const auto& named = session.signals->purposes) {
      options.privacySignal->purposes.emplace(named->begin(), named->end());
    }
  }
  options.logLevel = around_.plan.isVerbose ? LogLevel::debug : LogLevel::error;
  options.consentsCheckInterval = around_.plan.checkInterval;
  around_.model.setUp(owner_, session);
  isSetUp_ = true;
  hasLoaded_ = true;
  around_.servers.beginSession(owner_);
  sdk_->setup(options);
}

void Process::close() {
  // close() blocks in real time until running work ends, so it is called only when idle.
  if (isClosed_ || !isQuiet()) return;
  screens_->clear();
  sdk_->close();
  isClosed_ = true;
  around_.model.closed(owner_);
}

void Process::kill(bool arrives) {
  if (std::exchange(isDead_, true)) return;
  storage_.end();
  around_.scheduler->end(owner_);
  around_.servers.end(owner_, arrives);
  around_.model.ended(owner_);
  console_->leave();
  killed_();
}

void Process::decide(unsigned what, unsigned how, ActReport& report) {
  constexpr std::array statuses{ConsentStatus::granted,  ConsentStatus::declined,  ConsentStatus::granted,
                                ConsentStatus::declined, ConsentStatus::withDrawn, ConsentStatus::notDetermined};
  const int purpose = purposes[what % purposes.size()];
  const ConsentStatus status = statuses[how % (how % 4 == 0 ? statuses.size() : 2)];
  report.effect = Effect::decision;
  report.chosen[purpose] = words(status);
  report.result = sdk_->set(Purpose{.purposeId = purpose}, status);
}

void Process::decideOnPermission(unsigned what) {
  const auto status = what % 2 == 0 ? ConsentStatus::granted : ConsentStatus::declined;
  sdk_->set(AppPermission{.permissionId = VantariKey::cameraUsageDescription}, status);
}

void Process::answer(unsigned what, ActReport& report) {
  report.effect = Effect::answer;
  report.accepts = what % 2 == 0;
  switch (what / 2 % 3) {
    case 0:
      return sdk_->acceptOrReject(report.accepts, expect("acceptOrReject", [](bool) {}));
    case 1:
      return expectFuture(sdk_->acceptOrReject(report.accepts));
    default:
      report.result = sdk_->screens()->answer(report.accepts, {});
  }
}

void Process::askBannerDue(ActReport& report) {
  report.effect = Effect::bannerTest;
  report.result = sdk_->isBannerDue();
}

void Process::ask(unsigned what) {
  if (isClosed_) return;
  const std::size_t since = around_.moments.empty() ? 0 : around_.moments.size() - 1;
  switch (what % 8) {
    case 0:
    case 1:
      return sdk_->getHistory(100, std::nullopt, expect("getHistory", [this, since](const HistoryPage& page) {
                                judgeHistory(since, page);
                              }));
    case 2:
    case 3:
      return sdk_->getPurposeConsents(expect("getPurposeConsents", [this, since](const std::vector<Purpose>& list) {
        judgeStatuses("getPurposeConsents", since, list);
      }));
    case 4:
      return sdk_->consentScript(
          expect("consentScript", [this, since](const std::string& script) { judgeScript(since, script); }));
    case 5:
      expectFuture(sdk_->getGCMConsents());
      return expectFuture(sdk_->getBannerConfig());
    case 6:
      expectFuture(sdk_->getPermissionConsents());
      return expectFuture(sdk_->explain(purposes[what / 8 % purposes.size()]));
    default:
      return sdk_->checkConsentBy(VantariKey::cameraUsageDescription, expect("checkConsentBy", [](ConsentStatus) {}));
  }
}

void Process::judgeStatuses(const char* what, std::size_t since, const std::vector<Purpose>& list) const {
  for (const Purpose& purpose : list) {
    const int id = static_cast<int>(purpose.purposeId.value_or(0));
    const std::string status = words(purpose.consentStatus.value_or(ConsentStatus::notDetermined));
    if (id == trackedPurpose || around_.wasStored(since, id, status)) continue;
    fail(1, std::string(what) + " says " + status + " of purpose " + std::to_string(id));
  }
}

void Process::judgeHistory(std::size_t since, const HistoryPage& page) const {
  if (page.isNewestMissing || page.damaged > 0) fail(1, "the history says that entries of it are missing");
  std::map<int, std::string> newest;
  std::set<std::int64_t> named;
  for (const HistoryEntry& entry : page.entries) {
    if (entry.link != HistoryLink::intact)
      fail(1, "the history does not hold together at " + std::to_string(entry.number));
    judgeSignal(entry.decision);
    if (!entry.decision.purposeId || !named.insert(*entry.decision.purposeId).second) continue;
    // The end of a signal has no history entry.
    const int purpose = static_cast<int>(*entry.decision.purposeId);
    const bool hasEnded = entry.decision.cause == DecisionCause::signal && around_.wasUndecided(since, purpose);
    if (!hasEnded) newest.emplace(purpose, words(entry.decision.to));
  }
  for (const auto& [purpose, status] : newest) {
    if (!around_.wasStored(since, purpose, status)) {
      fail(1, "the history's newest entry on purpose " + std::to_string(purpose) + " says " + status);
    }
  }
}

void Process::judgeSignal(const Decision& decision) const {
  if (decision.cause != DecisionCause::signal) return;
  if (decision.to != ConsentStatus::declined) fail(2, "a privacy signal is said to have granted");
  if (decision.givenType == GivenType::explicitly) fail(5, "a privacy signal is said to be an explicit answer");
}

void Process::judgeScript(std::size_t since, const std::string& script) const {
  for (const int purpose : purposes) {
    if (purpose == trackedPurpose) continue;
    const std::string id = "\"id\":" + std::to_string(purpose) + ",";
    const auto found = script.find(id);
    if (found == std::string::npos) continue;
    const auto end = script.find('}', found);
    const bool isGranted = script.substr(found, end - found).find("\"granted\"") != std::string::npos;
    if (isGranted && !around_.wasStored(since, purpose, "granted")) {
      fail(2, "the script grants purpose " + std::to_string(purpose));
    }
  }
}

void Process::checkConsents(unsigned what) {
  if (what % 2 == 0) return expectFuture(sdk_->checkConsents());
  if (isClosed_) return;
  sdk_->checkConsents(expect("checkConsents", [] {}));
}

void Process::uploadPending(unsigned what) {
  if (what % 2 == 0) return expectFuture(sdk_->uploadPendingConsents());
  if (isClosed_) return;
  sdk_->uploadPendingConsents(expect("uploadPendingConsents", [](bool) {}));
}

void Process::watchGate(unsigned what) {
  if (isClosed_ || (what % 3 == 0 && !gates_.empty())) return gates_.clear();
  Gate& gate = gates_.emplace_back(Gate{purposes[what / 3 % purposes.size()], false, {}});
  const auto turn = [this, &gate](bool isOpen) {
    return [this, &gate, isOpen] {
      if (isDead_ || isClosed_) fail(9, "a gate was called after the end");
      if (gate.isOpen == isOpen) fail(9, "a gate was " + std::string(isOpen ? "started" : "stopped") + " twice");
      gate.isOpen = isOpen;
    };
  };
  gate.listening = sdk_->whileAllowed(gate.purpose, turn(true), turn(false));
}

void Process::hold(unsigned what) {
  if (isClosed_) return keepings_.clear();
  if (keepings_.empty()) {
    Keeping& keeping = keepings_.emplace_back();
    HeldLimits limits;
    limits.now = [clock = around_.clock] {
      return std::chrono::steady_clock::time_point(clock->now().time_since_epoch());
    };
    keeping.held = std::make_unique<Held<int>>(
        *sdk_, purposes[what % purposes.size()], [&keeping](int event) { keeping.delivered.push_back(event); }, limits);
  }
  Keeping& keeping = keepings_.front();
  keeping.held->add(keeping.added++);
  const bool isInOrder = std::ranges::is_sorted(keeping.delivered, std::less_equal());
  const std::size_t all = keeping.delivered.size() + keeping.held->dropped() + keeping.held->waiting();
  if (!isInOrder || all != static_cast<std::size_t>(keeping.added)) fail(9, "what was held was lost or repeated");
}

Answers Process::answers() const {
  Answers answers;
  answers.isQuiet = isQuiet();
  answers.isReady = isReady();
  for (const int purpose : purposes) {
    answers.get[purpose] = words(sdk_->get(purpose));
    answers.isAllowed[purpose] = sdk_->isAllowed(purpose);
    answers.isDecided[purpose] = sdk_->isDecided(purpose);
  }
  answers.isBannerDue = sdk_->explainBanner().isDue;
  return answers;
}

bool Process::isQuiet() const {
  return !around_.scheduler->hasJobsOf(owner_) && !around_.servers.hasRequestsOf(owner_) &&
         sdk_->settled().wait_for(std::chrono::seconds(0)) == std::future_status::ready;
}

void Process::judgeTold() const {
  if (!isSetUp_ || isClosed_ || around_.isDisturbed || around_.scheduler->hasJobsOf(owner_)) return;
  around_.model.judgeTold(owner_, signals_);
}

void Process::judgeQuiet() {
  std::erase_if(unready_, [](const auto& isUnready) { return !isUnready(); });
  if (!unready_.empty()) fail(7, "a future is not ready");
  if (isClosed_) return;
  for (const auto& call : calls_) {
    if (call->times != 1) fail(7, call->what + " was not answered");
  }
  calls_.clear();
  if (heardStatus_ != sdk_->getStatus()) fail(7, "the status was not reported");
  if (!isSetUp_) return;
  if (heardStatus_ == SDKStatus::fetching) fail(10, "nothing runs, and the set-up has not ended");
  for (const Gate& gate : gates_) {
    if (gate.isOpen != sdk_->isAllowed(gate.purpose)) {
      fail(9, "the gate of purpose " + std::to_string(gate.purpose) + " is " + (gate.isOpen ? "open" : "closed"));
    }
  }
  for (const auto& [purpose, status] : heard_) {
    const std::string present = sdk_->isDecided(purpose) ? words(sdk_->get(purpose)) : "";
    if (status != present) {
      fail(7, "the listener heard '" + status + "' last of purpose " + std::to_string(purpose) + ", which is '" +
                  present + "'");
    }
  }
}

}  // namespace quillon::sim
