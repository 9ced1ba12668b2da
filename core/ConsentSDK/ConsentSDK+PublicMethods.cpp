// The operations that hosts call once set-up has run.
#include "core/ConsentSDK/ConsentSDKCore.h"
#include "core/Persistance/UserDefaults/StoreKeys.h"

namespace quillon {
namespace {

// The promise behind a future of the public interface: kept with an empty result when the work behind it is dropped.
template <class T>
class Promise {
 public:
  std::future<T> future() { return promise_.get_future(); }

  void keep(T value) {
    promise_.set_value(std::move(value));
    kept_ = true;
  }

  ~Promise() {
    if (!kept_) promise_.set_value(T());
  }

 private:
  std::promise<T> promise_;
  bool kept_ = false;
};

template <>
class Promise<void> {
 public:
  std::future<void> future() { return promise_.get_future(); }
  ~Promise() { promise_.set_value(); }

 private:
  std::promise<void> promise_;
};

template <class T>
struct Asynchronous {
  // Starts the work, a function that returns a Task<T>, and answers on the main queue.
  template <class Core, class Work>
  static void callback(const std::shared_ptr<Core>& core, std::function<void(T)> answer, Work work) {
    core->tasks->start([core, answer = std::move(answer), work = std::move(work)]() mutable -> Task<void> {
      T value = co_await work();
      if (answer) core->onMain([answer = std::move(answer), value = std::move(value)]() mutable { answer(std::move(value)); });
    });
  }

  template <class Core, class Work>
  static std::future<T> future(const std::shared_ptr<Core>& core, Work work) {
    auto promise = std::make_shared<Promise<T>>();
    auto future = promise->future();
    core->tasks->start([core, promise = std::move(promise), work = std::move(work)]() mutable -> Task<void> {
      promise->keep(co_await work());
    });
    return future;
  }
};

template <>
struct Asynchronous<void> {
  template <class Core, class Work>
  static void callback(const std::shared_ptr<Core>& core, std::function<void()> done, Work work) {
    core->tasks->start([core, done = std::move(done), work = std::move(work)]() mutable -> Task<void> {
      co_await work();
      if (done) core->onMain([done = std::move(done)] { done(); });
    });
  }

