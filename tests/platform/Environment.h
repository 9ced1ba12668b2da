// Environment variables changed by a test, restored when it ends.
#pragma once

#include <cstdlib>
#include <initializer_list>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace quillon::test {

class Environment {
 public:
  explicit Environment(std::initializer_list<const char*> names) {
    for (const char* name : names) {
      const char* value = getenv(name);
      before_.emplace_back(name, value == nullptr ? std::nullopt : std::optional<std::string>(value));
    }
  }
  Environment(const Environment&) = delete;
  Environment& operator=(const Environment&) = delete;
  ~Environment() {
    for (const auto& [name, value] : before_) {
      if (value) {
        setenv(name, value->c_str(), 1);
      } else {
        unsetenv(name);
      }
    }
  }

 private:
  std::vector<std::pair<const char*, std::optional<std::string>>> before_;
};

}  // namespace quillon::test
