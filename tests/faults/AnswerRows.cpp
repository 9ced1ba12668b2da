// Complete responses with wrong content.
#include <boost/json.hpp>

#include "core/Persistance/UserDefaults/StoreKeys.h"
#include "tests/faults/Areas.h"
#include "tests/faults/Damage.h"
#include "tests/support/World.h"

namespace quillon::test {
namespace {

using namespace std::chrono_literals;

std::size_t asked(const World& world, std::string_view path) {
  return world.server.seen(path).size();
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
    trial.expect(asked(world, configurationPath) == ++starts, "no request after the tag before \"" + tag + "\"");
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
  trial.expect(asked(world, uploadPath) == 1, "what the server refused for good is sent again");
  world.restart();
  world.start();
  world.advance(24h);
  trial.expect(asked(world, uploadPath) == 1, "the next run sends it again");
  world.sdk->set({.purposeId = 1}, ConsentStatus::declined);
  world.advance(2s);
  trial.expect(asked(world, uploadPath) == 2, "a change is not sent");
  return seen(world);
}

// A token that occurs in every response.
Seen tokenInAnswer(Trial& trial) {
  World world;
  auto document = validConfiguration();
  document["x-auth-token"] = "status";
  world.server.serve(document);
  world.server.onUpload(json(saved));
  world.start();
  world.sdk->acceptOrReject(true).wait();
  world.settle();
  world.advance(10h);
  trial.expect(asked(world, uploadPath) == 1, "an accepted upload is repeated");
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

// First start, before the document is published.
Seen noDocumentYet(Trial& trial) {
  World world;
  world.server.onConfiguration(json("", 404));
  world.start();
  std::vector<std::size_t> tries;
  for (const auto step : {16s, 30s, 60s, 120s}) {
    world.advance(step);
    tries.push_back(asked(world, "config.json"));
  }
  trial.expect(tries == std::vector<std::size_t>{2, 3, 4, 5}, "not tried after 15 s and then twice as long each time");
  trial.expect(!world.sdk->isAllowed(1) && !world.sdk->isBannerDue(), "something is known from nowhere");
  world.server.serve(validConfiguration());
  world.advance(5min);
  return seen(world);
}

}  // namespace

std::vector<Row> answerRows() {
  return {
      {"tag-useless", "entity tags that are empty or cannot be sent", uselessTags, {"ready", "", "version 14"}},
      {"status-final", "uploads are refused for good", finalStatus, {"ready", "", "1=declined"}},
      {"token-in-answer", "the token is a word of every answer", tokenInAnswer, {"ready", "", "1=granted"}},
      {"place-nowhere",
       "a known place, then answers that name none",
       placeWithoutCountry,
       {"ready", "Failed to Decode CurrentLocationResponse", "CURRENT_COMPLIANCE_TYPE=opt-out"}},
      {"document-late",
       "the document is published after the first start",
       noDocumentYet,
       {"ready", "Failed with Status (404)", "1=nothing"}},
  };
}

}  // namespace quillon::test
