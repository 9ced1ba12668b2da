#include "quillon/SignalPublisher.h"

#include <limits>
#include <mutex>
#include <optional>
#include <utility>

#include "core/ConsentSDK/ConsentSDKCore.h"
#include "core/ConsentSDK/WithoutThrowing.h"
#include "core/Logger/UnitLog.h"
#include "core/Purposes/PurposeTerms.h"
#include "quillon/Signals.h"

namespace quillon {
namespace {

constexpr std::string_view sourceFile = "Signals/SignalPublisher";

// When the newest of the decisions on purposes was made; the first page of the history has it in all but odd cases, and
// then an earlier time does no harm.
std::chrono::sys_seconds newestDecision(const UserDefaultManager& store) {
  constexpr std::size_t pageSize = 100;
  for (const auto& entry : store.history(std::numeric_limits<std::int64_t>::max(), pageSize).entries) {
    if (entry.decision.purposeId) return std::chrono::sys_seconds(std::chrono::seconds(entry.decision.time));
  }
  return {};
}

}  // namespace

// Shared with what is under way. Thread-safe.
class SignalPublisher::Publication {
 public:
  Publication(const std::shared_ptr<ConsentSDK::Core>& core, SignalOptions options,
              std::shared_ptr<SignalDefaults> defaults)
      : core_(core), signals_(std::move(options)), defaults_(std::move(defaults)) {}

  const Signals& signals() const { return signals_; }

  // Writes the keys, or leaves that to the thread that does so just now.
  void publish() {
    {
      const std::scoped_lock lock(mutex_);
      isDue_ = true;
      if (std::exchange(isPublishing_, true)) return;
    }
    while (takeTurn()) withoutThrowing([&] { write(); });
  }

  std::string pageScript() const {
    const auto core = core_.lock();
    return core ? signals_.pageScript(stateOf(*core)) : std::string();
  }

 private:
  bool takeTurn() {
    const std::scoped_lock lock(mutex_);
    if (!std::exchange(isDue_, false)) isPublishing_ = false;
    return isPublishing_;
  }

  void write() {
    const auto core = core_.lock();
    if (!core) return;
    SignalKeys keys = signals_.keys(stateOf(*core));
    if (written_ == keys) return;
    written_.reset();
    if (withoutThrowing([&] { return defaults_->replace(keys); }, false)) {
      written_ = std::move(keys);
    } else {
      UnitLog(core->logger, sourceFile)(LogLevel::error, "The keys of the trade's libraries could not be written",
                                        "write()");
    }
  }

  // All from one content of the store.
  static SignalState stateOf(ConsentSDK::Core& core) {
    const auto session = core.sessions.current();
    const auto entries = core.store.snapshot();
    const StoredValues stored(*entries);
    const OptOuts optOuts = core.signal.optOuts();
    SignalState state;
    state.isDisclosed = stored.consentGivenType() != GivenType::noAction;
    state.decidedAt = newestDecision(core.store);
    state.language = core.sessions.language();
    if (!session) return state;
    state.place = core.location.known(session);
    if (session->options.privacySignal) state.globalPrivacyControl = optOuts.isSignalOn();
    const auto configuration = core.loader.current();
    if (!configuration || !configuration->purposes) return state;
    const auto inForce = core.loader.inForce();
    for (const Purpose& purpose : *configuration->purposes) {
      if (!purpose.purposeId) continue;
      const std::int64_t id = *purpose.purposeId;
      auto& told = state.purposes.emplace_back();
      told.id = id;
      told.isGranted =
          isPurposeAllowed(id, stored, inForce ? &inForce->terms : nullptr, *core.platform.tracking, optOuts);
      told.isExplicit = stored.isAnswered(id);
      for (const SDK& sdk : purpose.sdks.value_or(std::vector<SDK>())) {
        if (sdk.sdkId) told.sdkIds.push_back(*sdk.sdkId);
      }
    }
    return state;
  }

 public:
  // Of what follows the SDK; dropped with the publisher.
  std::shared_ptr<void> changes;
  std::shared_ptr<void> script;

 private:
  const std::weak_ptr<ConsentSDK::Core> core_;
  const Signals signals_;
  const std::shared_ptr<SignalDefaults> defaults_;
  std::optional<SignalKeys> written_;  // only touched by the thread that publishes; nothing when that is not known
  std::mutex mutex_;                   // guards the members below; never held while anything else is called
  bool isDue_ = false;
  bool isPublishing_ = false;
};

SignalPublisher::SignalPublisher(ConsentSDK& sdk, SignalOptions options, std::shared_ptr<SignalDefaults> defaults)
    : publication_(std::make_shared<Publication>(sdk.core_, std::move(options), std::move(defaults))) {
  withoutThrowing([&] {
    ConsentSDK::Core& core = *sdk.core_;
    for (const std::string& mistake : mistakes()) {
      UnitLog(core.logger, sourceFile)(LogLevel::error, mistake, "init(options:)");
    }
    const std::weak_ptr<Publication> weak = publication_;
    publication_->script = core.pageScripts.add([weak](std::string& script) {
      if (const auto publication = weak.lock()) script += publication->pageScript();
    });
    publication_->changes = core.events.gates.followers.add([weak, work = &core.work] {
      work->start([weak]() -> Task<void> {
        if (const auto publication = weak.lock()) publication->publish();
        co_return;
      });
    });
    publication_->publish();
  });
}

SignalPublisher::~SignalPublisher() {
  publication_->changes.reset();
  publication_->script.reset();
}

const std::vector<std::string>& SignalPublisher::mistakes() const noexcept {
  return publication_->signals().mistakes();
}

}  // namespace quillon
