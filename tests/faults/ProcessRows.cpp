// Faults of the process, its resources, clock and locale, and of the host's callbacks.
#include <fcntl.h>
#include <sys/resource.h>

#include <boost/json.hpp>
#include <clocale>
#include <future>
#include <locale>
#include <map>
#include <string_view>
#include <thread>

#include "core/Persistance/UserDefaults/StoreKeys.h"
#include "platform/linux/AsioExecutors.h"
#include "platform/linux/StandardConsole.h"
#include "platform/parts/FunctionConsentSink.h"
#include "quillon/LinuxPlatform.h"
#include "quillon/SDKLogger.h"
#include "tests/faults/ProcessEnd.h"
#include "tests/faults/Row.h"
#include "tests/platform/ChildProcess.h"
#include "tests/platform/PrivateBus.h"
#include "tests/support/RawServer.h"

namespace quillon::test {
namespace {

using namespace std::chrono_literals;

// For a child of a process with threads, which the leak check would wait for.
bool withoutLeakCheck = false;

// What the next start finds in data left by other processes.
Seen seenIn(const std::filesystem::path& data) {
  World world(data);
  world.start();
  return seen(world);
}

void expectGoodEnd(Trial& trial, const std::string& what, const std::function<void()>& work) {
  const auto status = endOf(work);
  trial.expect(status == 0, what + (status ? ": wait status " + std::to_string(*status) : ": hung"));
}

// Does the work with a limit on the resource.
void whileLimited(decltype(RLIMIT_FSIZE) resource, rlim_t most, const std::function<void()>& work) {
  rlimit before{};
  ::getrlimit(resource, &before);
  const rlimit less{.rlim_cur = most, .rlim_max = before.rlim_max};
  ::setrlimit(resource, &less);
  work();
  ::setrlimit(resource, &before);
}

// The application's shared instance, as a program has it, never destroyed.
ConsentSDK& sharedInstance(const std::filesystem::path& data, const std::string& url) {
  if (!configure({.applicationId = "test", .dataDirectory = data, .vendorUrl = url})) std::abort();
  auto& sdk = ConsentSDK::shared();
  sdk.setup({.appUrl = url, .cdnUrl = url, .tenantId = "t1", .appId = "a1", .locationCode = "DE"});
  return sdk;
}

// A responding and a stalled server in a child process: their library's statics are destroyed before their threads at
// exit, and they need descriptors.
class Servers {
  ChildProcess process_{[](const ChildProcess::Say& say) {
    ConsentServer answers;
    answers.serve(boost::json::serialize(validConfiguration()));
    const RawServer falls(RawServer::fallSilent);
    say(answers.url() + " " + falls.url());
    ::pause();
  }};
  const std::string urls_ = process_.hear();

