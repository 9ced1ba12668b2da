#include "core/Persistance/UserDefaults/LatchedWords.h"

#include <algorithm>
#include <bit>
#include <string>
#include <utility>

namespace quillon {
namespace {

constexpr std::size_t smallestCapacity = 16;

std::size_t hashOfNumber(LatchedWords::Key key) {
  return LatchedWords::hashOf(key);
}

std::size_t hashOfName(LatchedWords::Key key) {
  return LatchedWords::hashOf(LatchedWords::nameOf(key));
}

}  // namespace

// One of the indices of a copy.
struct LatchedWords::Part {
  Index Copy::* index;
  Hash hash;
};

// The rehashing, in both copies, of an index that is too full for its edits.
struct LatchedWords::Renewal {
  bool isNeeded = false;
  std::vector<Edit> words;                     // all
  std::array<Index::Slot*, 2> grown{nullptr};  // null: the arrays are large enough and are cleared
};

LatchedWords::LatchedWords() {
  for (Copy& copy : copies_) {
    for (Index* index : {&copy.numbers, &copy.names}) index->slots_ = makeSlots(smallestCapacity);
  }
}

LatchedWords::Index::Slot* LatchedWords::makeSlots(std::size_t capacity) {
  const auto& slots = kept_.emplace_back(std::make_unique<Index::Slot[]>(1 + capacity));
  slots[0].key = capacity - 1;
  return slots.get();
}

std::vector<LatchedWords::Key> LatchedWords::keys(Index Copy::* index) const {
  std::vector<Key> keys;
  const Index::Slot* const slots = (inUse().*index).slots_.load();
  for (std::size_t at = slots->key + 1; at > 0; --at) {
    if ((slots[at].word & ~Index::taken) != 0) keys.push_back(slots[at].key);
  }
  return keys;
}

LatchedWords::Renewal LatchedWords::renewalFor(const Part& part, const std::vector<Edit>& edits) {
  Renewal renewal;
  const Index& index = inUse().*part.index;
  const auto word = [&](Key key) { return index.find(part.hash(key), [key](Key found) { return found == key; }); };
  const auto added = static_cast<std::size_t>(
      std::ranges::count_if(edits, [&](const Edit& edit) { return edit.set != 0 && word(edit.key) == 0; }));
  const std::size_t capacity = index.mask() + 1;
  if (index.used_ + added <= capacity - capacity / 4) return renewal;
  renewal.isNeeded = true;
  for (const Key key : keys(part.index)) renewal.words.push_back({key, 0, word(key)});
  const std::size_t wanted = std::bit_ceil(2 * (renewal.words.size() + added));
  if (wanted <= capacity) return renewal;
  for (auto& grown : renewal.grown) grown = makeSlots(wanted);
  return renewal;
}

void LatchedWords::apply(const Change& change) {
  static constexpr std::array parts{Part{&Copy::numbers, hashOfNumber}, Part{&Copy::names, hashOfName}};
  const std::array edits{&change.numbers, &change.names};
  std::array<Renewal, 2> renewals;
  for (std::size_t i = 0; i < parts.size(); ++i) {
    if (!edits[i]->empty()) renewals[i] = renewalFor(parts[i], *edits[i]);
  }

  const auto write = [&](std::size_t place) {
    Copy& copy = copies_[place];
    for (std::size_t i = 0; i < parts.size(); ++i) {
      Index& index = copy.*parts[i].index;
      if (renewals[i].isNeeded) index.renew(renewals[i].grown[place]);
      for (const Edit& edit : renewals[i].words) index.edit(parts[i].hash, edit);
      for (const Edit& edit : *edits[i]) index.edit(parts[i].hash, edit);
    }
    copy.header.store(change.header, std::memory_order_release);
  };
  const auto turn = turn_.load(std::memory_order_relaxed);
  write((turn + 1) & 1);
  turn_.store(turn + 1, std::memory_order_release);
  // These stores release, too: a reader that sees one of them also sees the new turn, and retries.
  write(turn & 1);
}

void LatchedWords::Index::renew(Slot* grown) noexcept {
  used_ = 0;
  if (grown != nullptr) {
    slots_.store(grown, std::memory_order_release);
    return;
  }
  // The keys stay: a reader may still follow them.
  Slot* const slots = slots_.load(std::memory_order_relaxed);
  for (std::size_t at = mask() + 1; at > 0; --at) slots[at].word.store(0, std::memory_order_release);
}

void LatchedWords::Index::edit(Hash hash, const Edit& edit) noexcept {
  Slot* const slots = slots_.load(std::memory_order_relaxed);
  for (std::size_t at = hash(edit.key);; ++at) {
    Slot& slot = slots[1 + (at & mask())];
    const Word word = slot.word.load(std::memory_order_relaxed);
    if (word == 0) {
      if (edit.set == 0) return;
      ++used_;
      slot.key.store(edit.key, std::memory_order_release);
    } else if (slot.key.load(std::memory_order_relaxed) != edit.key) {
      continue;
    }
    slot.word.store((word & ~edit.cleared) | edit.set | taken, std::memory_order_release);
    return;
  }
}

}  // namespace quillon
