#include "receiver/service/ServeCommand.h"

#include <sys/resource.h>

#include <CLI/CLI.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/signal_set.hpp>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include "receiver/http/HttpServer.h"
#include "receiver/service/EventLog.h"
#include "receiver/service/Metrics.h"
#include "receiver/service/Receiver.h"
#include "receiver/store/CommitQueue.h"
#include "receiver/store/DecisionStore.h"
#include "receiver/uploads/Tokens.h"

namespace quillon::receiver {
namespace {

// Within the five seconds allowed for exiting.
constexpr std::chrono::milliseconds kLeavesWithin{4000};

struct ServeOptions {
  std::string store;
  std::string listen = "127.0.0.1:8090";
  std::string tokens;
  bool takesAnyToken = false;
  // One writer batches everything that arrived during its previous commit. Faster than several, which wait for each
  // other in the database's log.
  int writers = 1;
  HttpServer::Limits limits;
  Receiver::Options receiver;
};

int fail(const std::string& message) {
  std::fprintf(stderr, "quillon-receiver: %s\n", message.c_str());
  return 1;
}

void raiseDescriptorLimit() {
  rlimit limit{};
  if (getrlimit(RLIMIT_NOFILE, &limit) != 0) return;
  limit.rlim_cur = limit.rlim_max;
  setrlimit(RLIMIT_NOFILE, &limit);
}

class Service {
 public:
  Service(const ServeOptions& options, Tokens tokens)
      : options_(options),
        queue_([store = options.store] { return openStore(store); }, isPostgres(options.store) ? options.writers : 1,
               {.committed = [this](auto uploads, auto decisions, auto fresh,
                                    auto time) { metrics_.committed(uploads, decisions, fresh, time); },
                .lost =
                    [this](const std::string& text) {
                      metrics_.storeLost();
                      log_.write("store lost", {{"reason", text}});
                    },
                .opened = [this] { log_.write("store opened"); }}),
        receiver_(options.receiver, std::move(tokens), queue_, metrics_, log_),
        server_(context_, options.limits,
                [this](HttpRequest request, HttpServer::Respond respond) {
                  receiver_.handle(std::move(request), std::move(respond), server_);
                },
                {.refused = [this](int status) { metrics_.answered(status); }}) {}

  int run() {
    const auto address = server_.listen(options_.listen);
    if (!address) return fail(address.error());
    log_.write("listening", {{"address", *address}});
    waitForSignal();
    context_.run();
    if (server_.connections() > 0) {
      // Delayed by the store. They were not acknowledged, so devices send them again.
      log_.write("left", {{"unanswered", server_.connections()}});
      std::_Exit(0);
    }
    queue_.finish();
    log_.write("ended");
    return 0;
  }

 private:
  void waitForSignal() {
    signals_.async_wait([this](boost::system::error_code error, int signal) {
      if (error) return;
      if (signal == SIGHUP) {
        readTokens();
        return waitForSignal();
      }
      log_.write("ending", {{"signal", signal}});
      server_.stop(kLeavesWithin, [this] { context_.stop(); });
    });
  }

  void readTokens() {
    if (options_.takesAnyToken) return;
    auto tokens = Tokens::read(options_.tokens);
    if (!tokens) return log_.write("tokens kept", {{"reason", tokens.error()}});
    log_.write("tokens read", {{"count", tokens->size()}});
    receiver_.replaceTokens(*std::move(tokens));
  }

  const ServeOptions& options_;
  EventLog log_;
  Metrics metrics_;
  boost::asio::io_context context_{1};
  boost::asio::signal_set signals_{context_, SIGTERM, SIGINT, SIGHUP};
  CommitQueue queue_;
  Receiver receiver_;
  HttpServer server_;
};

int serve(const ServeOptions& options) {
  if (options.tokens.empty() != options.takesAnyToken) {
    return fail("give --tokens FILE, or --any-token where nobody else can reach it");
  }
  auto tokens = options.takesAnyToken ? Tokens::any() : Tokens::read(options.tokens);
  if (!tokens) return fail(tokens.error());
  raiseDescriptorLimit();
  return std::make_unique<Service>(options, *std::move(tokens))->run();
}

}  // namespace

void addServeOptions(CLI::App& app, int& exitCode) {
  const auto options = std::make_shared<ServeOptions>();
  app.add_option("--store", options->store, "Folder for a SQLite database, or postgresql://…");
  app.add_option("--listen", options->listen, "IP address and port; port 0 takes a free one")->capture_default_str();
  app.add_option("--tokens", options->tokens, "File of lines TENANT APPLICATION TOKEN, read again on SIGHUP");
  app.add_flag("--any-token", options->takesAnyToken, "Take uploads with any token: for development");
  app.add_option("--writers", options->writers,
                 "Connections to PostgreSQL that commit; more where the server is far away")
      ->check(CLI::Range(1, 64))
      ->capture_default_str();
  app.add_option("--connections", options->limits.connections, "Connections of clients at a time")
      ->check(CLI::Range(1, 1'000'000))
      ->capture_default_str();
  app.add_option("--place-header", options->receiver.placeHeader,
                 "Header in which the proxy in front tells a device's place, such as a country's code");
  app.add_flag("--log-requests", options->receiver.logsEveryRequest, "Log every request, not only refused uploads");
  app.callback([&app, options, &exitCode] {
    if (!app.get_subcommands().empty()) return;
    if (options->store.empty()) throw CLI::RequiredError("--store");
    exitCode = serve(*options);
  });
}

}  // namespace quillon::receiver