 public:
  const std::string answering = urls_.substr(0, urls_.find(' '));
  const std::string silent = urls_.substr(urls_.find(' ') + 1);
};

// Number of uses of the SDK by the threads below.
std::atomic<int> uses = 0;

void useForEver(ConsentSDK& sdk) {
  const std::function<void(bool)> ways[] = {
      [&](bool grant) { (void)sdk.set({.purposeId = 2}, grant ? ConsentStatus::granted : ConsentStatus::withDrawn); },
      [&](bool) { sdk.checkConsents([] {}); },
      [&](bool) { (void)sdk.uploadPendingConsents(); },
      [&](bool) { (void)sdk.getPurposeConsents().get(); },
      [&](bool) { sdk.isReady([](SDKStatus) {}); },
      [&](bool) { (void)sdk.getHistory(5).get(); },
      [&](bool) { (void)sdk.get(1); },
  };
  for (int turn = uses++;; turn = uses++) ways[turn % std::ssize(ways)](turn % 2 == 0);
}

void waitForUses(int count) {
  for (const int wanted = uses + count; uses < wanted;) std::this_thread::yield();
}

// main() returns while other threads use the SDK until the process ends. The last decision is made after the SDK's exit
// handlers.
Seen leavingThreads(Trial& trial) {
  const TemporaryFolder place;
  const auto data = place.path() / "data";
  const Servers servers;
  for (int round = 0; round < trial.rounds(40, 8); ++round) {
    expectGoodEnd(trial, "round " + std::to_string(round), [&] {
      std::atexit([] {
        waitForUses(200);
        if (!ConsentSDK::shared().set({.purposeId = 1}, ConsentStatus::granted)) std::_Exit(3);
      });
      auto& sdk = sharedInstance(data, round % 2 == 0 ? servers.silent : servers.answering);
      for (int thread = 0; thread < 4; ++thread) std::thread([&sdk] { useForEver(sdk); }).detach();
      waitForUses(round * round);
    });
  }
  return seenIn(data);
}

// The host forks while the SDK works; the children exit, and the SDK continues.
Seen fork(Trial& trial) {
  World world;
  auto& sdk = sharedInstance(world.data, world.server.url());
  for (int round = 0; round < trial.rounds(100, 10) && trial.failures().empty(); ++round) {
    if (round % 2 == 0) sdk.checkConsents([] {});
    expectGoodEnd(trial, "child " + std::to_string(round), [] { withoutLeakCheck = true; });
  }
  sdk.settled().wait();
  trial.expect(sdk.getStatus() == SDKStatus::ready, "the parent is not ready");
  trial.expect(sdk.set({.purposeId = 1}, ConsentStatus::granted), "the parent cannot store");
  trial.expect(sdk.uploadPendingConsents().get(), "the parent cannot upload");
  world.restart();
  world.start();
  return seen(world);
}

// The application prints while its standard input, output and error are closed: nothing of ours takes their place.
Seen closedDescriptors(Trial& trial) {
  World world;
  std::map<int, int> kept;
  for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    kept[descriptor] = ::fcntl(descriptor, F_DUPFD_CLOEXEC, 10);
    ::close(descriptor);
  }
  world.amend = [](Platform& platform) { platform.console = std::make_shared<StandardConsole>(); };
  world.restart();
  for (const auto& [descriptor, copy] : kept) {
    std::error_code none;
    const auto file = std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(descriptor), none);
    trial.expect(file == "/dev/null", "descriptor " + std::to_string(descriptor) + " is " + file.string());
  }
  std::printf("the application prints\n");
  std::fflush(stdout);
  world.start();
  trial.expect(world.sdk->set({.purposeId = 1}, ConsentStatus::granted), "a decision cannot be stored");
  trial.expect(fileBytes(world.file()).find("prints") == std::string::npos, "what was printed is in our file");
  for (const auto& [descriptor, copy] : kept) ::dup2(copy, descriptor);
  world.amend = nullptr;
  world.restart();
  world.start();
  return seen(world);
}

