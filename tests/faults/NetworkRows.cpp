// Faults of the servers, their answers, the network and the message buses.
#include <net/if.h>
#include <sched.h>
#include <stdlib.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <zlib.h>

#include <array>
#include <boost/json.hpp>
#include <cstring>
#include <span>

#include "core/Persistance/UserDefaults/StoreKeys.h"
#include "platform/linux/LinuxClock.h"
#include "platform/linux/PermissionSources/LinuxPermissionSources.h"
#include "platform/linux/WorkPool.h"
#include "tests/faults/Row.h"
#include "tests/platform/FalseBus.h"
#include "tests/support/RawServer.h"

namespace quillon::test {
namespace {

using namespace std::chrono_literals;
using Stopwatch = std::chrono::steady_clock;

const std::string ok = "HTTP/1.1 200 OK\r\n";

constexpr auto shortLimit = 1s;
constexpr auto stallLimit = 20s;  // connecting may take less
constexpr auto wholeLimit = 60s;

// The real session, with shorter timeouts.
class HurriedHttpSession : public HttpSession {
 public:
  explicit HurriedHttpSession(std::shared_ptr<HttpSession> real) : real_(std::move(real)) {}
  void send(HttpRequest request, std::stop_token stop, Completion completion) override {
    request.timeout = shortLimit;
    real_->send(std::move(request), std::move(stop), std::move(completion));
  }

