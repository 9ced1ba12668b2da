// Hostile documents are rejected in bounded time and memory.
#include <gtest/gtest.h>

#include <string>

#include "core/Json/Codec.h"
#include "tests/core/Configuration/CompleteDocuments.h"
#include "tests/support/Contains.h"
#include "tests/support/Effort.h"

namespace quillon {
namespace {

using test::contains;

constexpr std::size_t kMegabyte = std::size_t{1} << 20;

class HostileDocument : public ::testing::Test {
 protected:
  static std::string repeated(const std::string& text, std::size_t count) {
    std::string all;
    all.reserve(text.size() * count);
    for (std::size_t i = 0; i < count; ++i) all += text;
    return all;
  }

  static std::string errorOf(const std::string& json) {
    const auto record = decode<MainConfiguration>(json);
    return record ? "accepted" : record.error();
  }
};

TEST_F(HostileDocument, MayNest64LevelsAndNoMore) {
  const auto nested = [](std::size_t levels, const std::string& open, const std::string& close) {
    return R"({"x":)" + repeated(open, levels - 1) + "1" + repeated(close, levels - 1) + "}";
  };
  EXPECT_EQ(errorOf(nested(64, "[", "]")), "accepted");
  EXPECT_EQ(errorOf(nested(64, R"({"a":)", "}")), "accepted");
  EXPECT_TRUE(contains(errorOf(nested(65, "[", "]")), "too deep"));
  EXPECT_TRUE(contains(errorOf(nested(65, R"({"a":)", "}")), "too deep"));
  EXPECT_TRUE(contains(errorOf(R"({"x":)" + std::string(30 * kMegabyte, '[')), "too deep"));
}

TEST_F(HostileDocument, IsRefusedUnreadBeyond32Megabytes) {
  std::string json = R"({"id":"a"})";
  json.resize(32 * kMegabyte, ' ');
  EXPECT_EQ(errorOf(json), "accepted");
  EXPECT_EQ(errorOf(json + ' '), "document: larger than 32 MiB");
}

TEST_F(HostileDocument, IsRefusedWhenItsRecordsWouldTakeTooMuchMemory) {
  const std::string purposes = R"({"purposes":[{})" + repeated(",{}", 2'000'000) + "]}";
  EXPECT_TRUE(contains(errorOf(purposes), "takes more than 256 MiB"));

  std::string banners = R"({"banner_config":{"categories":{"":{})";
  for (int i = 0; i < 300'000; ++i) banners += ",\"" + std::to_string(i) + "\":{}";
  EXPECT_TRUE(contains(errorOf(banners + "}}}"), "takes more than 256 MiB"));
}

TEST_F(HostileDocument, MayHaveMillionsOfUnknownKeysButNoneTwice) {
  std::string json = R"({"id":"a")";
  constexpr int count = test::isSanitized ? 200'000 : 2'000'000;
  for (int i = 0; i < count; ++i) json += ",\"" + std::to_string(i) + "\":0";
  EXPECT_EQ(errorOf(json + "}"), "accepted");
  EXPECT_EQ(errorOf(json + ",\"7\":0}"), "document: duplicate key");
}

TEST_F(HostileDocument, MayHaveOneVeryLongNumberKeyOrText) {
  const std::string digits(4 * kMegabyte, '1');
  EXPECT_EQ(errorOf(R"({"x":)" + digits + "}"), "x: the number is out of range");
  EXPECT_EQ(errorOf(R"({"version":0.)" + digits + "}"), "version: expected an integer");
  EXPECT_EQ(errorOf(R"({")" + digits + R"(":"\n)" + digits + R"("})"), "accepted");
  EXPECT_LT(errorOf(R"({"i18n":{")" + digits + R"(":7}})").size(), 200U);
}

TEST_F(HostileDocument, IsRefusedWhereverItIsCutOff) {
  const std::string& complete = completeDocument<MainConfiguration>.json;
  for (std::size_t length = 0; length < complete.size(); ++length) {
    EXPECT_NE(errorOf(complete.substr(0, length)), "accepted") << length;
  }
}

}  // namespace
}  // namespace quillon
