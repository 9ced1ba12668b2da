// Faults of the process and its resources.
#include <fcntl.h>
#include <sys/resource.h>

#include <array>
#include <boost/json.hpp>
#include <map>
#include <mutex>
#include <random>
#include <set>
#include <string_view>
#include <thread>

#include "platform/linux/StandardConsole.h"
#include "quillon/LinuxPlatform.h"
#include "tests/faults/Areas.h"
#include "tests/faults/Damage.h"
#include "tests/faults/ProcessEnd.h"
#include "tests/faults/SystemCalls.h"
#include "tests/platform/ChildProcess.h"
#include "tests/platform/PrivateBus.h"
#include "tests/support/RawServer.h"
#include "tests/tools/HostProcess.h"

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

// main() returns while the SDK loads, stores and uploads, with a stalled and a responding server.
Seen leavingMain(Trial& trial) {
  const TemporaryFolder place;
  const auto data = place.path() / "data";
  (void)seenIn(data);
  const Servers servers;
  int round = 0;
  // The operation running when the process exits.
  const std::function<void(ConsentSDK&)> moments[] = {
      [](ConsentSDK&) {},
      [](ConsentSDK& sdk) { sdk.settled().wait_for(5ms); },
      [](ConsentSDK& sdk) { sdk.set({.purposeId = 1}, ConsentStatus::granted); },
      [](ConsentSDK& sdk) { (void)sdk.acceptOrReject(true); },
      [](ConsentSDK& sdk) { sdk.checkConsents([] {}); },
  };
  for (const auto& moment : moments) {
    for (const auto& url : {servers.silent, servers.answering}) {
      expectGoodEnd(trial, "moment " + std::to_string(round++), [&] { moment(sharedInstance(data, url)); });
    }
  }
  return seenIn(data);
}

// Number of uses of the SDK by the threads below.
std::atomic<int> uses = 0;

