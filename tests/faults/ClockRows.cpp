// Faults of the clock, time zones and locales.
#include <boost/json.hpp>
#include <clocale>
#include <cstdlib>
#include <ctime>
#include <locale>

#include "core/Persistance/UserDefaults/StoreKeys.h"
#include "platform/linux/EnvironmentLocale.h"
#include "platform/linux/LinuxClock.h"
#include "platform/linux/WorkPool.h"
#include "tests/faults/Areas.h"
#include "tests/faults/Damage.h"
#include "tests/support/World.h"

namespace quillon::test {
namespace {

using namespace std::chrono_literals;

constexpr auto year = std::chrono::hours(24 * 366);

// The clock is set back after the configuration was saved: its age is unknown, so it is requested again.
Seen anHourBack(Trial& trial) {
  World world;
  world.start();
  trial.expect(world.sdk->acceptOrReject(true).get(), "no answer stored");
  const auto before = world.server.seen("/mobile_banner/").size();
  world.clock->jump(-1h);
  world.start();
  trial.expect(world.server.seen("/mobile_banner/").size() == before + 1, "a file of the future counts as fresh");
  world.start();
  trial.expect(world.server.seen("/mobile_banner/").size() == before + 1, "asked for again though fresh");
  trial.expect(!world.sdk->isBannerDue(), "the user is asked again for the clock's sake");
  return seen(world);
}

// The banner is answered while the clock is a year ahead; the clock is then corrected, and the banner reappears one
// interval after that.
Seen aYearForwardAndBack(Trial& trial) {
  World world;
  world.clock->jump(year);
  world.start();
  trial.expect(world.sdk->isBannerDue(), "not due at first");
  trial.expect(world.sdk->acceptOrReject(true).get(), "no answer stored");
  world.clock->jump(-year);
  world.start();
  trial.expect(!world.sdk->isBannerDue(), "due at once");
  world.clock->jump(year);
  world.start();
  trial.expect(world.sdk->isBannerDue(), "not due an interval after the clock was set right");
  return seen(world);
}

Seen aYearForward(Trial& trial) {
  World world;
  world.start();
  trial.expect(world.sdk->isBannerDue(), "not due at first");
  trial.expect(world.sdk->acceptOrReject(true).get(), "no answer stored");
  world.clock->jump(year);
  world.start();
  trial.expect(world.sdk->isBannerDue(), "not due after a year");
  trial.expect(world.sdk->get(1) == ConsentStatus::granted, "time took a decision away");
  return seen(world);
}

// Decimal commas, thousands separators, words for booleans.
struct OddPunctuation : std::numpunct<char> {
  char do_decimal_point() const override { return ','; }
  char do_thousands_sep() const override { return '.'; }
  std::string do_grouping() const override { return "\3"; }
  std::string do_truename() const override { return "wahr"; }
};

// Decides, uploads and logs in this environment; returns what must be the same in all of them.
std::string afterARun(World& world) {
  world.start();
  world.sdk->acceptOrReject(true).get();
  world.settle();
  const auto upload = world.uploads().back();
  auto log = world.log();
  return boost::json::serialize(upload) +
         " SDK_VERSION=" + std::to_string(world.stored().integer(key::configurationVersion, 0)) + " " +
         fileBytes(world.file());
}

Seen oddLocales(Trial& trial) {
  World plain;
  const auto wanted = afterARun(plain);
  std::locale::global(std::locale(std::locale::classic(), new OddPunctuation));
  // The locales installed here; the one above always is.
  for (const char* name : {"C.UTF-8", "de_DE.UTF-8", "fa_IR.UTF-8", "th_TH.UTF-8", "tr_TR.UTF-8", "ar_SA.UTF-8"}) {
    std::setlocale(LC_ALL, name);
    World world;
    trial.expect(afterARun(world) == wanted, std::string(name) + " changes what is sent or kept");
  }
  return seen(plain, "1=" + plain.text("1").value_or("nothing"));
}

// Calendar months, in every zone, across changes of daylight saving and date.
Seen oddZones(Trial& trial) {
  for (const char* zone : {"Pacific/Kiritimati", "Pacific/Niue", "Europe/Berlin", "Asia/Kathmandu", "Asia/Tehran",
                           "America/St_Johns", "Australia/Lord_Howe", "XYZ-24:59:59", "nonsense", ""}) {
    ::setenv("TZ", zone, 1);
    ::tzset();
    LinuxClock clock(std::make_shared<WorkPool>("timers", 1));
    const WallTime shown{std::chrono::seconds(startSeconds)};
    for (const std::int64_t months : {0, 1, 12, 24}) {
      const auto due = clock.addMonths(shown, months) - shown;
      const auto least = std::chrono::hours(24) * (months * 28), most = std::chrono::hours(24) * (months * 31 + 1);
      trial.expect(due >= least && due <= most, std::string(zone) + ": " + std::to_string(months) + " months");
    }
    trial.expect(!clock.localText(shown).empty(), std::string(zone) + ": no text");
  }
  World world;
  world.start();
  trial.expect(world.sdk->acceptOrReject(true).get(), "no answer stored");
  return seen(world);
}

// Language variables with another calendar, other digits, or nonsense.
Seen oddSettings(Trial& trial) {
  World world;
  for (const char* setting : {"th_TH@calendar=buddhist", "fa_IR@calendar=persian", "ar_EG@numbers=arab",
                              "ja_JP@calendar", "../../etc/passwd", "de_DE\nevil", "", "\xff\xfe", "C", "x-private"}) {
    for (const char* variable : {"LANGUAGE", "LC_ALL", "LC_TIME", "LC_NUMERIC", "LANG"}) ::setenv(variable, setting, 1);
    world.amend = [](Platform& platform) { platform.locale = std::make_shared<EnvironmentLocale>(); };
    world.restart();
    world.start();
    trial.expect(world.sdk->getStatus() == SDKStatus::ready, std::string(setting) + ": not ready");
    trial.expect(world.sdk->acceptOrReject(true).get(), std::string(setting) + ": no answer stored");
    for (const auto& request : world.server.seen("/mobile_banner/")) {
      trial.expect(request.path.find("..") == std::string::npos && request.path.find('\n') == std::string::npos &&
                       request.path.find('@') == std::string::npos,
                   std::string(setting) + " asks for " + request.path);
    }
  }
  return seen(world);
}

}  // namespace

std::vector<Row> clockRows() {
  return {
      {"hour-back", "the clock is put back an hour", anHourBack},
      {"year-forward", "the clock is put forward a year", aYearForward},
      {"year-and-back", "a clock a year ahead is set right", aYearForwardAndBack},
      {"locales", "commas for decimal points, other digits and letters", oddLocales},
      {"zones", "time zones at both ends of the day, half hours, nonsense", oddZones},
      {"settings", "other calendars and nonsense in the language settings", oddSettings},
  };
}

}  // namespace quillon::test
