#include <boost/asio/io_context.hpp>
#include <boost/asio/signal_set.hpp>
#include <boost/json.hpp>

#include "receiver/http/HttpServer.h"
#include "receiver/officer/OfficerCommands.h"
#include "receiver/officer/StatsPage.h"
#include "receiver/officer/StoreSession.h"

namespace quillon::receiver {
namespace {

namespace json = boost::json;

int print(DecisionStore& store) {
  const auto answers = store.answers();
  if (!answers) return failed(answers.error().text);
  for (const Answers& entry : *answers) {
    const json::object line{{"tenant", entry.tenant}, {"application", entry.application}, {entry.kind, entry.item},
                            {"place", entry.place},   {"version", entry.version},         {"day", entry.day * 86'400},
                            {"status", entry.status}, {"implicit", entry.isImplicit},     {"decisions", entry.count}};
    std::puts(json::serialize(line).c_str());
  }
  return std::fflush(stdout) == 0 ? 0 : failed("standard output cannot be written");
}

// Queries the store on every visit; the privacy officer can wait for it.
int servePage(DecisionStore& store, int port) {
  boost::asio::io_context context(1);
  HttpServer server(
      context, {.connections = 16}, [&store](const HttpRequest& request, const HttpServer::Respond& respond) {
        // Rejects DNS rebinding: a foreign page whose host name resolves to this address.
        const std::string_view host = request.header("Host");
        const bool isOurs = host.starts_with("127.0.0.1:") || host.starts_with("localhost:");
        if (request.method != "GET" || request.path != "/" || !isOurs) {
          return respond({.status = 404, .body = "not found\n", .type = "text/plain"});
        }
        const auto answers = store.answers();
        if (!answers) return respond({.status = 503, .body = "the store does not answer\n", .type = "text/plain"});
        respond({.body = statsPage(*answers),
                 .type = "text/html; charset=utf-8",
                 .headers = {{"Content-Security-Policy", "default-src 'none'; style-src 'unsafe-inline'"}}});
      });
  const auto address = server.listen("127.0.0.1:" + std::to_string(port));
  if (!address) return failed(address.error());
  std::printf("listening on http://%s/\n", address->c_str());
  std::fflush(stdout);
  boost::asio::signal_set signals(context, SIGTERM, SIGINT);
  signals.async_wait(
      [&](boost::system::error_code, int) { server.stop(std::chrono::seconds(1), [&context] { context.stop(); }); });
  context.run();
  return 0;
}

}  // namespace

void addStatsCommand(CLI::App& app, int& exitCode) {
  auto* const command =
      app.add_subcommand("stats", "Count the decisions by purpose, place, version and day, as JSON lines");
  struct Options {
    std::string store;
    int port = -1;
  };
  const auto options = std::make_shared<Options>();
  command->add_option("--store", options->store, "Folder, or postgresql://…")->required();
  command->add_option("--page", options->port, "Serve a page with plots on this port of 127.0.0.1; 0 takes a free one")
      ->check(CLI::Range(0, 65535));
  command->callback([options, &exitCode] {
    exitCode = withStore(options->store, [&](DecisionStore& store) {
      return options->port < 0 ? print(store) : servePage(store, options->port);
    });
  });
}

}  // namespace quillon::receiver
