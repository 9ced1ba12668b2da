#include "receiver/uploads/Tokens.h"

#include <fstream>
#include <sstream>

namespace quillon::receiver {
namespace {

// Takes time that depends only on the length of what was sent.
bool areEqual(std::string_view sent, std::string_view secret) {
  unsigned difference = sent.size() != secret.size();
  for (std::size_t i = 0; i < sent.size(); ++i) {
    difference |= static_cast<unsigned char>(sent[i]) ^ static_cast<unsigned char>(secret[i % secret.size()]);
  }
  volatile unsigned result = difference;  // prevents the compiler from ending the loop early
  return result == 0;
}

}  // namespace

std::expected<Tokens, std::string> Tokens::read(const std::string& file) {
  std::ifstream stream(file);
  if (!stream) return std::unexpected(file + ": cannot be read");
  Tokens tokens;
  std::string line;
  for (std::size_t number = 1; std::getline(stream, line); ++number) {
    std::istringstream words(line);
    std::string tenant;
    std::string application;
    std::string secret;
    std::string more;
    if (!(words >> tenant) || tenant.starts_with('#')) continue;
    if (!(words >> application >> secret) || words >> more) {
      return std::unexpected(file + ":" + std::to_string(number) + ": expected TENANT APPLICATION TOKEN");
    }
    tokens.byApplication_[application].push_back({secret, {tenant, number}});
    ++tokens.count_;
  }
  if (stream.bad()) return std::unexpected(file + ": cannot be read to its end");
  if (tokens.count_ == 0) return std::unexpected(file + ": holds no token");
  return tokens;
}

Tokens Tokens::any() {
  Tokens tokens;
  tokens.takesAny_ = true;
  return tokens;
}

const Tokens::Match* Tokens::find(std::string_view application, std::string_view token) const {
  if (token.empty()) return nullptr;
  if (takesAny_) return &anybody_;
  const Match* match = nullptr;
  const auto known = byApplication_.find(application);
  if (known == byApplication_.end()) return nullptr;
  for (const Token& candidate : known->second) {
    if (areEqual(token, candidate.secret)) match = &candidate.match;
  }
  return match;
}

}  // namespace quillon::receiver
