#include "tools/host/HostCommand.h"

#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>

#include "tools/host/HostDevice.h"
#include "tools/host/HostSession.h"

namespace quillon::tools {
namespace {

constexpr const char* hostFooter = R"(
One JSON object a line on standard input, one JSON object a line on standard output, in order. SDK log blocks go to
standard error. Every answer carries "ok"; a line that is unknown or malformed is answered
{"ok":false,"error":"..."} and the host goes on. Answers come when the work is done, uploads included, except setup.

  {"op":"setup","appUrl":U,"cdnUrl":U,"tenantId":T,"appId":A}   further keys: testingMode, logLevel ("DEBUG", "INFO",
                     "WARNING", "ERROR"), consentsCheckInterval (seconds), subjectId, languageCode, locationCode,
                     webviewConfig {"allowedDomains":[...],"blockedPageHTML":...}, bundledConfiguration
  {"op":"waitReady","timeout":S}   waits until loading is over, at most S seconds (10): status as below
  {"op":"status"}                  "status": "ready", "unavailable" or "fetching"; "rawValue" 0, 1 or 2; "message"
  {"op":"bannerDue"}               "due"; a positive answer counts as showing the banner
  {"op":"accept"} {"op":"reject"}  the user's answer to the banner: "stored"
  {"op":"isAllowed","purposeId":N} "allowed": whether the application may act on it; or with "permission":KEY
  {"op":"whileAllowed","purposeId":N}      begins to note what a gate on the purpose calls
  {"op":"gates"}                   "gates": what was called since then: "purposeId" and "call", start or stop
  {"op":"get","purposeId":N}       "consent"; with "permission":KEY of a permission
  {"op":"set","purposeId":N,"consent":C}   "stored"; C is granted, declined, not_determined or withdrawn; with
                     "permission":KEY of a permission. The upload follows a second later on the clock
  {"op":"purposes"}                "purposes": the configured ones with their present consents
  {"op":"permissions"}             "permissions": the configured ones with what the device says
  {"op":"checkConsent","permission":KEY}   "consent": what the device says about a configured permission
  {"op":"bannerConfig"}            "bannerConfig": the banner for the location, or null
  {"op":"settingsPrompt"}          "settingsPrompt": its texts, or null
  {"op":"gcmConfig"}               "gcmConfig": the consent-mode mapping, or null
  {"op":"gcmConsents"}             "gcmConsents": the signals that follow from the present consents
  {"op":"sink"}                    "sink": what the analytics library was given so far, in order
  {"op":"upload"}                  uploads now what is pending: "uploaded", true when nothing is pending afterwards
  {"op":"check"}                   one consent check
  {"op":"advance","seconds":S}     moves the virtual clock and waits for all that this starts: "now"
  {"op":"network","status":"satisfied"|"unsatisfied"}   what the network monitor reports
  {"op":"permission","key":KEY,"value":V}   changes what the source of a permission answers
  {"op":"settle"}                  waits until nothing is under way
  {"op":"store"}                   "store": the whole suite as an object; dates as seconds since 1970
  {"op":"removeConsents"}          deletes every stored value
  {"op":"version"}                 "sdkVersion"
  {"op":"banner"}                  opens the banner unless it is open, and tells what it shows: state of each load, texts,
                     controls, labels; with "ifDue":true only when it is due; with "perform":"accept", "reject", "close",
                     "openPreferenceCenter", "openPrivacyNotice" or "openDSRPortal" taps that control afterwards
  {"op":"recordDefaults"}          records the defaults, as a banner does that is closed without an answer
  {"op":"preferences"}             opens the preference centre unless it is open, and tells what it shows; before that
                     "toggle":N taps the switch of a purpose and "setAll":true or false switches all; after that
                     "save":true or "close":true leaves it
  {"op":"prompt","permission":KEY} "prompt": the settings prompt, or null when it is not offered; "choose":"settings",
                     "notNow" or "close" leaves it
  {"op":"openLink","link":L}       opens a link in the web view: "loaded", the address given to the browser, or null and
                     "isBlockedPageShowing"
  {"op":"history"}                 "history": the decisions, newest first, at most "count" (100), older than entry "before";
                     "damaged": how many are left out; "before" of the page that follows, or null
  {"op":"explain"}                 why the banner is due or not: "due", "reason", "expires", "version", "text"; with
                     "purposeId":N why a consent is what it is: "consent", "cause", "time", "text"
  {"op":"listen"}                  begins to listen; "events": changed consents, screens and uploads since the last call
  {"op":"consentScript"}           "script": the consents for a page in the application's own web view
  {"op":"quit"}                    ends the host; so does the end of the input
)";

}  // namespace

void addHostCommand(CLI::App& app, int& exitCode) {
  struct Settings {
    DeviceOptions device;
    std::string languages;
    std::string advertisingIdentifier;
    std::int64_t clock = 0;
  };
  auto settings = std::make_shared<Settings>();
  auto* host = app.add_subcommand("host", "A headless host application, driven line by line");
  host->footer(hostFooter);
  host->add_option("--data-dir", settings->device.dataDirectory, "Folder of the store and the cached configuration");
  host->add_option("--resources", settings->device.resources, "Folder of the application's own pages");
  host->add_option("--vendor-url", settings->device.vendorUrl, "Base address of the location look-up, ending in /");
  host->add_option("--languages", settings->languages, "Preferred languages, best first, as de-DE,en");
  host->add_option("--tracking", settings->device.tracking, "Tracking authorization")
      ->transform(CLI::CheckedTransformer(
          std::map<std::string, TrackingAuthorization>{{"authorized", TrackingAuthorization::authorized},
                                                       {"denied", TrackingAuthorization::denied},
                                                       {"restricted", TrackingAuthorization::restricted},
                                                       {"notDetermined", TrackingAuthorization::notDetermined}}));
  host->add_option("--ad-id", settings->advertisingIdentifier, "Advertising identifier of the device");
  host->add_option("--permission", settings->device.permissions,
                   "KEY=VALUE: what the source of a permission answers (repeatable)");
  host->add_option("--network", settings->device.network, "What the network monitor reports at first")
      ->transform(CLI::CheckedTransformer(std::map<std::string, NetworkStatus>{
          {"satisfied", NetworkStatus::satisfied}, {"unsatisfied", NetworkStatus::unsatisfied}}));
  host->add_option("--sink", settings->device.sink, "The application's analytics library")
      ->transform(CLI::CheckedTransformer(
          std::map<std::string, DeviceOptions::Sink>{{"present", DeviceOptions::Sink::present},
                                                     {"without-method", DeviceOptions::Sink::withoutMethod},
                                                     {"absent", DeviceOptions::Sink::absent}}));
  auto* clock = host->add_option("--clock", settings->clock, "Start a virtual clock at these seconds since 1970");

  host->callback([settings, clock, &exitCode] {
    settings->device.languages = CLI::detail::split(settings->languages, ',');
    if (settings->languages.empty()) settings->device.languages.clear();
    if (!settings->advertisingIdentifier.empty()) {
      settings->device.advertisingIdentifier = settings->advertisingIdentifier;
    }
    if (clock->count() > 0) settings->device.clockSeconds = settings->clock;
    try {
      HostDevice device(settings->device);
      HostSession(device).run(std::cin, std::cout);
    } catch (const std::exception& error) {
      std::cerr << "quillon-consent host: " << error.what() << '\n';
      exitCode = 1;
    }
  });
}

}  // namespace quillon::tools
