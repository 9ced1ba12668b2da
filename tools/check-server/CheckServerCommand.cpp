#include "tools/check-server/CheckServerCommand.h"

#include <CLI/CLI.hpp>
#include <boost/json.hpp>
#include <cstdio>
#include <memory>
#include <random>
#include <string>

#include "core/Json/Codec.h"
#include "quillon/MainConfiguration.h"
#include "tools/check-server/Case.h"

namespace quillon::tools {
namespace {

constexpr auto kDescription =
    R"(Behaves as a device and as an awkward one, and tells what of docs/servers.md does not hold.

The exit status is 1 when a decision could be lost, made up or kept from the server for ever, 2 when something is only
slow or untidy, else 0. At most 200 requests are made. What stays behind are uploads in test mode, of subjects whose names
begin with "quillon-check-".)";

struct CheckOptions {
  CheckedServers servers;
  std::string traffic;
  std::string authorities;
};

// The token in the published configuration.
std::string publishedToken(Probe& probe, const CheckedServers& servers) {
  const auto answer = probe.send({.url = servers.configurationUrl("config.json")});
  const auto configuration = decode<MainConfiguration>(answer.body);
  return configuration ? configuration->token.value_or("") : "";
}

int check(CheckOptions options) {
  CheckedServers& servers = options.servers;
  servers.subject = "quillon-check-" + std::to_string(std::random_device()());
  Probe probe(options.traffic, options.authorities);
  if (servers.token.empty()) servers.token = publishedToken(probe, servers);
  if (servers.token.empty()) {
    std::fprintf(stderr, "quillon-consent check-server: the configuration has no token; give one with --token\n");
    return 1;
  }
  int losing = 0;
  int untidy = 0;
  int cases = 0;
  for (const auto& group : {configurationCases(), locationCases(), uploadCases(), refusalCases(), clientCases()}) {
    for (const Case& each : group) {
      const Seen seen = each.run(probe, servers);
      const bool isGrave = each.gravity == Case::Gravity::losesDecisions;
      ++cases;
      if (!seen.isRight) ++(isGrave ? losing : untidy);
      std::printf("%-8s %-46s expected: %-46s seen: %s\n",
                  seen.isRight ? "ok"
                  : isGrave    ? "LOSES"
                               : "untidy",
                  each.name, each.expected, seen.what.c_str());
      std::fflush(stdout);
    }
  }
  std::printf("%d cases, %d requests: %d could lose decisions, %d untidy\n", cases, probe.count(), losing, untidy);
  return losing > 0 ? 1 : untidy > 0 ? 2 : 0;
}

}  // namespace

void addCheckServerCommand(CLI::App& app, int& exitCode) {
  auto* const command = app.add_subcommand("check-server", "Checks servers of your own against what a device expects");
  command->footer(kDescription);
  const auto options = std::make_shared<CheckOptions>();
  CheckedServers& servers = options->servers;
  command->add_option("--app-url", servers.appUrl, "As ConsentSDKOptions::appUrl, ending in /")->required();
  command->add_option("--cdn-url", servers.cdnUrl, "As ConsentSDKOptions::cdnUrl, ending in /")->required();
  command->add_option("--tenant", servers.tenant, "Tenant of the configuration")->required();
  command->add_option("--app", servers.application, "Application of the configuration")->required();
  command->add_option("--token", servers.token, "Access token, when it is not the one that the configuration carries");
  command->add_option("--traffic", options->traffic, "File to write, with every exchange as one JSON object a line");
  command->add_option("--ca", options->authorities, "File of the authorities whose certificates are believed (PEM)");
  command->callback([options, &exitCode] { exitCode = check(*options); });
}

}  // namespace quillon::tools
