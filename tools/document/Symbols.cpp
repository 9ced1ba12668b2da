#include "tools/document/Symbols.h"

#include <cstddef>
#include <cstring>

#include "quillon/VantariKey.h"

namespace quillon::tools {

std::vector<std::string_view> symbolsOf(const JsonType& type) {
  std::vector<std::string_view> symbols;
  if (type.kind != JsonType::Kind::symbol || type.isOpen) return symbols;
  // Documents' enumerations have type int and count from zero.
  for (int number = 0; type.size == sizeof number; ++number) {
    alignas(int) std::byte value[sizeof number];
    std::memcpy(value, &number, sizeof number);
    const std::string_view text = type.text(value);
    if (text.empty()) break;
    symbols.push_back(text);
  }
  return symbols;
}

std::vector<std::string_view> knownPermissions() {
  static const auto keys = [] {
    std::vector<VantariKey> known;
    for (int i = 0; i < static_cast<int>(VantariKey::custom); ++i) known.emplace_back(static_cast<VantariKey::Case>(i));
    return known;
  }();
  std::vector<std::string_view> texts;
  for (const VantariKey& key : keys) texts.push_back(key.rawValue());
  return texts;
}

}  // namespace quillon::tools
