#include "tests/sim/World.h"

#include <algorithm>
#include <cstdio>
#include <memory>
#include <utility>
#include <vector>

#include "tests/sim/Process.h"
#include "tests/sim/Surroundings.h"

namespace quillon::sim {
namespace {

using namespace std::chrono_literals;

class World {
 public:
  World(const Plan& plan, Trail& trail) : around_(plan, trail), trail_(trail), processes_(plan.processes) {}
  ~World();
  World(const World&) = delete;
  World& operator=(const World&) = delete;

  void make(const Step& step);
  // Removes all faults; afterwards the SDK must reach a consistent final state.
  void heal();

 private:
  Process& process(unsigned index);
  // Ends all processes and starts one.
  void startAnew();
  void apply(const Step& step, ActReport& report);
  void applyToDevice(const Step& step);
  void applyFault(const Step& step);
  void publish(unsigned what, unsigned how);
  void jumpClock(unsigned what);
  void pass(std::chrono::milliseconds time, Choices* choices);
  // Runs jobs; `choices` selects which: all, some or none.
  void run(Choices* choices);
  void runAll(Choices* choices);
  void bury();
  void describe(const Step& step) const;
  void judge(const StoreView& before);
  void forgetEnded();

  Surroundings around_;
  Trail& trail_;
  std::vector<std::unique_ptr<Process>> processes_;
  std::vector<std::unique_ptr<Process>> dead_;
  int lastOwner_ = -1;
  std::vector<int> ended_;  // owners of destroyed processes
  std::optional<int> versionBefore_;
};

World::~World() {
  processes_.clear();
  dead_.clear();
  // Work that waits for a timer or a response is cancelled.
  around_.isDisturbed = true;
  for (int i = 0; i < 3; ++i) {
    runAll(nullptr);
    around_.clock->advance(61s, [this] { runAll(nullptr); });
  }
  around_.scheduler->bury();
}

Process& World::process(unsigned index) {
  auto& place = processes_[index % processes_.size()];
  if (!place) {
    place = std::make_unique<Process>(around_, ++lastOwner_, [this, &place] {
      around_.isDisturbed = true;
      ended_.push_back(place->owner());
      dead_.push_back(std::move(place));
    });
  }
  return *place;
}

void World::bury() {
  dead_.clear();
  around_.scheduler->bury();
}

void World::run(Choices* choices) {
  constexpr std::size_t seldom = 8;
  if (!choices) return runAll(nullptr);
  if (choices->oneIn(seldom)) return;
  if (!choices->oneIn(seldom)) return runAll(choices);
  for (std::size_t left = 1 + choices->below(seldom); left > 0 && around_.scheduler->runOne(choices); --left) bury();
}

void World::runAll(Choices* choices) {
  constexpr int most = 100'000;
  int count = 0;
  while (around_.scheduler->runOne(choices)) {
    if (!dead_.empty()) bury();
    if (++count < most) continue;
    return trail_.fail(8, "the work has no end");
  }
}

void World::pass(std::chrono::milliseconds time, Choices* choices) {
  around_.clock->advance(time, [&] { run(choices); });
}

void World::describe(const Step& step) const {
  if (!trail_.isKept()) return;
  char line[120];
  std::snprintf(line, sizeof line, "%s p%u what=%u how=%u order=%llx", nameOf(step.act), step.process, step.what,
                step.how, static_cast<unsigned long long>(step.order));
  trail_.note(around_.clock->localText(around_.clock->now()) + " " + line);
}

void World::make(const Step& step) {
  describe(step);
  Choices chosen(step.order);
  Choices* const choices = step.order == 0 ? nullptr : &chosen;
  around_.traffic.acted(around_.elapsed());
  const StoreView before = around_.view();
  versionBefore_ = around_.versionOnDisk();
  Process& acting = process(step.process);
  ActReport report{.owner = acting.owner()};
  const unsigned failures = acting.storage().failures();
  apply(step, report);
  // A restart replaces the process; none is there if it has ended again already.
  const bool isAnother = step.act == Act::restart;
  Process* const judged = isAnother ? processes_[step.process % processes_.size()].get() : &acting;
  report.wasDisturbed = !judged || judged->isDead() || judged->storage().failures() != (isAnother ? 0 : failures);
  if (report.wasDisturbed) around_.isDisturbed = true;
  const StoreView after = around_.view();
  around_.model.judgeAct(report, before, after);
  bury();
  around_.remember(after);
  if (step.act == Act::pass) {
    const std::chrono::seconds interval(around_.plan.checkInterval);
    const std::chrono::milliseconds times[] = {500ms, 1s, 5s, 20s, 70s, interval, interval, 3601s, 3601s + interval};
    run(choices);
    pass(times[step.what % std::size(times)], choices);
  }
  run(choices);
  judge(after);
}

void World::forgetEnded() {
  std::erase_if(ended_, [&](int owner) {
    if (around_.scheduler->hasJobsOf(owner) || around_.servers.hasRequestsOf(owner)) return false;
    around_.model.forget(owner);
    return true;
  });
}

void World::judge(const StoreView& before) {
  const StoreView after = around_.view();
  const auto version = around_.versionOnDisk();
  around_.model.diskHolds(version);
  around_.model.judgeJobs(before, after);
  around_.remember(after);
  const std::int64_t now = wholeSeconds(around_.clock->now());
  for (const auto& process : processes_) {
    if (!process) continue;
    process->judgeTold();
    const Answers answers = process->answers();
    if (answers.isQuiet) {
      const bool isAlone = processes_.size() == 1;
      const bool hasLoaded = process->takeLoaded() && version == versionBefore_;
      if (process->isSetUp() && !process->isClosed() && answers.isReady && (isAlone || hasLoaded)) {
        around_.model.settled(process->owner());
      }
      around_.model.quiet(process->owner());
      process->judgeQuiet();
      if (!around_.isDisturbed) around_.model.judgeSignals(process->owner(), after);
    }
    around_.model.judgeAnswers(process->owner(), answers, after, now);
  }
  forgetEnded();
}

void World::apply(const Step& step, ActReport& report) {
  Process& acting = process(step.process);
  switch (step.act) {
    case Act::setUp:
      report.effect = Effect::setUp;
      acting.setUp(step.what, step.how);
      if (step.what / 48 % 6 == 1) acting.setUp(step.what / 7, step.how / 7);
      break;
    case Act::close:
      return acting.close();
    case Act::restart:
      report.effect = Effect::setUp;
      acting.screens().clear();
      ended_.push_back(acting.owner());
      processes_[step.process % processes_.size()].reset();
      process(step.process).setUp(step.what, step.how % 4 == 0 ? step.how : 0);
      break;
    case Act::kill:
      return acting.kill(step.what % 2 == 0);
    case Act::decide:
      return acting.decide(step.what, step.how, report);
    case Act::decideOnPermission:
      report.effect = Effect::decision;
      return acting.decideOnPermission(step.what);
    case Act::answer:
      return acting.answer(step.what, report);
    case Act::removeConsents:
      report.effect = Effect::removal;
      return acting.sdk().removeConsents();
    case Act::askBannerDue:
      return acting.askBannerDue(report);
    case Act::presentBanner:
      return acting.sdk().presentBanner();
    case Act::tapBanner:
      return acting.screens().tapBanner(step.what, report);
    case Act::presentPreferences:
      return acting.sdk().presentPreferenceCenter();
    case Act::tapPreferences:
      return acting.screens().tapPreferences(step.what, report);
    case Act::check:
      return acting.checkConsents(step.what);
    case Act::upload:
      return acting.uploadPending(step.what);
    case Act::ask:
      return acting.ask(step.what);
    case Act::gate:
      return acting.watchGate(step.what);
    case Act::hold:
      return acting.hold(step.what);
    case Act::failRequest:
    case Act::failStore:
    case Act::failFile:
      return applyFault(step);
    case Act::tamper:
      return around_.tamper();
    default:
      return applyToDevice(step);
  }
}

void World::applyToDevice(const Step& step) {
  switch (step.act) {
    case Act::jumpClock:
      return jumpClock(step.what);
    case Act::network: {
      const bool isOn = step.what % 2 == 0;
      around_.servers.setReachable(isOn);
      around_.network->set(isOn ? NetworkStatus::satisfied : NetworkStatus::unsatisfied);
      if (!isOn) around_.isDisturbed = true;
      break;
    }
    case Act::tracking:
      *around_.isTrackingAuthorized = step.what % 2 == 0;
      around_.model.trackingIs(*around_.isTrackingAuthorized);
      around_.permissions->set(VantariKey::userTrackingUsageDescription, *around_.isTrackingAuthorized ? 3 : 2);
      break;
    case Act::permission:
      return around_.permissions->set(VantariKey::cameraUsageDescription, static_cast<int>(step.what % 4));
    case Act::language:
      around_.language = step.what % 2 == 0 ? "en" : "de-AT";
      break;
    case Act::publish:
      return publish(step.what, step.how);
    case Act::signal:
      around_.model.signalIs(step.what % 2 == 0);
      return around_.signals->set(step.what % 2 == 0);
    default:
      break;
  }
}

void World::applyFault(const Step& step) {
  around_.isDisturbed = true;
  Process& acting = process(step.process);
  const StorageFault fault{
      .changesBefore = step.what % 4, .endsProcess = step.how % 2 == 0, .takesEffect = step.how % 4 == 0};
  if (step.act == Act::failStore) {
    acting.storage().failStore(fault);
  } else if (step.act == Act::failFile) {
    acting.storage().failFiles(fault);
  } else {
    around_.servers.fail(static_cast<Server>(step.what % serverCount),
                         static_cast<RequestFault>(step.how % requestFaultCount));
  }
}

void World::publish(unsigned what, unsigned how) {
  if (how % 12 == 0) {
    return around_.servers.setPlace(what % 2 == 0 ? std::optional<std::string>(lawfulPlace) : std::nullopt);
  }
  const Document& document = around_.documents[what % (around_.documents.size() - 1)];
  if (how % 12 < 6) return around_.publishEverywhere(document);
  const char* folder = how % 12 == 11 ? "b/live/" : how % 12 == 10 ? "a/draft/" : "a/live/";
  const char* file = !around_.plan.hasLanguageFiles ? "config.json"
                     : what / 8 % 2 == 0            ? "config_en.json"
                                                    : "config_de.json";
  const bool isGone = how / 12 % 6 == 0;
  if (isGone) around_.isDisturbed = true;
  around_.servers.publish(std::string(folder) + file, isGone ? nullptr : &document);
}

void World::jumpClock(unsigned what) {
  using std::chrono::days;
  constexpr std::chrono::hours jumps[] = {1h, -1h, days(1), days(-1), days(32), days(32), days(400), days(-400)};
  if (what % 16 == 0) {
    // Half an hour before the change to daylight-saving time in Europe.
    constexpr WallTime summer{std::chrono::seconds(1'743'294'600)};
    around_.jump(summer - around_.clock->now());
  } else {
    around_.jump(jumps[what % std::size(jumps)]);
  }
}

void World::heal() {
  trail_.note("everything heals");
  around_.servers.heal();
  around_.servers.setReachable(true);
  around_.network->set(NetworkStatus::satisfied);
  around_.publishEverywhere(around_.documents.back());
  versionBefore_ = around_.versionOnDisk();
  const StoreView before = around_.view();
  const auto isRunning = [](const auto& process) { return process && process->isSetUp() && !process->isClosed(); };
  for (const auto& process : processes_) {
    if (process) process->storage().heal();
  }
  if (std::ranges::none_of(processes_, isRunning)) startAnew();
  const std::chrono::seconds interval(around_.plan.checkInterval);
  Choices choices(around_.plan.seed);
  const auto wait = [&](std::chrono::seconds time) {
    runAll(&choices);
    around_.clock->advance(time, [&] { runAll(&choices); });
  };
  wait(70s);
  wait(3601s + interval);
  // Without an answer, a change of the network or a restart.
  for (const auto& process : processes_) {
    if (isRunning(process) && !process->isReady()) trail_.fail(10, "a failed first download is not retried");
  }
  // Before the next start, nothing is uploaded for a user who has not answered, and refused uploads are not retried.
  const StoreView present = around_.view();
  if (present.given == "CONSENT_NO_ACTION" || present.isRefused || present.isAnyPermissionPending) startAnew();
  around_.isDisturbed = false;
  wait(2 * interval);
  judge(before);
  around_.model.judgeEnd(around_.documents.back(), around_.view());
}

void World::startAnew() {
  for (const auto& process : processes_) {
    if (process) ended_.push_back(process->owner());
  }
  for (auto& process : processes_) {
    if (process) process->screens().clear();
    process.reset();
  }
  process(0).setUp(0, 0);
}

}  // namespace

Outcome live(const Plan& plan, Keep keep) {
  Trail trail(keep == Keep::trail);
  Outcome outcome;
  {
    World world(plan, trail);
    for (const Step& step : plan.steps) {
      world.make(step);
      ++outcome.steps;
      if (trail.failure()) break;
    }
    if (!trail.failure()) world.heal();
  }
  outcome.failure = trail.failure();
  outcome.trail = trail.text();
  return outcome;
}

}  // namespace quillon::sim