void useForEver(ConsentSDK& sdk) {
  const std::function<void(bool)> ways[] = {
      [&](bool grant) { (void)sdk.set({.purposeId = 2}, grant ? ConsentStatus::granted : ConsentStatus::withDrawn); },
      [&](bool) { sdk.checkConsents([] {}); },
      [&](bool) { (void)sdk.uploadPendingConsents().get(); },
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
      auto& sdk = sharedInstance(data, servers.silent);
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

// Standard input, output and error are closed.
Seen closedDescriptors(Trial& trial) {
  World world;
  std::map<int, int> kept{{STDIN_FILENO, -1}, {STDOUT_FILENO, -1}, {STDERR_FILENO, -1}};
  for (auto& [descriptor, copy] : kept) {
    copy = ::fcntl(descriptor, F_DUPFD_CLOEXEC, 10);
    ::close(descriptor);
  }
  {
    std::atomic<bool> over = false;
    world.amend = [](Platform& platform) { platform.console = std::make_shared<StandardConsole>(); };
    world.restart();
    for (const auto& [descriptor, copy] : kept) {
      std::error_code none;
      const auto file = std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(descriptor), none);
      trial.expect(file == "/dev/null", "descriptor " + std::to_string(descriptor) + " is " + file.string());
    }
    std::jthread printing([&] {
      while (!over) {
        std::printf("the application prints\n");
        std::fflush(stdout);
      }
    });
    for (int round = 0; round < trial.rounds(50, 10); ++round) {
      world.start();
      world.clock->jump(2h);
      trial.expect(world.sdk->set({.purposeId = 1}, ConsentStatus::granted), "a decision cannot be stored");
      trial.expect(world.sdk->getStatus() == SDKStatus::ready, "not ready");
      trial.expect(fileBytes(world.file()).find("prints") == std::string::npos, "what was printed is in our file");
    }
    over = true;
  }
  for (const auto& [descriptor, copy] : kept) ::dup2(copy, descriptor);
  world.amend = nullptr;
  world.restart();
  world.start();
  return seen(world);
}

// A file size limit, whose signal terminates a process that does not handle it.
Seen fileSizeLimit(Trial& trial) {
  World world;
  world.start();
  trial.expect(world.sdk->set({.purposeId = 1}, ConsentStatus::granted), "refused at first");
  auto newer = validConfiguration();
  newer["version"] = 6;
  world.server.serve(boost::json::serialize(newer));
  world.clock->jump(2h);
  whileLimited(RLIMIT_FSIZE, 100, [&] {
    trial.expect(!world.sdk->set({.purposeId = 1}, ConsentStatus::withDrawn), "acknowledged without being stored");
    world.start();
  });
  Seen result = seen(world);
  trial.expect(world.sdk->set({.purposeId = 1}, ConsentStatus::withDrawn), "refused without a limit");
  // The host's own signal is not swallowed.
  ::signal(SIGXFSZ, SIG_DFL);
  trial.expect(endOf([] { ::raise(SIGXFSZ); }) != 0, "the signal no longer does what the host wants");
  return result;
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

// The process is out of descriptors. The sanitizers need some themselves, so the limit is simulated.
Seen noDescriptors(Trial& trial) {
  World world;
  world.start();
  trial.expect(world.sdk->set({.purposeId = 1}, ConsentStatus::granted), "refused at first");
  world.settle();
  breakCalls(world.data, Effect::noDescriptors, 1);
  const bool stored = world.sdk->set({.purposeId = 1}, ConsentStatus::withDrawn);
  trial.expect(world.sdk->get(1) == (stored ? ConsentStatus::withDrawn : ConsentStatus::granted),
               "something else than acknowledged");
  world.clock->jump(2h);
  world.start();
  trial.expect(restoreCalls(), "nothing was opened");
  Seen result = seen(world);
  trial.expect(world.sdk->set({.purposeId = 1}, ConsentStatus::declined), "refused with descriptors again");
  trial.expect(world.sdk->uploadPendingConsents().get(), "no upload with descriptors again");
  result.stored = "1=" + world.text("1").value_or("nothing");
  return result;
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

// Two processes of one application decide at once, each on its own purpose.
Seen twoProcesses(Trial& trial) {
  const TemporaryFolder place;
  const auto data = place.path() / "data";
  const int rounds = trial.rounds(100, 20);
  const auto deciding = [&](std::int64_t purpose) {
    return [&, purpose](const ChildProcess::Say& say) {
      World world(data);
      world.server.onUpload(json("", 503));  // one may find at its start what the other has decided
      world.start();
      for (int round = 0; round < rounds; ++round) {
        const auto consent = round % 2 == 0 ? ConsentStatus::granted : ConsentStatus::withDrawn;
        if (!world.sdk->set({.purposeId = purpose}, consent) || world.sdk->get(purpose) != consent) {
          return say("round " + std::to_string(round) + " failed\n" + world.log());
        }
      }
    };
  };
  {
    ChildProcess one(deciding(1)), two(deciding(2));
    for (auto* process : {&one, &two}) {
      const auto said = process->finish();
      trial.expect(said.empty(), said);
    }
  }
  World world(data);
  world.start();
  const std::string sent = world.uploads().empty() ? "" : boost::json::serialize(world.uploads().back());
  trial.expect(sent.find("\"purpose_id\":1") != sent.npos && sent.find("\"purpose_id\":2") != sent.npos,
               "a pending decision was overwritten: " + sent);
  return seen(world, "1=" + world.text("1").value_or("nothing") + " 2=" + world.text("2").value_or("nothing"));
}

void kill(HostProcess& host) {
  host.tool.sendSignal(SIGKILL);
  host.tool.wait();
}

std::string consentIn(HostProcess& host, int purpose) {
  const auto answer = host.ask(R"({"op":"get","purposeId":)" + std::to_string(purpose) + "}");
  return answer.contains("consent") ? answer.at("consent").as_string().c_str() : boost::json::serialize(answer);
}

Seen killedWithTheBanner(Trial& trial) {
  const TemporaryFolder place;
  ConsentServer server;
  server.serve(validConfiguration());
  for (int round = 0; round < trial.rounds(10, 2); ++round) {
    HostProcess host(place.path() / "data", server.url());
    host.setUp();
    const auto shown = host.ask(R"({"op":"banner","ifDue":true})");
    trial.expect(shown.contains("banner"), "the banner is not due again: " + boost::json::serialize(shown));
    for (const int purpose : {1, 2, 3}) {
      const auto consent = consentIn(host, purpose);
      trial.expect(consent == "declined", "unanswered, but " + consent);
    }
    kill(host);
  }
  return seenIn(place.path() / "data");
}

// A host is killed repeatedly during decisions and uploads, with a server that fails every other time.
Seen killedAtAnyMoment(Trial& trial) {
  const TemporaryFolder place;
  const auto data = place.path() / "data";
  std::mutex mutex;
  std::map<int, std::string> recorded;  // what the server answered last with status 0
  int requests = 0;
  bool failing = true;
  ConsentServer server;
  auto document = validConfiguration();
  document["is_att_enabled"] = false;
  server.serve(document);
  server.onUpload([&](const auto& request, auto& response) {
    const std::scoped_lock lock(mutex);
    if (failing && ++requests % 2 == 0) return void(response.status = 500);
    const auto upload = boost::json::parse(request.body);
    for (const auto& consent : upload.at("purpose_consents").as_array()) {
      recorded[static_cast<int>(consent.at("purpose_id").as_int64())] =
          consent.at("consent_status").as_string().c_str();
    }
    json(saved)(request, response);
  });

  std::mt19937 random(20261124);
  const std::array<std::string, 3> statuses{"granted", "declined", "withdrawn"};
  // The possible status of each purpose: the last acknowledged decision, and later ones whose result was not read.
  std::map<int, std::set<std::string>> possible;
  for (int round = 0; round < trial.rounds(200, 15) && trial.failures().empty(); ++round) {
    HostProcess host(data, server.url());
    host.setUp();
    for (auto& [id, values] : possible) {
      const auto found = consentIn(host, id);
      trial.expect(values.contains(found), "round " + std::to_string(round) + ", " + std::to_string(id) + "=" + found);
      values = {found};
    }
    std::vector<std::pair<int, std::string>> sent;
    const auto lines = 1 + random() % 6;
    for (unsigned i = 0; i < lines; ++i) {
      const int id = 1 + static_cast<int>(random() % 3);
      const std::string& status = statuses[random() % statuses.size()];
      sent.emplace_back(id, status);
      host.tell(R"({"op":"set","purposeId":)" + std::to_string(id) + R"(,"consent":")" + status + "\"}");
      if (random() % 2 == 0) {
        sent.emplace_back(0, "");
        host.tell(R"({"op":"upload"})");
      }
    }
    // Killed in the middle: some results are read, the others never.
    const auto acknowledged = random() % (sent.size() + 1);
    for (std::size_t i = 0; i < sent.size(); ++i) {
      const auto& [id, status] = sent[i];
      if (i < acknowledged) {
        const auto answer = host.hear();
        if (id != 0 && answer.contains("stored") && answer.at("stored") == true) possible[id] = {status};
      } else if (id != 0) {
        // A decision without a read result may or may not have been made; before the first one a purpose has its
        // default.
        if (possible[id].empty()) possible[id].insert("declined");
        possible[id].insert(status);
      }
    }
    kill(host);
  }

  {
    const std::scoped_lock lock(mutex);
    failing = false;
  }
  HostProcess host(data, server.url());
  host.setUp();
  const auto uploaded = host.ask(R"({"op":"upload"})");
  trial.expect(uploaded.contains("uploaded") && uploaded.at("uploaded") == true, "the rest cannot be uploaded");
  const auto history = host.ask(R"({"op":"history","count":10000})");
  for (const auto& entry : history.at("history").as_array()) {
    trial.expect(entry.at("link") == "intact", "an entry looks changed: " + boost::json::serialize(entry));
  }
  const std::scoped_lock lock(mutex);
  for (const auto& [id, values] : possible) {
    const auto stored = consentIn(host, id);
    trial.expect(values.contains(stored), std::to_string(id) + "=" + stored + " was not acknowledged last");
    const auto there = recorded.find(id);
    trial.expect((there == recorded.end() ? "declined" : there->second) == stored,
                 std::to_string(id) + " differs there");
  }
  return {.status = host.ask(R"({"op":"status"})").at("status").as_string().c_str(),
          .log = {},
          .stored = "all that was acknowledged"};
}

}  // namespace

// Called by the sanitizer at process exit.
extern "C" int __lsan_is_turned_off();  // NOLINT(bugprone-reserved-identifier)
extern "C" int __lsan_is_turned_off() {
  return withoutLeakCheck ? 1 : 0;
}

std::vector<Row> processRows() {
  return {
      {"leave-main", "main returns at five moments of a run, the server silent or not", leavingMain},
      {"leave-threads", "main returns while other threads use the SDK, until the process is gone", leavingThreads},
      {"fork", "the host forks while the SDK is at work, and the children exit", fork},
      {"descriptors-closed", "descriptors 0 to 2 are closed, and the application prints", closedDescriptors},
      {"file-size-limit",
       "files may not grow, SIGXFSZ at its default",
       fileSizeLimit,
       {"ready", "Failed to store", "1=granted"}},
      {"broken-pipes",
       "peers hang up, nobody reads the output, SIGPIPE at its default",
       brokenPipes,
       {"ready", "Empty reply from server", "1=granted, pending"}},
      {"descriptors-none",
       "no more files can be opened, and later they can",
       noDescriptors,
       {"ready", "Failed", "1=declined"}},
      {"descriptors-few", "fewer and fewer descriptors for connections, pipes and the store, and later plenty",
       fewDescriptors},
      {"two-processes",
       "two processes of one application decide at once",
       twoProcesses,
       {"ready", "", "1=withdrawn 2=withdrawn"}},
      {"kill",
       "killed at any moment, 200 times, while the server fails every other upload",
       killedAtAnyMoment,
       {"ready", "", "all that was acknowledged"},
       300s},
      {"kill-banner",
       "killed while the banner shows, again and again",
       killedWithTheBanner,
       {"ready", "", "1=nothing"}},
  };
}

}  // namespace quillon::test