  template <class Core, class Work>
  static std::future<void> future(const std::shared_ptr<Core>& core, Work work) {
    auto promise = std::make_shared<Promise<void>>();
    auto future = promise->future();
    core->tasks->start([core, promise = std::move(promise), work = std::move(work)]() mutable -> Task<void> {
      co_await work();
    });
    return future;
  }
};

}  // namespace

ConsentStatus ConsentSDK::get(std::int64_t purposeId) const {
  const auto entries = core_->store.snapshot();
  const StoredValues stored(*entries);
  const auto decision = stored.consent(PurposeKey(purposeId));
  return decision ? *decision : stored.complianceDefault();
}

ConsentStatus ConsentSDK::get(const VantariKey& vantariKey) const {
  const PermissionManager permissions = core_->permissions(core_->cache.readCDNFile(true));
  if (permissions.lists(vantariKey)) return permissions.getConsentByPermission(vantariKey);
  return core_->store.getConsent(vantariKey.rawValue()).value_or(ConsentStatus::notDetermined);
}

bool ConsentSDK::set(const Purpose& purpose, ConsentStatus consent) {
  if (!purpose.purposeId) return false;
  const bool stored = core_->store.transact([&](StoreTransaction& transaction) {
    PurposeManager::setConsent(transaction, *purpose.purposeId, consent, givenType::explicitly, core_->now());
  });
  if (stored) core_->scheduleUpload();
  return stored;
}

bool ConsentSDK::set(const AppPermission& permission, ConsentStatus consent) {
  if (!permission.permissionId) return false;
  return core_->store.transact([&](StoreTransaction& transaction) {
    PermissionManager::setConsent(transaction, *permission.permissionId, consent, givenType::explicitly, core_->now());
  });
}

namespace {

// The bodies of the operations that come both with a callback and as a future.
template <class Core>
auto purposeConsents(std::shared_ptr<Core> core) {
  return [core]() -> Task<std::vector<Purpose>> {
    const auto configuration = core->cache.readCDNFile(true);
    co_return configuration ? core->purposes(configuration).purposesWithConsents() : std::vector<Purpose>();
  };
}

template <class Core>
auto permissionConsents(std::shared_ptr<Core> core) {
  return [core]() -> Task<std::vector<AppPermission>> {
    co_return core->permissions(core->cache.readCDNFile(true)).permissionsWithConsents();
  };
}

template <class Core>
auto bannerConfig(std::shared_ptr<Core> core, std::optional<MainConfiguration> given) {
  return [core, given = std::move(given)]() mutable -> Task<std::optional<BannerConfig>> {
    ConfigurationPointer configuration =
        given ? std::make_shared<const MainConfiguration>(std::move(*given)) : core->cache.readCDNFile(true);
    co_return co_await core->bannerFor(std::move(configuration));
  };
}

template <class Core>
auto upload(std::shared_ptr<Core> core, std::string url, PostConsentsRequest request) {
  return [core, url = std::move(url), request = std::move(request)]() mutable -> Task<void> {
    const auto turn = co_await core->uploads.enter();
    co_await core->uploadConsents(std::move(url), std::move(request), core->store.snapshot());
  };
}

}  // namespace

void ConsentSDK::getPurposeConsents(std::function<void(std::vector<Purpose>)> callback) {
  Asynchronous<std::vector<Purpose>>::callback(core_, std::move(callback), purposeConsents(core_));
}

std::future<std::vector<Purpose>> ConsentSDK::getPurposeConsents() {
  return Asynchronous<std::vector<Purpose>>::future(core_, purposeConsents(core_));
}

void ConsentSDK::getPermissionConsents(std::function<void(std::vector<AppPermission>)> callback) {
  Asynchronous<std::vector<AppPermission>>::callback(core_, std::move(callback), permissionConsents(core_));
}

std::future<std::vector<AppPermission>> ConsentSDK::getPermissionConsents() {
  return Asynchronous<std::vector<AppPermission>>::future(core_, permissionConsents(core_));
}

void ConsentSDK::removeConsents() { core_->store.removeAllConsents(); }

void ConsentSDK::getBannerConfig(std::optional<MainConfiguration> configuration,
                                 std::function<void(std::optional<BannerConfig>)> callback) {
  Asynchronous<std::optional<BannerConfig>>::callback(core_, std::move(callback),
                                                      bannerConfig(core_, std::move(configuration)));
}

std::future<std::optional<BannerConfig>> ConsentSDK::getBannerConfig(std::optional<MainConfiguration> configuration) {
  return Asynchronous<std::optional<BannerConfig>>::future(core_, bannerConfig(core_, std::move(configuration)));
}

bool ConsentSDK::isBannerDue() { return core_->isBannerDue(); }

void ConsentSDK::acceptOrReject(bool accept, std::function<void(bool)> callback) {
  Asynchronous<bool>::callback(core_, std::move(callback), [core = core_, accept] { return core->acceptOrReject(accept); });
}

std::future<bool> ConsentSDK::acceptOrReject(bool accept) {
  return Asynchronous<bool>::future(core_, [core = core_, accept] { return core->acceptOrReject(accept); });
}

void ConsentSDK::uploadConsents(std::string url, PostConsentsRequest request, std::function<void()> done) {
  Asynchronous<void>::callback(core_, std::move(done), upload(core_, std::move(url), std::move(request)));
}

std::future<void> ConsentSDK::uploadConsents(std::string url, PostConsentsRequest request) {
  return Asynchronous<void>::future(core_, upload(core_, std::move(url), std::move(request)));
}

void ConsentSDK::uploadPendingConsents(std::function<void(bool)> callback) {
  Asynchronous<bool>::callback(core_, std::move(callback), [core = core_] { return core->uploadPendingConsents(); });
}

std::future<bool> ConsentSDK::uploadPendingConsents() {
  return Asynchronous<bool>::future(core_, [core = core_] { return core->uploadPendingConsents(); });
}

void ConsentSDK::checkConsents(std::function<void()> done) {
  Asynchronous<void>::callback(core_, std::move(done), [core = core_] { return core->consentCheck(); });
}

std::future<void> ConsentSDK::checkConsents() {
  return Asynchronous<void>::future(core_, [core = core_] { return core->consentCheck(); });
}

std::future<void> ConsentSDK::settled() { return core_->tasks->settled(); }

}  // namespace quillon
