#pragma once

#include <cstdint>
#include <expected>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace quillon::receiver {

// The applications' access tokens. An application may have several valid ones, so that a new token can be published
// while devices still use the old one. A plain value.
class Tokens {
 public:
  // Reads lines "TENANT APPLICATION TOKEN"; empty lines and lines that begin with # are ignored.
  [[nodiscard]] static std::expected<Tokens, std::string> read(const std::string& file);
  // Accepts every non-empty token, for the tenant "".
  [[nodiscard]] static Tokens any();

  struct Match {
    std::string tenant;
    std::size_t line = 0;  // identifies the token without disclosing it
  };
  // Constant time: independent of whether the token is right, wrong, or nearly right.
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
