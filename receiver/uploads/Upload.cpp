#include "receiver/uploads/Upload.h"

#include <array>
#include <utility>

namespace quillon::receiver {
namespace {

constexpr std::array<std::pair<Status, std::string_view>, 4> kStatusTexts{{{Status::granted, "granted"},
                                                                           {Status::declined, "declined"},
                                                                           {Status::notDetermined, "not_determined"},
                                                                           {Status::withdrawn, "withdrawn"}}};

}  // namespace

std::string_view textOf(Kind kind) noexcept {
  return kind == Kind::purpose ? "purpose" : "permission";
}

std::string_view textOf(Status status) noexcept {
  for (const auto& [known, text] : kStatusTexts) {
    if (known == status) return text;
  }
  return {};
}

std::optional<Status> statusOf(std::string_view text) noexcept {
  for (const auto& [status, known] : kStatusTexts) {
    if (known == text) return status;
  }
  return std::nullopt;
}

}  // namespace quillon::receiver
