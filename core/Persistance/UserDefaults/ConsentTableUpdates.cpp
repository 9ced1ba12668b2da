// Updates of the table.
#include <algorithm>
#include <charconv>
#include <iterator>
#include <utility>

#include "core/Persistance/UserDefaults/ConsentTable.h"
#include "core/Persistance/UserDefaults/StoreKeys.h"
#include "core/Persistance/UserDefaults/StoredValues.h"

namespace quillon {
namespace {

using Word = LatchedWords::Word;
using Bits = ConsentWord;

constexpr Word ofStore = Bits::declinesByDefault | Bits::hasLostEntries | Bits::isStale;
constexpr Word ofSignal = Bits::hasSignal | Bits::isSignalGiven | Bits::signalCoversAll;

LatchedWords::Edit decisionEdit(LatchedWords::Key key, std::optional<ConsentStatus> status) noexcept {
  const Word set = status ? Bits::isDecided | static_cast<Word>(*status) << Bits::statusShift : 0;
  return {key, Bits::isDecided | Bits::status, set};
}

// The purpose of a store key, if it is written as PurposeKey does.
std::optional<std::int64_t> purposeUnder(std::string_view key) noexcept {
  std::int64_t id = 0;
  const auto [end, error] = std::from_chars(key.data(), key.data() + key.size(), id);
  if (error != std::errc() || std::string_view(PurposeKey(id)) != key) return std::nullopt;
  return id;
}

std::vector<std::int64_t> listUnder(const SuiteEntries& entries, std::string_view key) {
  const auto entry = entries.find(key);
  const auto* list = entry == entries.end() ? nullptr : std::get_if<std::vector<std::int64_t>>(&entry->second);
  return list ? *list : std::vector<std::int64_t>();
}

// Adds the edits that move the bit from the purposes `before` to `members`; returns those sorted, without duplicates.
std::vector<std::int64_t> regrouped(const std::vector<std::int64_t>& before, Word bit,
                                    std::vector<std::int64_t> members, std::vector<LatchedWords::Edit>& edits) {
  std::ranges::sort(members);
  const auto repeated = std::ranges::unique(members);
  members.erase(repeated.begin(), repeated.end());
  std::vector<std::int64_t> differing;
  std::ranges::set_difference(before, members, std::back_inserter(differing));
  for (const auto id : differing) edits.push_back({static_cast<LatchedWords::Key>(id), bit, 0});
  differing.clear();
  std::ranges::set_difference(members, before, std::back_inserter(differing));
  for (const auto id : differing) edits.push_back({static_cast<LatchedWords::Key>(id), 0, bit});
  return members;
}

}  // namespace

LatchedWords::Key ConsentTable::nameKey(std::string_view name) {
  auto known = names_.find(name);
  if (known == names_.end()) known = names_.emplace(name).first;
  return reinterpret_cast<LatchedWords::Key>(&*known);
}

void ConsentTable::addDecision(LatchedWords::Change& change, std::string_view key, const SuiteEntries& entries) {
  const auto status = StoredValues(entries).consent(key);
  if (const auto id = purposeUnder(key)) {
    change.numbers.push_back(decisionEdit(static_cast<LatchedWords::Key>(*id), status));
  } else if ((status || names_.contains(key)) && !key::isReserved(key)) {
    change.names.push_back(decisionEdit(nameKey(key), status));
  }
}

template <class Show, class Otherwise>
void ConsentTable::show(Show show, Otherwise otherwise) noexcept {
  const std::scoped_lock lock(mutex_);
  try {
    show();
  } catch (...) {  // out of memory
    words_.apply({.header = otherwise(words_.header())});
  }
}

void ConsentTable::updateStored(const SuiteEntries& entries, const SuiteChanges* changes) noexcept {
  const auto store = [&] {
    LatchedWords::Change change;
    // After a failed update, `changes` is relative to content that the table lacks, so it is rebuilt.
    const bool isWhole = changes == nullptr || (words_.header() & Bits::isStale) != 0;
    if (isWhole) {
      for (const auto key : words_.keys(&LatchedWords::Copy::numbers)) change.numbers.push_back(decisionEdit(key, {}));
      for (const auto key : words_.keys(&LatchedWords::Copy::names)) change.names.push_back(decisionEdit(key, {}));
      for (const auto& [key, value] : entries) addDecision(change, key, entries);
    } else {
      for (const auto& [key, value] : *changes) addDecision(change, key, entries);
    }
    const auto regroup = [&](const Members& before, std::string_view key, Word bit) {
      if (!isWhole && !changes->contains(key)) return before;
      return regrouped(before, bit, listUnder(entries, key), change.numbers);
    };
    Members answered = regroup(answered_, key::answeredPurposesList, Bits::isAnswered);
    Members bound = regroup(boundByStore_, key::trackingPurposesList, Bits::isBoundByStore);
    const StoredValues stored(entries);
    change.header = words_.header() & ~ofStore;
    if (stored.complianceDefault() != ConsentStatus::granted) change.header |= Bits::declinesByDefault;
    if (stored.boolean(key::lostEntries)) change.header |= Bits::hasLostEntries;
    words_.apply(change);
    answered_ = std::move(answered);
    boundByStore_ = std::move(bound);
  };
  show(store, [](Word header) { return header | Bits::isStale | Bits::declinesByDefault; });
}

void ConsentTable::updateTerms(std::optional<Terms> terms) noexcept {
  const auto inForce = [&] {
    if (isClosed_) terms.reset();
    Terms shown = terms ? std::move(*terms) : Terms();
    LatchedWords::Change change;
    Members allowed = regrouped(allowed_, Bits::isAllowedByTerms, std::move(shown.allowedUndecided), change.numbers);
    Members bound = regrouped(boundByTerms_, Bits::isBoundByTerms, std::move(shown.boundToTracking), change.numbers);
    std::vector<LatchedWords::Key> listed;
    for (const auto key : listed_) change.names.push_back({key, Bits::isListed, 0});
    for (const auto& name : shown.permissions) {
      change.names.push_back({listed.emplace_back(nameKey(name)), 0, Bits::isListed});
    }
    change.header = terms ? words_.header() | Bits::hasTerms : words_.header() & ~Bits::hasTerms;
    words_.apply(change);
    allowed_ = std::move(allowed);
    boundByTerms_ = std::move(bound);
    listed_ = std::move(listed);
  };
  show(inForce, [](Word header) { return header & ~Bits::hasTerms; });
}

void ConsentTable::updateSignal(std::optional<Signal> signal) noexcept {
  const auto honoured = [&] {
    LatchedWords::Change change;
    Members listed = signal && signal->covered ? std::move(*signal->covered) : Members();
    Members covered = regrouped(covered_, Bits::isCoveredBySignal, std::move(listed), change.numbers);
    change.header = words_.header() & ~ofSignal;
    if (signal) change.header |= Bits::hasSignal;
    if (signal && signal->isGiven) change.header |= Bits::isSignalGiven;
    if (signal && !signal->covered) change.header |= Bits::signalCoversAll;
    words_.apply(change);
    covered_ = std::move(covered);
  };
  show(honoured, [](Word header) { return header | ofSignal; });
}

void ConsentTable::close() noexcept {
  const std::scoped_lock lock(mutex_);
  isClosed_ = true;
  words_.apply({.header = words_.header() & ~Bits::hasTerms});
}

}  // namespace quillon
