// Whether a text contains a part; a failed expectation prints both.
#pragma once

#include <gtest/gtest.h>

#include <string_view>

namespace quillon::test {

inline ::testing::AssertionResult contains(std::string_view text, std::string_view part) {
  const bool found = text.find(part) != std::string_view::npos;
  return (found ? ::testing::AssertionSuccess() : ::testing::AssertionFailure()) << '"' << part << "\" in: " << text;
}

}  // namespace quillon::test
