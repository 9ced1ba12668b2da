#include "platform/memory/FixedHostApplication.h"

#include <utility>

namespace quillon {
namespace {

std::optional<std::string> find(const FixedHostApplication::Texts& texts, std::string_view key) {
  const auto found = texts.find(key);
  if (found == texts.end()) return std::nullopt;
  return found->second;
}

}  // namespace

FixedHostApplication::FixedHostApplication(Description description) : description_(std::move(description)) {}

std::optional<std::string> FixedHostApplication::componentVersion(std::string_view identifier) const {
  return find(description_.componentVersions, identifier);
}

std::optional<std::string> FixedHostApplication::information(std::string_view key) const {
  return find(description_.information, key);
}

std::string FixedHostApplication::localized(std::string_view key, std::string_view /*comment*/) const {
  return find(description_.translations, key).value_or(std::string(key));
}

std::optional<std::string> FixedHostApplication::resource(std::string_view name, std::string_view extension) const {
  return find(description_.resources, std::string(name) + '.' + std::string(extension));
}

std::string FixedHostApplication::deviceDescription() const {
  return description_.device;
}

}  // namespace quillon
