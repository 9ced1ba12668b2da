#pragma once

#include <expected>
#include <string>

namespace quillon::signals::test {

// Why there is no value; "none" when there is one.
template <class T>
std::string errorOf(const std::expected<T, std::string>& result) {
  return result ? "none" : result.error();
}

}  // namespace quillon::signals::test
