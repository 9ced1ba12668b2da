// Our strings beside those of the IAB's own encoders.
#include <gtest/gtest.h>

#include <fstream>

#include "core/Text/Sha256.h"
#include "tests/signals/RandomStates.h"
#include "tests/support/Effort.h"

namespace quillon::signals::test {
namespace {

constexpr std::uint32_t kInBlock = 1000;
// A sanitized encoder takes fifty times as long, so it makes the first of them alone.
constexpr std::uint32_t kStates = quillon::test::isSlowed ? 2'000 : 50'000;

// Compares all states of a format with its file: first strings, then a sum for each block of them.
template <class F>
void compare(const std::string& file, const F& stringOf) {
  std::ifstream lines(QUILLON_SIGNAL_VECTORS + ("/" + file));
  ASSERT_TRUE(lines) << file;
  std::string line;
  std::uint32_t inFull = 0;
  for (; std::getline(lines, line) && !line.starts_with("sha256 "); ++inFull) {
    ASSERT_EQ(stringOf(inFull), line) << "state " << inFull;
  }
  EXPECT_GE(inFull, 100U);
  for (std::uint32_t state = 0; state < kStates;) {
    std::string block;
    for (const auto end = state + kInBlock; state < end; ++state) block += stringOf(state) + '\n';
    ASSERT_EQ("sha256 " + sha256(block), line) << "a state before " << state;
    std::getline(lines, line);
  }
  EXPECT_TRUE(lines.eof() || quillon::test::isSlowed);
}

TEST(EncodersTest, TcStringsAreThoseOfTheReferenceEncoderAndAreReadBack) {
  compare("tcf.txt", [](std::uint32_t state) {
    const auto tc = randomTcString(state);
    const auto text = encode(tc).value();
    EXPECT_EQ(decodeTcString(text), tc) << text;
    return text;
  });
}

TEST(EncodersTest, GppStringsAreThoseOfTheReferenceEncoderAndAreReadBack) {
  compare("gpp.txt", [](std::uint32_t state) {
    const auto gpp = randomGppString(state);
    const auto text = encode(gpp).value();
    EXPECT_EQ(decodeGppString(text), gpp) << text;
    return text;
  });
}

}  // namespace
}  // namespace quillon::signals::test
