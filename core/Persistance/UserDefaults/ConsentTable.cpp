#include "core/Persistance/UserDefaults/ConsentTable.h"

#include <utility>

namespace quillon {

PurposeState ConsentTable::purpose(std::int64_t id) const noexcept {
  return words_.read([id](const LatchedWords::Copy& copy) { return stateOf(copy, id); });
}

// While isStale is set, a purpose counts as undecided and the default is declined.
PurposeState ConsentTable::stateOf(const LatchedWords::Copy& copy, std::int64_t id) noexcept {
  const LatchedWords::Word header = copy.header.load(std::memory_order_acquire);
  const auto key = static_cast<LatchedWords::Key>(id);
  const auto isKey = [key](LatchedWords::Key found) { return found == key; };
  return {header, (header & ConsentWord::isStale) != 0 ? 0 : copy.numbers.find(LatchedWords::hashOf(key), isKey)};
}

std::vector<PurposeState> ConsentTable::purposes(std::span<const std::int64_t> ids) const {
  return words_.read([ids](const LatchedWords::Copy& copy) {
    std::vector<PurposeState> states;
    states.reserve(ids.size());
    for (const std::int64_t id : ids) states.push_back(stateOf(copy, id));
    return states;
  });
}

PermissionState ConsentTable::permission(std::string_view name) const noexcept {
  const auto [header, word] = words_.read([name](const LatchedWords::Copy& copy) {
    const auto isName = [name](LatchedWords::Key found) { return LatchedWords::nameOf(found) == name; };
    return std::pair(copy.header.load(std::memory_order_acquire), copy.names.find(LatchedWords::hashOf(name), isName));
  });
  PermissionState state;
  if ((header & ConsentWord::isStale) == 0) state.stored = PurposeState(header, word).decision();
  if ((header & ConsentWord::hasTerms) != 0) state.isListed = (word & ConsentWord::isListed) != 0;
  return state;
}

}  // namespace quillon
