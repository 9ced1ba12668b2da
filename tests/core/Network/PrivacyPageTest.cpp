// The page that says what leaves the device, beside what leaves it.
#include <gtest/gtest.h>

#include <algorithm>
#include <boost/json.hpp>
#include <fstream>
#include <regex>
#include <set>

#include "platform/memory/MemoryKeyStore.h"
#include "tests/support/World.h"

namespace quillon::test {
namespace {

// The names in the first column of the page's tables of fields.
std::set<std::string> namedOnPage() {
  std::ifstream page(QUILLON_PRIVACY_PAGE);
  std::set<std::string> names;
  bool isAmongFields = false;
  for (std::string line; std::getline(page, line);) {
    if (line.starts_with("## ")) isAmongFields = line == "## Fields";
    static const std::regex row("\\| `([A-Za-z_-]+)` \\|.*");
    if (std::smatch match; isAmongFields && std::regex_match(line, match, row)) names.insert(match[1]);
  }
  return names;
}

void addMembers(const boost::json::value& value, std::set<std::string>& names) {
  if (const auto* list = value.if_array()) {
    for (const auto& item : *list) addMembers(item, names);
  }
  if (const auto* object = value.if_object()) {
    for (const auto& [name, member] : *object) {
      names.insert(std::string(name));
      addMembers(member, names);
    }
  }
}

class Issuer final : public ReceiptIssuer {
  std::expected<std::string, std::string> issue(const ReceiptRequest&, KeyStore&, RandomSource&) override {
    return "{}";
  }
  std::expected<std::vector<ReceiptLine>, std::string> summary(std::string_view, const ReceiptWords&) override {
    return {};
  }
  std::expected<std::string, std::string> keyThumbprint(KeyStore&) override { return "thumbprint"; }
};

TEST(PrivacyPage, NamesEveryFieldThatLeavesTheDeviceAndNoOther) {
  World world;
  world.amend = [](Platform& platform) {
    platform.receipts = std::make_shared<Issuer>();
    platform.keys = std::make_shared<MemoryKeyStore>();
  };
  // It matters where one is.
  world.server.serve(boost::json::serialize(configurationOfTwoLaws("US")), "\"tag\"");
  world.server.onLocation(located(R"({"en": "DE"})"));
  auto options = world.options();
  options.locationCode.reset();
  world.start(options);
  ASSERT_TRUE(world.sdk->acceptOrReject(true).get());
  world.settle();
  world.startLater(options);

  std::set<std::string> sent, unseen{"upload", "location", "configuration"};
  for (const auto& request : world.server.seen()) {
    const bool isUpload = request.path.ends_with(uploadPath);
    unseen.erase(isUpload ? "upload" : request.path.ends_with(locationPath) ? "location" : "configuration");
    for (const auto& [name, value] : request.headers) {
      // What the server's library adds for its own use.
      if (!name.starts_with("REMOTE_") && !name.starts_with("LOCAL_")) sent.insert(name);
    }
    EXPECT_EQ(request.body.empty(), !isUpload) << request.path;
    if (isUpload) addMembers(boost::json::parse(request.body), sent);
  }
  EXPECT_TRUE(unseen.empty()) << *unseen.begin();
  EXPECT_EQ(sent, namedOnPage());
}

}  // namespace
}  // namespace quillon::test
