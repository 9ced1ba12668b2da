// Loading a configuration: cache, download, apply.
#include <algorithm>
#include <atomic>

#include "core/Banner/BannerSelection.h"
#include "core/ConsentSDK/ConfigurationLoader.h"
#include "core/Logger/UnitLog.h"
#include "core/Persistance/UserDefaults/StoreKeys.h"

namespace quillon {
namespace {

constexpr std::string_view downloadFunction = "getCDNFile()";
constexpr std::int64_t staleSeconds = 3601;

bool isNotModified(const RequestFailure& failure) {
  const auto* error = std::get_if<NetworkError>(&failure);
  return error && error->kind == NetworkError::Case::cdnNotModified;
}

}  // namespace

// A load in flight.
struct ConfigurationLoader::Flight {
  explicit Flight(SessionPointer of) : session(std::move(of)) {}

  const SessionPointer session;
  TaskEvent over;
  Loaded loaded;  // written before `over` is signalled, read afterwards
  std::atomic<bool> isOver = false;
};

// A cached document and how it may be used for a session.
struct ConfigurationLoader::Served {
  ConfigurationPointer configuration;  // null when it may not be used
  bool isAskedFor = false;             // its address is the one the session requests
};

ConfigurationLoader::ConfigurationLoader(Services services)
    : s_(services),
      cache_(services.platform, services.store, services.logger),
      bundled_(services.platform, services.store, services.logger) {}

std::shared_ptr<ConfigurationLoader::Flight> ConfigurationLoader::joinFlight(const SessionPointer& session,
                                                                             bool& isOwn) {
  const std::scoped_lock lock(mutex_);
  if (session->generation > prepared_) return nullptr;
  isOwn = !flight_ || flight_->session->generation != session->generation;
  if (isOwn) flight_ = std::make_shared<Flight>(session);
  return flight_;
}

Task<ConfigurationLoader::Loaded> ConfigurationLoader::load() {
  for (;;) {
    const auto session = s_.sessions.current();
    if (!session) co_return Loaded{};
    bool isOwn = false;
    const auto flight = joinFlight(session, isOwn);
    if (!flight) co_return Loaded{};
    if (isOwn) {
      // Signals also when the task is dropped or fails.
      const std::shared_ptr<void> end(nullptr, [this, flight](void*) {
        {
          const std::scoped_lock lock(mutex_);
          if (flight_ == flight) flight_.reset();
        }
        flight->isOver = true;
        flight->over.signal();
      });
      flight->loaded = co_await run(session, flight);
    } else {
      co_await flight->over.wait();
    }
    if (s_.sessions.isCurrent(*session)) co_return flight->loaded;
  }
}

Task<ConfigurationLoader::Loaded> ConfigurationLoader::run(SessionPointer session, std::shared_ptr<Flight> flight) {
  const Served cached = served(session, cache_.readCDNFile(true));
  ConfigurationPointer configuration = cached.configuration;
  if (!isFresh(cached)) {
    setReady(session, SDKStatus::fetching);
    const auto timer = serveAfter(session, flight, configuration);
    configuration = co_await download(session, std::move(configuration));
  }
  if (!configuration) configuration = bundled_.get();
  Loaded loaded{configuration};
  if (configuration) {
    const std::function<bool()> always = [] { return true; };
    const auto changed = co_await apply(session, configuration, always);
    if (!changed) co_return Loaded{};
    loaded.changed = *changed;
  }
  flight->isOver = true;
  setReady(session, configuration ? SDKStatus::ready : SDKStatus::unavailable);
  co_return loaded;
}

std::unique_ptr<Timer> ConfigurationLoader::serveAfter(const SessionPointer& session,
                                                       const std::shared_ptr<Flight>& flight,
                                                       const ConfigurationPointer& cached) {
  const auto& limit = session->options.readyWithin;
  if (!limit || inForce()) return nullptr;
  return s_.platform.clock->after(*limit, s_.work.whileAlive([this, session, flight, cached] {
    s_.work.start([this, session, flight, cached]() mutable -> Task<void> {
      const ConfigurationPointer stored = newest(session, cached);
      const ConfigurationPointer substitute = stored ? stored : bundled_.get();
      const std::function<bool()> isWanted = [flight] { return !flight->isOver; };
      if (substitute && !co_await apply(session, substitute, isWanted)) co_return;
      if (!flight->isOver) setReady(session, substitute ? SDKStatus::ready : SDKStatus::unavailable);
    });
  }));
}

bool ConfigurationLoader::isFresh(const Served& cached) {
  if (!cached.configuration || !cached.isAskedFor) return false;
  const std::int64_t now = wholeSeconds(s_.platform.clock->now());
  constexpr std::int64_t never = -1;
  const std::int64_t saved = s_.store.getInt64(key::cdnCachedTimestamp, never);
  if (saved == never) {
    // A document of unknown age counts as new once; from then on it ages normally.
    s_.store.set(key::cdnCachedTimestamp, now);
    return true;
  }
  // A timestamp in the future means the clock was set back; the age is unknown.
  return saved != 0 && saved <= now && saved > now - staleSeconds;
}

ConfigurationLoader::Served ConfigurationLoader::served(const SessionPointer& session,
                                                        ConfigurationPointer cached) const {
  if (!cached || !session) return {std::move(cached)};
  const auto entries = s_.store.snapshot();
  const StoredValues stored(*entries);
  const auto address = stored.string(key::cdnAddress);
  if (!address || *address == session->configurationAddress()) return {std::move(cached), true};
  // Otherwise consents for another application's purposes would be uploaded under this one's name.
  if (!stored.isDecidedOnlyBy(session->options.appId)) return {};
  return {std::move(cached)};
}

ConfigurationPointer ConfigurationLoader::newest(const SessionPointer& session, ConfigurationPointer earlier) {
  auto present = cache_.readCDNFile(true);
  return served(session, present ? std::move(present) : std::move(earlier)).configuration;
}

Task<ConfigurationPointer> ConfigurationLoader::download(SessionPointer session, ConfigurationPointer cached) {
  const UnitLog log(s_.logger, unit::cdnUtils);
  for (;;) {
    const auto entries = s_.store.snapshot();
    const StoredValues stored(*entries);
    const auto sentTag = stored.string(key::etag);
    const auto cachedTag = stored.string(key::cdnEtag);
    auto downloaded = co_await s_.server.getCDN(session);
    const auto isWanted = [&] { return s_.sessions.isCurrent(*session); };
    if (!isWanted()) co_return nullptr;
    if (downloaded) {
      cache_.saveCDNToFile(downloaded->value, ConfigurationCache::fileName,
                           {session->configurationAddress(), session->language, std::move(downloaded->etag)}, isWanted);
      co_return served(session, cache_.readCDNFile(false)).configuration;
    }
    if (!isNotModified(downloaded.error())) {
      // Closing during a download is not a failure.
      log(s_.work.isClosed() ? LogLevel::debug : LogLevel::error,
          "Failed to fetch CDN File: " + description(downloaded.error()), downloadFunction);
      co_return newest(session, std::move(cached));
    }
    if (!sentTag || (cached && sentTag == cachedTag)) {
      log(LogLevel::info, "CDN Configuration is up to date", downloadFunction);
      co_return newest(session, std::move(cached));
    }
    // 304 refers to a document that was never saved, or is gone. Request it again without the tag.
    s_.store.remove(key::etag);
  }
}

ConfigurationPointer ConfigurationLoader::current() {
  auto cached = served(s_.sessions.current(), cache_.readCDNFile(true)).configuration;
  return cached ? cached : bundled_.get();
}

void ConfigurationLoader::begin(const SessionPointer& session, bool reset) {
  const auto isWanted = [&] { return s_.sessions.isCurrent(*session); };
  if (isWanted()) bundled_.name(session->options.bundledConfiguration, session->language);
  if (reset) cache_.reset(isWanted);
  const std::scoped_lock lock(mutex_);
  prepared_ = std::max(prepared_, session->generation);
  // Terms of another application must not answer for this one.
  if (!inForce_ || inForce_->session->isOfSameApplication(*session)) return;
  inForce_.reset();
  updateTerms();
}

void ConfigurationLoader::setReady(const SessionPointer& session, SDKStatus status) {
  if (s_.sessions.isCurrent(*session)) s_.events.readiness.setReady(status);
}

}  // namespace quillon