 private:
  const std::shared_ptr<HttpSession> real_;
};

// Shortens timeouts in a short trial.
void hurry(World& world, const Trial& trial) {
  if (!trial.isShort()) return;
  world.amend = [](Platform& platform) { platform.http = std::make_shared<HurriedHttpSession>(platform.http); };
}

void expectWithin(Trial& trial, Stopwatch::time_point begin, std::chrono::seconds limit, const std::string& what) {
  constexpr auto busyMachine = 15s;  // allowance for a loaded disk
  trial.expect(Stopwatch::now() - begin < limit + busyMachine,
               what + " takes longer than " + std::to_string(limit.count()) + " s");
}

std::string answerIn(World& world) {
  return "1=" + world.text("1").value_or("nothing") +
         (world.stored().pendingPurposes().empty() ? "" : ", to be uploaded");
}

// A first and a later start, and an answer to the banner, with every server replaced by the one at the address; then
// the same device with working servers. `limit` is that of one exchange, which a short trial shortens unless the
// servers end it by themselves.
Seen whileServersAre(Trial& trial, const std::string& address, std::chrono::seconds limit = stallLimit,
                     bool endsByItself = false) {
  if (trial.isShort() && !endsByItself) limit = std::min(limit, std::chrono::seconds(shortLimit));
  const auto troubled = [&](const World& world) {
    auto options = world.options();
    options.cdnUrl = options.appUrl = address;
    return options;
  };
  World fresh;
  if (!endsByItself) hurry(fresh, trial);
  fresh.restart();
  fresh.sdk->setup(troubled(fresh));

  World world;
  if (!endsByItself) hurry(world, trial);
  world.start();
  world.clock->jump(2h);
  const auto begin = Stopwatch::now();
  world.start(troubled(world));
  expectWithin(trial, begin, limit, "a start");
  trial.expect(world.sdk->acceptOrReject(true).get(), "the answer is not acknowledged");
  expectWithin(trial, begin, 2 * limit, "an upload");
  Seen result = seen(world, answerIn(world));
  fresh.sdk->settled().wait();
  trial.expect(fresh.sdk->getStatus() == SDKStatus::unavailable, "a first start has a configuration from nowhere");

  world.start();
  trial.expect(world.sdk->uploadPendingConsents().get(), "the upload does not follow");
  trial.expect(!world.uploads().empty() && world.uploads().back().at("purpose_consents").as_array().size() == 3,
               "the upload that follows is not whole");
  return result;
}

using Run = std::function<Seen(Trial&)>;

// Servers that send this text and disconnect.
Run saying(const std::string& text) {
  return [text](Trial& trial) {
    const RawServer server([&](int connection) { RawServer::say(connection, text); });
    return whileServersAre(trial, server.url());
  };
}

Run stallingAfter(const std::string& text, const std::string& scheme = "http") {
  return [text, scheme](Trial& trial) {
    const auto limit = text.empty() && scheme == "http" ? wholeLimit : stallLimit;
    const RawServer server([&](int connection) {
      RawServer::say(connection, text);
      RawServer::fallSilent(connection);
    });
    return whileServersAre(trial, scheme + server.url().substr(4), limit);
  };
}

Run repeating(const std::string& begin, const std::string& part) {
  return [begin, part](Trial& trial) {
    const RawServer server([&](int connection) {
      RawServer::say(connection, begin);
      while (RawServer::say(connection, part)) {
      }
    });
    return whileServersAre(trial, server.url(), wholeLimit, true);
  };
}

// A listener that accepts no connection because its queue is full.
Seen fullListener(Trial& trial) {
  std::array<int, 4> sockets{};
  for (int& each : sockets) each = ::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK, 0);
  sockaddr_in address{.sin_family = AF_INET, .sin_port = 0, .sin_addr = {htonl(INADDR_LOOPBACK)}, .sin_zero = {}};
  socklen_t size = sizeof address;
  auto* const any = reinterpret_cast<sockaddr*>(&address);
  if (::bind(sockets[0], any, size) != 0 || ::listen(sockets[0], 0) != 0) throw std::runtime_error("no listener");
  ::getsockname(sockets[0], any, &size);
  for (const int waiting : std::span(sockets).subspan(1)) ::connect(waiting, any, size);
  Seen result = whileServersAre(trial, "http://127.0.0.1:" + std::to_string(ntohs(address.sin_port)) + "/");
  for (const int each : sockets) ::close(each);
  return result;
}

std::string deflated(const std::string& text) {
  std::string result(compressBound(text.size()), '\0');
  uLongf size = result.size();
  const auto* const from = reinterpret_cast<const Bytef*>(text.data());
  if (compress2(reinterpret_cast<Bytef*>(result.data()), &size, from, text.size(), 9) != Z_OK) std::abort();
  result.resize(size);
  return result;
}

// A configuration may be redirected; decisions and the token go only where the application directed them.
Seen redirectElsewhere(Trial& trial) {
  World world;
  ConsentServer elsewhere;
  elsewhere.serve(validConfiguration());
  const auto send = [&](const httplib::Request& request, httplib::Response& response) {
    response.set_redirect(elsewhere.url().substr(0, elsewhere.url().size() - 1) + request.path, 307);
  };
  world.server.onConfiguration(send);
  world.server.onUpload(send);
  world.start();
  trial.expect(world.sdk->acceptOrReject(true).get(), "the answer is not acknowledged");
  trial.expect(!elsewhere.seen(configurationPath).empty(), "the configuration's redirect is not followed");
  trial.expect(elsewhere.seen(uploadPath).empty(), "decisions went elsewhere");
  return seen(world, answerIn(world));
}

// The environment's proxy is used for all requests except loopback, and refuses.
Seen refusingProxy(Trial& trial) {
  const RawServer proxy([](int connection) {
    RawServer::say(connection, "HTTP/1.1 407 Proxy Authentication Required\r\nContent-Length: 0\r\n\r\n");
  });
  ::unsetenv("no_proxy");
  ::unsetenv("NO_PROXY");
  ::setenv("http_proxy", ("http://user:pass-word@" + proxy.url("").substr(7)).c_str(), 1);
  Seen result = whileServersAre(trial, "http://cdn.quillon.example/");
  trial.expect(result.log.find("pass-word") == std::string::npos, "the proxy's password is logged");
  return result;
}

// A new network namespace has its own loopback interface, which is down.
bool bringLoopbackUp() {
  const int socket = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  ifreq loopback{};
  std::strcpy(loopback.ifr_name, "lo");
  loopback.ifr_flags = IFF_UP;
  const bool isUp = ::ioctl(socket, SIOCSIFFLAGS, &loopback) == 0;
  ::close(socket);
  return isUp;
}

// In a network namespace whose name server receives every query and answers none.
Seen deadNameServer(Trial& trial) {
  const TemporaryFolder folder;
  setFileBytes(folder.path() / "resolv.conf", "nameserver 127.0.0.1\noptions timeout:20 attempts:3\n");
  setFileBytes(folder.path() / "nsswitch.conf", "hosts: dns\n");
  const auto replace = [&](const std::string& name) {
    return ::mount((folder.path() / name).c_str(), ("/etc/" + name).c_str(), nullptr, MS_BIND, nullptr) == 0;
  };
  if (::unshare(CLONE_NEWNS | CLONE_NEWNET) != 0 || ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
      !bringLoopbackUp() || !replace("resolv.conf") || !replace("nsswitch.conf")) {
    throw LeftOut("a network of its own needs the rights of root, outside of a changed root");
  }
  const int nameServer = ::socket(AF_INET, SOCK_DGRAM, 0);
  const sockaddr_in address{
      .sin_family = AF_INET, .sin_port = htons(53), .sin_addr = {htonl(INADDR_LOOPBACK)}, .sin_zero = {}};
  if (::bind(nameServer, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    throw std::runtime_error("no name server");
  }
  Seen result = whileServersAre(trial, "http://cdn.quillon.example/");

  World leaving;
  leaving.restart();
  auto options = leaving.options();
  options.cdnUrl = "http://cdn.quillon.example/";
  leaving.sdk->setup(options);
  char question[512];
  trial.expect(::recv(nameServer, question, sizeof question, 0) > 0, "the name server was not asked");
  const auto begin = Stopwatch::now();
  leaving.sdk.reset();
  leaving.platform = {};
  trial.expect(Stopwatch::now() - begin < 2s, "leaving waits for the name server");
  ::close(nameServer);
  return result;
}

// The location server stalls, and the configuration has one banner per location. The first start waits for it for a
// while, the next one briefly, and neither grants anything that the default banner does not.
Seen silentLocation(Trial& trial) {
  const RawServer silent(RawServer::fallSilent);
  World world;
  world.server.serve(configurationOfTwoLaws("US"));
  world.amend = [&](Platform& platform) {
    platform.clock = std::make_shared<LinuxClock>(std::make_shared<WorkPool>("timers", 1));
    platform.vendorUrl = silent.url();
  };
  auto options = world.options();
  options.locationCode.reset();
  for (const auto limit : {6s, 2s}) {
    world.restart();
    std::promise<void> ready;
    world.sdk->isReady([&](SDKStatus status) {
      if (status == SDKStatus::ready) ready.set_value();
    });
    const auto begin = Stopwatch::now();
    world.sdk->setup(options);
    ready.get_future().wait();
    trial.expect(Stopwatch::now() - begin < limit, "ready later than after " + std::to_string(limit.count()) + " s");
    trial.expect(world.sdk->get(1) == ConsentStatus::declined, "granted without a location");
    world.sdk->removeListeners();
  }
  world.sdk->close();
  return seen(world, "CURRENT_COMPLIANCE_TYPE=" + world.text(key::currentComplianceType).value_or("nothing"));
}

// An entity tag that cannot be sent back must not stop later requests.
Seen uselessTags(Trial& trial) {
  World world;
  std::size_t starts = 0;
  auto document = validConfiguration();
  for (const std::string tag : {"", " ", "\x01", "\"a\x7f\"", "\"fine\""}) {
    document["version"] = 10 + static_cast<int>(starts);
    world.server.onConfiguration([tag, body = boost::json::serialize(document)](const auto&, auto& response) {
      response.set_header("ETag", tag);
      response.set_content(body, "application/json");
    });
    world.startLater();
    world.restart();
    trial.expect(world.server.seen(configurationPath).size() == ++starts, "no request before the tag \"" + tag + "\"");
  }
  world.startLater();
  return seen(world, "version " + std::to_string(world.stored().integer(key::configurationVersion, 0)));
}

// Neither accepted (0) nor retryable (1).
Seen finalStatus(Trial& trial) {
  World world;
  world.server.onUpload(json(R"({"status":2,"message":"no"})"));
  world.start();
  world.sdk->acceptOrReject(true).wait();
  world.advance(24h);
  trial.expect(world.uploads().size() == 1, "what the server refused for good is sent again");
  world.restart();
  world.start();
  world.advance(24h);
  trial.expect(world.uploads().size() == 1, "the next run sends it again");
  world.sdk->set({.purposeId = 1}, ConsentStatus::declined);
  world.advance(2s);
  trial.expect(world.uploads().size() == 2, "a change is not sent");
  return seen(world);
}

// A token that occurs in every response.
Seen tokenInAnswer(Trial& trial) {
  World world;
  auto document = validConfiguration();
  document["x-auth-token"] = "status";
  world.server.serve(document);
  world.start();
  world.sdk->acceptOrReject(true).wait();
  world.settle();
  world.advance(10h);
  trial.expect(world.uploads().size() == 1, "an accepted upload is repeated");
  return seen(world);
}

Seen placeWithoutCountry(Trial& trial) {
  World world;
  auto options = world.options();
  options.locationCode = std::nullopt;
  world.server.serve(configurationOfTwoLaws("US"));
  for (const std::string country : {R"({"en":"US"})", R"({"en":""})", "{}", "null"}) {
    world.server.onLocation(located(country));
    world.startLater(options);
    trial.expect(world.sdk->isAllowed(1), "the known place is lost by " + country);
  }
  return seen(world, "CURRENT_COMPLIANCE_TYPE=" + world.text(key::currentComplianceType).value_or("nothing"));
}

// A row with useless servers: the cached configuration stays in use, and the answer stays pending.
Row useless(std::string_view name, std::string_view fault, std::string log, Run run) {
  return {name, fault, std::move(run), {"ready", std::move(log), "1=granted, to be uploaded"}};
}

// A device with silent buses starts, gets an answer and queries its camera. The buses may block none of this for long,
// and grant nothing.
Seen silentBus(Trial& trial) {
  const FalseBus bus("");
  ::setenv("DBUS_SESSION_BUS_ADDRESS", bus.address().c_str(), 1);
  ::setenv("DBUS_SYSTEM_BUS_ADDRESS", bus.address().c_str(), 1);
  World world;
  world.amend = [](Platform& platform) {
    platform.permissions = std::make_shared<LinuxPermissionSources>("com.example.reader");
  };
  const auto begin = Stopwatch::now();
  world.start();
  trial.expect(world.sdk->acceptOrReject(true).get(), "the answer is not acknowledged");
  const auto camera = world.sdk->checkConsentBy(VantariKey::cameraUsageDescription).get();
  trial.expect(world.sdk->get(VantariKey::cameraUsageDescription) == camera, "get() and checkConsentBy() disagree");
  Seen result = seen(world);
  world.sdk.reset();
  world.platform = {};
  trial.expect(Stopwatch::now() - begin < std::chrono::seconds(20), "a start, an answer and leaving took too long");
  result.log = world.log();
  world.amend = {};
  world.start();
  result.stored = seen(world).stored + " camera=" + std::string(rawValue(camera));
  return result;
}

}  // namespace

std::vector<Row> networkRows() {
  const std::string half = ok + "Content-Length: 100\r\n\r\n{\"version\": 7";
  const std::string bomb = deflated(std::string(std::size_t{64} << 20, ' '));
  return {
      useless("stall-connect", "the servers take no connection", "onnect", fullListener),
      // The server reads a client's hello, which never contains an empty line.
      useless("stall-tls", "the servers fall silent before the encryption is agreed on", "onnection tim",
              stallingAfter("", "https")),
      useless("stall-answer", "the servers fall silent before their answer", "Operation t", stallingAfter("")),
      useless("stall-headers", "the servers fall silent within the headers", "Operation t",
              stallingAfter(ok + "Content-")),
      useless("stall-body", "the servers fall silent after half the body", "Operation t", stallingAfter(half)),
      useless("half-body", "the servers hang up after half the body", "Failed to fetch CDN File: ", saying(half)),
      useless("half-chunk", "the servers hang up before the last chunk", "transfer closed with",
              saying(ok + "Transfer-Encoding: chunked\r\n\r\n2\r\n{}\r\n")),
      useless("no-http", "the servers speak another protocol", "HTTP/0.9", saying("SSH-2.0-OpenSSH_9.2\r\n")),
      useless("gigabyte", "the servers send a gigabyte that was not announced", "larger than allowed",
              repeating(ok + "\r\n", std::string(std::size_t{1} << 16, ' '))),
      useless("headers", "the servers send headers without end", "larger than allowed",
              repeating(ok, "X-More: " + std::string(1000, 'x') + "\r\n")),
      useless("bomb", "the servers send 64 KB that unfold to 64 MB", "larger than allowed",
              saying(ok + "Content-Encoding: deflate\r\nContent-Length: " + std::to_string(bomb.size()) + "\r\n\r\n" +
                     bomb)),
      useless("elsewhere", "the servers redirect to another one", "Failed with Status (307)", redirectElsewhere),
      useless("proxy", "the proxy of the environment refuses", "Failed with Status (407)", refusingProxy),
      useless("name-server", "the name server never answers", "imed out", deadNameServer),
      Row("location-stall", "the server of the location falls silent", silentLocation,
          {"ready", "Failed to current location", "CURRENT_COMPLIANCE_TYPE=opt-in"}),
      Row("silent-bus", "the message buses take connections and say nothing", silentBus,
          {"ready", "Something went wrong while fetching the permission status", "1=granted camera=not_determined"}),
      Row("tag-useless", "entity tags that are empty or cannot be sent", uselessTags, {"ready", "", "version 14"}),
      Row("status-final", "uploads are refused for good", finalStatus, {"ready", "", "1=declined"}),
      Row("place-nowhere", "a known place, then answers that name none", placeWithoutCountry,
          {"ready", "Failed to Decode CurrentLocationResponse", "CURRENT_COMPLIANCE_TYPE=opt-out"}),
      Row("token-in-answer", "the token is a word of every answer", tokenInAnswer),
  };
}

}  // namespace quillon::test
