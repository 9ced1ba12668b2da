#include "core/ConsentSDK/LocationLookup.h"

#include "core/Banner/BannerSelection.h"
#include "core/Persistance/UserDefaults/StoreKeys.h"
#include "core/Text/LocalizedTexts.h"

namespace quillon {
namespace {

constexpr std::chrono::seconds lifetime{3600};
// How long to wait for the location before choosing the banner without it.
constexpr std::chrono::seconds waitLimit{5};
// A shorter wait for ten minutes after a failure: not every start should wait for a broken server.
constexpr std::chrono::seconds failureLifetime{600};
constexpr std::chrono::seconds waitLimitAfterFailure{1};

}  // namespace

std::optional<std::string> LocationLookup::known(const SessionPointer& session) const {
  if (session && session->options.locationCode) return session->options.locationCode;
  return StoredValues(*store_.snapshot()).string(key::currentLocation);
}

Task<std::optional<std::string>> LocationLookup::locationFor(SessionPointer session,
                                                             std::shared_ptr<const MainConfiguration> configuration) {
  if (session && session->options.locationCode) co_return session->options.locationCode;
  if (!dependsOnLocation(*configuration)) co_return std::nullopt;
  if (session && !isWithin(key::currentLocationTimestamp, lifetime)) {
    const bool hasFailedRecently = isWithin(key::locationFailedTimestamp, failureLifetime);
    const auto over = request(session->language);
    co_await over->waitFor(hasFailedRecently ? waitLimitAfterFailure : waitLimit, *platform_.clock);
    if (!hasFailedRecently && !isWithin(key::currentLocationTimestamp, lifetime)) {
      store_.set(key::locationFailedTimestamp, platform_.clock->now());
    }
  }
  co_return known(session);  // an old location is better than none
}

bool LocationLookup::isWithin(std::string_view timestamp, std::chrono::seconds limit) const {
  const auto when = StoredValues(*store_.snapshot()).date(timestamp);
  const auto now = platform_.clock->now();
  return when && *when <= now && now - *when < limit;
}

std::shared_ptr<TaskEvent> LocationLookup::request(const std::string& language) {
  std::shared_ptr<TaskEvent> over;
  {
    const std::scoped_lock lock(mutex_);
    if (inFlight_) return inFlight_;
    over = inFlight_ = std::make_shared<TaskEvent>();
  }
  // Signals also when the task fails or never starts.
  std::shared_ptr<void> end(nullptr, [this, over](void*) {
    {
      const std::scoped_lock lock(mutex_);
      inFlight_.reset();
    }
    over->signal();
  });
  work_.start([this, over, end = std::move(end), language]() mutable -> Task<void> {
    co_await ask(language);
    end.reset();
    if (over->hasTimedOut()) lateAnswer_();
  });
  return over;
}

Task<void> LocationLookup::ask(std::string language) {
  const auto answer = co_await server_.getCurrentLocation();
  if (!answer || !answer->data) co_return;
  const std::string country = textIn(language, answer->data->countryISOCode);
  const std::string state = textIn(language, answer->data->stateISOCode);
  if (country.empty()) co_return;  // keep the known location
  store_.transact([&](StoreTransaction& transaction) {
    transaction.set(key::currentCountryCode, country);
    transaction.set(key::currentLocation, state.empty() ? country : country + "#" + state);
    transaction.set(key::currentLocationTimestamp, platform_.clock->now());
    transaction.remove(key::locationFailedTimestamp);
  });
}

}  // namespace quillon