// Peers disconnect in the middle, and standard output is a pipe that nobody reads.
Seen brokenPipes(Trial& trial) {
  int ends[2];
  if (::pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
  ::close(ends[0]);
  const int output = ::dup(STDOUT_FILENO);
  ::dup2(ends[1], STDOUT_FILENO);
  World world;
  ::signal(SIGPIPE, SIG_DFL);  // changed by the server
  world.start();
  const RawServer hangingUp([](int) {});
  auto options = world.options();
  options.appUrl = hangingUp.url();
  world.start(options);
  world.sdk->set({.purposeId = 1}, ConsentStatus::granted);
  for (int round = 0; round < trial.rounds(50, 5); ++round) {
    trial.expect(!world.sdk->uploadPendingConsents().get(), "an upload succeeded without an answer");
  }
  StandardConsole().write("to nobody");
  ::dup2(output, STDOUT_FILENO);
  const auto pending = world.stored().pendingPurposes();
  return seen(world, "1=" + world.text("1").value_or("nothing") + (pending.empty() ? "" : ", pending"));
}

// Fewer and fewer descriptors for connections, pipes, the bus and the store, during setup or work, and plenty
// afterwards. A store that cannot be opened stops the application; nothing else does, and everything recovers.
Seen fewDescriptors(Trial& trial) {
  if (std::string_view(SANITIZERS).contains("undefined")) {
    throw LeftOut("the checks of undefined behaviour look into memory through a pipe, which takes descriptors");
  }
  const TemporaryFolder place;
  const auto data = place.path() / "data";
  const Servers servers;
  const PrivateBus bus(PrivateBus::Services::none);
  ::setenv("DBUS_SESSION_BUS_ADDRESS", bus.address().c_str(), 1);
  const auto use = [](ConsentSDK& sdk) {
    (void)sdk.checkConsents().get();
    (void)sdk.checkConsentBy(VantariKey::cameraUsageDescription).get();
    const bool stored = sdk.set({.purposeId = 1}, ConsentStatus::granted);
    return sdk.uploadPendingConsents().get() && stored;
  };
  constexpr int most = 24;
  int stopped = 0;
  for (const bool running : {false, true}) {
    for (int left = 0; left <= most; left += trial.rounds(1, 3)) {
      const auto status = endOf([&] {
        std::set_terminate([] { std::_Exit(2); });
        ConsentSDK* sdk = running ? &sharedInstance(data, servers.answering) : nullptr;
        if (running && !use(*sdk)) std::_Exit(3);
        const int next = ::dup(STDERR_FILENO);
        ::close(next);
        whileLimited(RLIMIT_NOFILE, static_cast<rlim_t>(next + left), [&] {
          if (!running) sdk = &sharedInstance(data, servers.answering);
          (void)use(*sdk);
        });
        if (!use(*sdk) || sdk->getStatus() != SDKStatus::ready) std::_Exit(4);
      });
      const bool mayStop = !running && left < most / 2;
      if (mayStop && status && WIFSIGNALED(*status) && WTERMSIG(*status) == SIGABRT) {
        ++stopped;
        continue;
      }
      trial.expect(status == 0, std::to_string(left) + (running ? " left at work: " : " left at set-up: ") +
                                    (status ? "wait status " + std::to_string(*status) : "hung"));
    }
  }
  trial.expect(stopped > 0, "the store was opened without a descriptor");
  return seenIn(data);
}

// Decimal commas, thousands separators, words for booleans.
struct OddPunctuation : std::numpunct<char> {
  char do_decimal_point() const override { return ','; }
  char do_thousands_sep() const override { return '.'; }
  std::string do_grouping() const override { return "\3"; }
  std::string do_truename() const override { return "wahr"; }
};

// What a decision, its upload and a saved configuration leave must be the same in all locales.
Seen oddLocales(Trial& trial) {
  const auto afterARun = [](World& world) {
    world.start();
    world.sdk->acceptOrReject(true).get();
    world.settle();
    return boost::json::serialize(world.uploads().back()) +
           " SDK_VERSION=" + std::to_string(world.stored().integer(key::configurationVersion, 0)) + " " +
           fileBytes(world.file());
  };
  World plain;
  const auto wanted = afterARun(plain);
  std::locale::global(std::locale(std::locale::classic(), new OddPunctuation));
  // The locales installed here; the one above always is.
  for (const char* name : {"C.UTF-8", "de_DE.UTF-8", "fa_IR.UTF-8", "th_TH.UTF-8", "tr_TR.UTF-8", "ar_SA.UTF-8"}) {
    std::setlocale(LC_ALL, name);
    World world;
    trial.expect(afterARun(world) == wanted, std::string(name) + " changes what is sent or kept");
  }
  return seen(plain);
}

// The banner is answered while the clock is a year ahead; the clock is then corrected, and the banner reappears one
// interval after that.
Seen aYearForwardAndBack(Trial& trial) {
  constexpr auto year = std::chrono::hours(24 * 366);
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

[[noreturn]] void fail() {
  throw std::runtime_error("host\nfault");
}

// Every host callback throws.
Seen callbacksThatThrow(Trial& trial) {
  World world;
  auto document = validConfiguration();
  document["gcm_config"] = {{"DE", {{"ad_storage", {1}}}}};
  world.server.serve(document);
  world.amend = [](Platform& platform) {
    platform.consentSink = std::make_shared<FunctionConsentSink>([](const auto&) { fail(); });
  };
  world.restart();
  world.sdk->isReady([](SDKStatus) { fail(); });
  world.start();
  auto& sdk = *world.sdk;
  sdk.getPurposeConsents([](const auto&) { fail(); });
  sdk.getPermissionConsents([](const auto&) { fail(); });
  sdk.checkConsentBy(VantariKey::cameraUsageDescription, [](ConsentStatus) { throw 7; });
  sdk.getGCMConsents([](const auto&) { fail(); });
  sdk.getBannerConfig(std::nullopt, [](const auto&) { fail(); });
  sdk.getSettingsPrompt([](const auto&) { fail(); });
  sdk.getGCMConfig([](const auto&) { fail(); });
  sdk.checkConsents([] { fail(); });
  sdk.acceptOrReject(true, [](bool) { fail(); });
  sdk.uploadPendingConsents([](bool) { fail(); });
  world.settle();
  trial.expect(sdk.uploadPendingConsents().get(), "uploads no longer work");
  trial.expect(world.log().find("A callback of the host threw: host\\nfault") != std::string::npos,
               "what was thrown is not in the log");
  return seen(world);
}

// Callbacks call the SDK on the main queue and wait for results there.
Seen callbacksThatCallBack(Trial& trial) {
  World world;
  std::promise<void> done;
  world.restart();
  world.sdk->isReady([&](SDKStatus status) {
    if (status != SDKStatus::ready) return;
    world.sdk->removeListeners();
    world.sdk->isReady([](SDKStatus) {});
    world.sdk->set({.purposeId = 1}, ConsentStatus::granted);
    trial.expect(world.sdk->getPurposeConsents().get().size() == 3, "no answer within a callback");
    trial.expect(world.sdk->acceptOrReject(true).get(), "no answer stored within a callback");
    world.sdk->setup(world.options());
    world.sdk->logger().log("within a callback", LogLevel::info, "fault", "ProcessRows", __LINE__);
    world.sdk->checkConsents([&] {
      world.sdk->removeListeners();
      done.set_value();
    });
  });
  world.start();
  trial.expect(done.get_future().wait_for(std::chrono::seconds(10)) == std::future_status::ready,
               "no callback any more");
  world.settle();
  return seen(world);
}

// A callback destroys its SDK.
Seen callbackThatDestroys(Trial& trial) {
  World world;
  std::promise<void> done;
  world.restart();
  world.sdk->setup(world.options());
  world.sdk->settled().wait();
  world.sdk->acceptOrReject(true, [&](bool) {
    world.sdk.reset();
    done.set_value();
  });
  trial.expect(done.get_future().wait_for(std::chrono::seconds(10)) == std::future_status::ready,
               "no callback any more");
  world.restart();
  world.start();
  return seen(world);
}

// The host's main queue drops every job: operations that do not need it do not wait for it.
Seen mainQueueThatLoses(Trial& trial) {
  World world;
  world.amend = [](Platform& platform) { platform.executors = std::make_shared<AsioExecutors>([](const auto&) {}); };
  world.start();
  world.sdk->checkConsents([&] { trial.expect(false, "called where there is no queue"); });
  trial.expect(world.sdk->acceptOrReject(true).get(), "a decision waits for the main queue");
  world.sdk->settled().wait();
  return seen(world);
}

}  // namespace

// Called by the sanitizer at process exit.
extern "C" int __lsan_is_turned_off();  // NOLINT(bugprone-reserved-identifier)
extern "C" int __lsan_is_turned_off() {
  return withoutLeakCheck ? 1 : 0;
}

std::vector<Row> processRows() {
  return {
      Row("leave-threads", "main returns while threads use the SDK, the servers silent or not", leavingThreads),
      Row("fork", "the host forks while the SDK is at work, and the children exit", fork),
      Row("descriptors-closed", "descriptors 0 to 2 are closed, and the application prints", closedDescriptors),
      Row("broken-pipes", "peers hang up, nobody reads the output, SIGPIPE at its default", brokenPipes,
          {"ready", "Empty reply from server", "1=granted, pending"}),
      Row("descriptors-few", "fewer and fewer descriptors for connections, pipes and the store, and later plenty",
          fewDescriptors),
      Row("year-and-back", "a clock a year ahead is set right", aYearForwardAndBack),
      Row("locales", "commas for decimal points, other digits and letters", oddLocales),
  };
}

std::vector<Row> hostRows() {
  return {
      Row("callbacks-throw", "every callback throws", callbacksThatThrow,
          {"ready", "A callback of the host threw", "1=granted"}),
      Row("callbacks-call-back", "callbacks call the facade, wait in it and unregister themselves",
          callbacksThatCallBack),
      Row("callback-destroys", "a callback destroys the SDK", callbackThatDestroys),
      Row("main-queue-loses", "the host's main queue loses every job", mainQueueThatLoses),
  };
}

}  // namespace quillon::test
