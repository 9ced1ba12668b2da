#include "ui/Common/Published.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace quillon::test {
namespace {

TEST(Published, AnnouncesBeforeItWritesToObserversThatMayEndAndBeginObservations) {
  Published<int> value(0);
  std::string heard;
  Observation late, second;
  Observation first = value.observe([&](int next) {
    heard += std::to_string(value.get()) + ">" + std::to_string(next) + " ";
    first = {};
    second = {};
    late = value.observe([&](int) { heard += "L"; });
  });
  second = value.observe([&](int) { heard += "2"; });
  const auto third = value.observe([&](int) { heard += "3"; });
  for (int i = 0; i < 2; ++i) value.set(1);
  EXPECT_EQ(heard, "0>1 33L");
  EXPECT_EQ(value.get(), 1);
}

TEST(Published, ObserverMayReleaseTheOwner) {
  auto owner = std::make_optional<Published<std::string>>("before");
  const auto observation = owner->observe([&](const std::string&) { owner.reset(); });
  bool heard = false;
  const auto other = owner->observe([&](const std::string&) { heard = true; });
  owner->set("after");
  EXPECT_FALSE(owner);
  EXPECT_TRUE(heard);
}

TEST(Published, ChangeMadeWhileAnotherIsAnnouncedTakesPrecedence) {
  Published<int> value(0);
  const auto first = value.observe([&](int next) {
    if (next == 1) value.set(7);
  });
  std::vector<int> heard;
  const auto second = value.observe([&](int next) { heard.push_back(next); });
  value.set(1);
  EXPECT_EQ(value.get(), 7);
  EXPECT_EQ(heard, std::vector<int>{7});
}

#if !defined(NDEBUG) && !defined(__SANITIZE_THREAD__)
TEST(PublishedDeathTest, AnotherThreadIsAnError) {
  Published<int> value(0);
  EXPECT_DEATH(std::thread([&] { value.set(1); }).join(), "isOwningThread");
}
#endif

}  // namespace
}  // namespace quillon::test
