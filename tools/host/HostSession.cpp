#include "tools/host/HostSession.h"

#include <boost/json/parse.hpp>
#include <boost/json/serialize.hpp>
#include <boost/json/value_from.hpp>
#include <cctype>
#include <istream>
#include <ostream>
#include <string_view>

#include "core/Json/Codec.h"
#include "core/Persistance/UserDefaults/StoreKeys.h"
#include "tools/HistoryJson.h"
#include "tools/SuiteJson.h"
#include "tools/host/Arguments.h"

namespace quillon::tools {
namespace {

namespace json = boost::json;

constexpr std::size_t maximumLineBytes = std::size_t{1} << 20;
constexpr double defaultTimeoutSeconds = 10;

json::object done() {
  return {{"ok", true}};
}

json::object failed(std::string_view error) {
  return {{"ok", false}, {"error", error}};
}

template <class Enumeration>
Enumeration named(const std::string& text, std::string_view name) {
  if (const auto value = fromRawValue<Enumeration>(text)) return *value;
  throw RequestError("\"" + std::string(name) + "\" is not one of the known values: " + text);
}

std::string_view name(SDKStatus status) {
  switch (status) {
    case SDKStatus::ready:
      return "ready";
    case SDKStatus::unavailable:
      return "unavailable";
    case SDKStatus::fetching:
      return "fetching";
  }
  return {};
}

template <class Record>
json::value document(const Record& record) {
  return json::parse(encode(record));
}

template <class Record>
json::value documentOrNull(const std::optional<Record>& record) {
  return record ? document(*record) : json::value(nullptr);
}

}  // namespace

struct HostSession::Entry {
  std::string_view op;
  Operation operation;
};

const HostSession::Entry HostSession::entries[] = {
    {"setup", &HostSession::setup},
    {"waitReady", &HostSession::waitReady},
    {"status", &HostSession::status},
    {"bannerDue", &HostSession::bannerDue},
    {"accept", &HostSession::accept},
    {"reject", &HostSession::reject},
    {"get", &HostSession::get},
    {"isAllowed", &HostSession::isAllowed},
    {"whileAllowed", &HostSession::whileAllowed},
    {"gates", &HostSession::gates},
    {"set", &HostSession::set},
    {"purposes", &HostSession::purposes},
    {"permissions", &HostSession::permissions},
    {"checkConsent", &HostSession::checkConsent},
    {"bannerConfig", &HostSession::bannerConfig},
    {"settingsPrompt", &HostSession::settingsPrompt},
    {"gcmConfig", &HostSession::gcmConfig},
    {"gcmConsents", &HostSession::gcmConsents},
    {"sink", &HostSession::sink},
    {"upload", &HostSession::upload},
    {"check", &HostSession::check},
    {"advance", &HostSession::advance},
    {"network", &HostSession::network},
    {"permission", &HostSession::permission},
    {"settle", &HostSession::settle},
    {"store", &HostSession::store},
    {"removeConsents", &HostSession::removeConsents},
    {"version", &HostSession::version},
    {"banner", &HostSession::banner},
    {"recordDefaults", &HostSession::recordDefaults},
    {"preferences", &HostSession::preferences},
    {"prompt", &HostSession::prompt},
    {"openLink", &HostSession::openLink},
    {"history", &HostSession::history},
    {"explain", &HostSession::explain},
    {"listen", &HostSession::listen},
    {"consentScript", &HostSession::consentScript},
    {"quit", &HostSession::quit},
};

void HostSession::run(std::istream& input, std::ostream& output) {
  std::string line;
  while (!quitting_ && std::getline(input, line)) {
    if (line.find_first_not_of(" \t\r") == std::string::npos) continue;
    output << json::serialize(answer(line)) << std::endl;
  }
}

json::object HostSession::answer(const std::string& line) {
  if (line.size() > maximumLineBytes) return failed("the line is too long");
  try {
    boost::system::error_code error;
    const json::value parsed = json::parse(line, error);
    if (error) return failed("not JSON: " + error.message());
    const auto* request = parsed.if_object();
    if (!request) return failed("not a JSON object");
    const auto op = argument<std::string>(*request, "op");
    for (const Entry& entry : entries) {
      if (entry.op == op) return (this->*entry.operation)(*request);
    }
    return failed("unknown op: " + op);
  } catch (const RequestError& error) {
    return failed(error.what());
  }
}

json::object HostSession::setup(const Object& request) {
  ConsentSDKOptions options;
  options.appUrl = argument<std::string>(request, "appUrl");
  options.cdnUrl = argument<std::string>(request, "cdnUrl");
  options.tenantId = argument<std::string>(request, "tenantId");
  options.appId = argument<std::string>(request, "appId");
  options.testingMode = optionalArgument<bool>(request, "testingMode").value_or(false);
  if (auto level = optionalArgument<std::string>(request, "logLevel")) {
    for (char& c : *level) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    options.logLevel = named<LogLevel>(*level, "logLevel");
  }
  if (const auto interval = optionalArgument<std::int64_t>(request, "consentsCheckInterval")) {
    options.consentsCheckInterval = *interval;
  }
  options.subjectId = optionalArgument<std::string>(request, "subjectId");
  if (auto language = optionalArgument<std::string>(request, "languageCode"))
    options.languageCode = std::move(*language);
  options.locationCode = optionalArgument<std::string>(request, "locationCode");
  if (const auto webView = optionalArgument<Object>(request, "webviewConfig")) {
    options.webviewConfig = WebViewConfig{
        optionalArgument<std::vector<std::string>>(*webView, "allowedDomains").value_or(std::vector<std::string>()),
        optionalArgument<std::string>(*webView, "blockedPageHTML")};
  }
  options.bundledConfiguration = optionalArgument<std::string>(request, "bundledConfiguration");
  sdk_.setup(std::move(options));
  return done();
}

json::object HostSession::waitReady(const Object& request) {
  const auto timeout = optionalArgument<double>(request, "timeout").value_or(defaultTimeoutSeconds);
  if (!(timeout >= 0 && timeout <= 3600)) throw RequestError("\"timeout\" is not between 0 and 3600 seconds");
  if (sdk_.settled().wait_for(std::chrono::duration<double>(timeout)) == std::future_status::timeout) {
    return failed("still loading");
  }
  return status(request);
}

json::object HostSession::status(const Object&) {
  const SDKStatus value = sdk_.getStatus();
  Object reply = done();
  reply["status"] = name(value);
  reply["rawValue"] = static_cast<int>(value);
  reply["message"] = quillon::status(value);
  return reply;
}

json::object HostSession::bannerDue(const Object&) {
  return {{"ok", true}, {"due", sdk_.isBannerDue()}};
}

json::object HostSession::accept(const Object&) {
  return {{"ok", true}, {"stored", sdk_.acceptOrReject(true).get()}};
}

json::object HostSession::reject(const Object&) {
  return {{"ok", true}, {"stored", sdk_.acceptOrReject(false).get()}};
}

json::object HostSession::get(const Object& request) {
  const auto permission = optionalArgument<std::string>(request, "permission");
  const ConsentStatus consent =
      permission ? sdk_.get(VantariKey(*permission)) : sdk_.get(argument<std::int64_t>(request, "purposeId"));
  return {{"ok", true}, {"consent", rawValue(consent)}};
}

json::object HostSession::isAllowed(const Object& request) {
  const auto permission = optionalArgument<std::string>(request, "permission");
  const bool allowed = permission ? sdk_.isAllowed(VantariKey(*permission))
                                  : sdk_.isAllowed(argument<std::int64_t>(request, "purposeId"));
  return {{"ok", true}, {"allowed", allowed}};
}

json::object HostSession::whileAllowed(const Object& request) {
  gates_.note(sdk_, argument<std::int64_t>(request, "purposeId"));
  return done();
}

json::object HostSession::gates(const Object&) {
  onMain([](HostScreens&) {});
  return {{"ok", true}, {"gates", gates_.take()}};
}

json::object HostSession::set(const Object& request) {
  const auto consent = named<ConsentStatus>(argument<std::string>(request, "consent"), "consent");
  bool stored = false;
  if (const auto permission = optionalArgument<std::string>(request, "permission")) {
    AppPermission record;
    record.permissionId = VantariKey(*permission);
    stored = sdk_.set(record, consent);
  } else {
    Purpose record;
    record.purposeId = argument<std::int64_t>(request, "purposeId");
    stored = sdk_.set(record, consent);
  }
  return {{"ok", true}, {"stored", stored}};
}

json::object HostSession::purposes(const Object&) {
  json::array list;
  for (const Purpose& purpose : sdk_.getPurposeConsents().get()) {
    json::object entry = document(purpose).as_object();
    entry["isATTMapped"] = purpose.isATTMapped.value_or(false);
    list.push_back(std::move(entry));
  }
  return {{"ok", true}, {"purposes", std::move(list)}};
}

json::object HostSession::permissions(const Object&) {
  json::array list;
  for (const AppPermission& permission : sdk_.getPermissionConsents().get()) {
    json::object entry = document(permission).as_object();
    entry["isSettingsPromptEnabled"] = permission.isSettingsPromptEnabled.value_or(false);
    list.push_back(std::move(entry));
  }
  return {{"ok", true}, {"permissions", std::move(list)}};
}

json::object HostSession::checkConsent(const Object& request) {
  const VantariKey permission(argument<std::string>(request, "permission"));
  return {{"ok", true}, {"consent", rawValue(sdk_.checkConsentBy(permission).get())}};
}

json::object HostSession::bannerConfig(const Object&) {
  return {{"ok", true}, {"bannerConfig", documentOrNull(sdk_.getBannerConfig().get())}};
}

json::object HostSession::settingsPrompt(const Object&) {
  return {{"ok", true}, {"settingsPrompt", documentOrNull(sdk_.getSettingsPrompt().get())}};
}

json::object HostSession::gcmConfig(const Object&) {
  return {{"ok", true}, {"gcmConfig", documentOrNull(sdk_.getGCMConfig().get())}};
}

json::object HostSession::gcmConsents(const Object&) {
  json::object signals;
  for (const auto& [type, consent] : sdk_.getGCMConsents().get()) signals.emplace(rawValue(type), rawValue(consent));
  return {{"ok", true}, {"gcmConsents", std::move(signals)}};
}

json::object HostSession::sink(const Object&) {
  return {{"ok", true}, {"sink", json::value_from(device_.sentSignals().all())}};
}

json::object HostSession::upload(const Object&) {
  return {{"ok", true}, {"uploaded", sdk_.uploadPendingConsents().get()}};
}

json::object HostSession::check(const Object&) {
  sdk_.checkConsents().get();
  return done();
}

json::object HostSession::advance(const Object& request) {
  VirtualClock* clock = device_.clock();
  if (!clock) throw RequestError("the clock is the real one; start the host with --clock");
  const auto seconds = argument<double>(request, "seconds");
  if (!(seconds >= 0 && seconds <= 1e10)) throw RequestError("\"seconds\" is out of range");
  sdk_.settled().wait();
  clock->advance(std::chrono::milliseconds(static_cast<std::int64_t>(seconds * 1000)),
                 [this] { sdk_.settled().wait(); });
  return {{"ok", true}, {"now", wholeSeconds(clock->now())}};
}

json::object HostSession::network(const Object& request) {
  const auto status = argument<std::string>(request, "status");
  if (status != "satisfied" && status != "unsatisfied")
    throw RequestError("\"status\" is neither satisfied nor unsatisfied");
  device_.network().set(status == "satisfied" ? NetworkStatus::satisfied : NetworkStatus::unsatisfied);
  return {{"ok", true}, {"status", status}};
}

json::object HostSession::permission(const Object& request) {
  const auto& value = request.contains("value") ? request.at("value") : json::value();
  const std::string text = value.is_string() ? std::string(value.as_string()) : json::serialize(value);
  if (!device_.setPermission(argument<std::string>(request, "key"), text)) {
    throw RequestError("\"value\" is not what such a source answers");
  }
  return done();
}

json::object HostSession::settle(const Object&) {
  sdk_.settled().wait();
  return done();
}

json::object HostSession::store(const Object&) {
  const Platform& platform = device_.platform();
  const auto suite = platform.store->open(
      key::suiteName, [console = platform.console](auto, const std::string& damage) { console->write(damage); });
  if (!suite) return failed(suite.error());
  return {{"ok", true}, {"store", toJson(*suite.value()->snapshot())}};
}

json::object HostSession::removeConsents(const Object&) {
  sdk_.removeConsents();
  return done();
}

json::object HostSession::version(const Object&) {
  const auto version = sdk_.sdkVersion();
  return {{"ok", true}, {"sdkVersion", version ? json::value(*version) : json::value(nullptr)}};
}

void HostSession::onMain(const std::function<void(HostScreens&)>& function) {
  const auto main = device_.platform().executors->main();
  const auto runAndWait = [&main](const std::function<void()>& job) {
    std::promise<void> done;
    main->post([&] {
      job();
      done.set_value();
    });
    done.get_future().wait();
  };
  runAndWait([&] { function(device_.screens()); });
  // The main queue may start tasks, and tasks may post to it; so it must be idle twice in a row.
  for (int idle = 0; idle < 2;) {
    const auto settled = sdk_.settled();
    idle = settled.wait_for(std::chrono::seconds(0)) == std::future_status::ready ? idle + 1 : 0;
    settled.wait();
    runAndWait([] {});
  }
}

json::object HostSession::banner(const Object& request) {
  const auto ifDue = optionalArgument<bool>(request, "ifDue").value_or(false);
  const auto action = optionalArgument<std::string>(request, "perform");
  bool wasShown = false;
  onMain([&](HostScreens& screens) {
    wasShown = screens.banner != nullptr;
    if (wasShown) return;
    if (ifDue) {
      sdk_.presentBanner();
    } else {
      screens.presentBanner(sdk_.screens());
    }
  });
  Object reply = done();
  onMain([&](HostScreens& screens) {
    if (!screens.banner) return;
    if (!wasShown) screens.banner->appeared();
    reply["banner"] = description(*screens.banner);
  });
  if (!action) return reply;
  const auto chosen = bannerAction(*action);
  if (!chosen) throw RequestError("\"perform\" names no control of a banner");
  onMain([&](HostScreens& screens) {
    if (screens.banner) screens.banner->perform(*chosen);
  });
  onMain([&](HostScreens& screens) { reply["isShown"] = screens.banner != nullptr; });
  return reply;
}

json::object HostSession::recordDefaults(const Object&) {
  onMain([&](HostScreens& screens) {
    if (!screens.banner) screens.presentBanner(sdk_.screens());
    screens.banner->recordDefaultExplicitConsents();
  });
  return done();
}

json::object HostSession::preferences(const Object& request) {
  const auto toggled = optionalArgument<std::int64_t>(request, "toggle");
  const auto all = optionalArgument<bool>(request, "setAll");
  const bool saves = optionalArgument<bool>(request, "save").value_or(false);
  const bool closes = optionalArgument<bool>(request, "close").value_or(false);
  onMain([&](HostScreens& screens) {
    if (!screens.preferenceCenter) sdk_.presentPreferenceCenter();
  });
  Object reply = done();
  onMain([&](HostScreens& screens) {
    auto& model = *screens.preferenceCenter;
    if (all) model.setAll(*all);
    if (toggled) model.tapToggle(*toggled);
    reply["preferences"] = description(model);
    if (saves) model.save();
    if (closes) model.close();
  });
  onMain([&](HostScreens& screens) { reply["isShown"] = screens.preferenceCenter != nullptr; });
  return reply;
}

json::object HostSession::prompt(const Object& request) {
  const auto permission = argument<std::string>(request, "permission");
  const auto choice = optionalArgument<std::string>(request, "choose");
  if (choice && *choice != "settings" && *choice != "notNow" && *choice != "close") {
    throw RequestError("\"choose\" is none of settings, notNow and close");
  }
  sdk_.presentSettingPrompt(VantariKey(permission));
  Object reply = done();
  onMain([](HostScreens&) {});
  onMain([&](HostScreens& screens) {
    reply["prompt"] = screens.settingsPrompt ? json::value(description(*screens.settingsPrompt)) : json::value();
    if (!choice || !screens.settingsPrompt) return;
    if (*choice == "settings") screens.settingsPrompt->openSettings();
    if (*choice == "notNow") screens.settingsPrompt->notNow();
    if (*choice == "close") screens.settingsPrompt->close();
  });
  onMain([&](HostScreens& screens) {
    reply["isShown"] = screens.settingsPrompt != nullptr;
    reply["systemSettingsOpened"] = screens.systemSettingsOpened;
  });
  return reply;
}

json::object HostSession::openLink(const Object& request) {
  sdk_.openLink(argument<std::string>(request, "link"));
  Object reply = done();
  onMain([](HostScreens&) {});
  onMain([&](HostScreens& screens) {
    const BrowserContent& content = *screens.browserContent;
    reply["loaded"] = content.isBlockedPage ? json::value() : json::value(content.address);
    reply["isBlockedPageShowing"] = content.isBlockedPage;
    screens.webView.reset();
  });
  return reply;
}

json::object HostSession::history(const Object& request) {
  const auto count = optionalArgument<std::int64_t>(request, "count").value_or(100);
  if (count < 1) throw RequestError("\"count\" is not positive");
  const HistoryPage page =
      sdk_.getHistory(static_cast<std::size_t>(count), optionalArgument<std::int64_t>(request, "before")).get();
  json::array decisions;
  for (const HistoryEntry& entry : page.entries) decisions.push_back(toJson(entry));
  return {{"ok", true},
          {"history", std::move(decisions)},
          {"damaged", page.damaged},
          {"before", page.before ? json::value(*page.before) : json::value()}};
}

json::object HostSession::explain(const Object& request) {
  const auto timeOrNull = [](const std::optional<std::int64_t>& time) {
    return time ? json::value(*time) : json::value();
  };
  if (const auto purposeId = optionalArgument<std::int64_t>(request, "purposeId")) {
    const ConsentExplanation consent = sdk_.explain(*purposeId).get();
    return {{"ok", true},
            {"consent", rawValue(consent.status)},
            {"cause", consent.cause ? json::value(rawValue(*consent.cause)) : json::value()},
            {"time", timeOrNull(consent.time)},
            {"text", consent.text}};
  }
  const BannerExplanation banner = sdk_.explainBanner();
  return {{"ok", true},
          {"due", banner.isDue},
          {"reason", rawValue(banner.reason)},
          {"expires", timeOrNull(banner.expires)},
          {"version", timeOrNull(banner.version)},
          {"text", banner.text}};
}

json::object HostSession::listen(const Object&) {
  events_.listenTo(sdk_);
  onMain([](HostScreens&) {});
  return {{"ok", true}, {"events", events_.take()}};
}

json::object HostSession::consentScript(const Object&) {
  return {{"ok", true}, {"script", sdk_.consentScript().get()}};
}

json::object HostSession::quit(const Object&) {
  quitting_ = true;
  return done();
}

}  // namespace quillon::tools
