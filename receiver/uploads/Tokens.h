#pragma once

#include <cstdint>
#include <expected>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace quillon::receiver {

// The access tokens by which applications upload. Several may be good for one application at a time, so that a new one
// can be published while devices still hold the old one. A plain value.
class Tokens {
 public:
  // A file of lines "TENANT APPLICATION TOKEN"; empty lines and those that begin with # say nothing.
  [[nodiscard]] static std::expected<Tokens, std::string> read(const std::string& file);
  // Takes every token that is not empty, for the tenant "".
  [[nodiscard]] static Tokens any();

  struct Match {
    std::string tenant;
    std::size_t line = 0;  // which one it was, without saying it
  };
  // Takes as long whether the token is right, wrong, or nearly right.
  [[nodiscard]] const Match* find(std::string_view application, std::string_view token) const;

  [[nodiscard]] std::size_t size() const { return count_; }

 private:
  struct Token {
    std::string secret;
    Match match;
  };

  std::map<std::string, std::vector<Token>, std::less<>> byApplication_;
  std::size_t count_ = 0;
  bool takesAny_ = false;
  Match anybody_;
};

}  // namespace quillon::receiver
