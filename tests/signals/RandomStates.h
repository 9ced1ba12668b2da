// Random states of both formats that follow from their number, as in vectors/make-vectors.mjs.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>

#include "signals/Gpp/GppString.h"

namespace quillon::signals::test {

class Random {
 public:
  explicit Random(std::uint32_t number) : state_((number * 2654435761U) ^ 0x9e3779b9U) {
    if (state_ == 0) state_ = 1;
  }

  std::uint32_t below(std::uint32_t bound) {
    state_ ^= state_ << 13;
    state_ ^= state_ >> 17;
    state_ ^= state_ << 5;
    return state_ % bound;
  }

 private:
  std::uint32_t state_;
};

inline Ids randomSet(Random& random, std::int64_t count) {
  Ids ids;
  for (Ids::value_type id = 1; id <= count; ++id) {
    if (random.below(2) != 0) ids.push_back(id);
  }
  return ids;
}

// Few vendors far apart, ranges of them, every second one, or none.
inline Ids randomVendors(Random& random) {
  constexpr std::uint32_t kLargest[] = {300, 300, 300, 300, 2000, 65535};
  const auto kind = random.below(4);
  const auto largest = kLargest[random.below(6)];
  Ids ids;
  if (kind == 1) {
    for (auto left = random.below(20); left > 0; --left)
      ids.push_back(static_cast<Ids::value_type>(1 + random.below(largest)));
  } else if (kind == 2) {
    for (auto left = 1 + random.below(10); left > 0; --left) {
      const auto first = 1 + random.below(largest);
      const auto last = std::min(largest, first + random.below(40));
      for (auto id = first; id <= last; ++id) ids.push_back(static_cast<Ids::value_type>(id));
    }
  } else if (kind == 3) {
    ids = randomSet(random, 300);
  }
  normalize(ids);
  return ids;
}

inline std::vector<Restriction> randomRestrictions(Random& random) {
  std::vector<Restriction> restrictions;
  for (std::uint8_t purpose = 1; purpose <= 24; ++purpose) {
    if (random.below(24) > 0) continue;
    const auto type = static_cast<std::uint8_t>(random.below(3));
    auto ids = randomVendors(random);
    if (!ids.empty()) restrictions.push_back({purpose, type, std::move(ids)});
  }
  return restrictions;
}

// Integers of two bits are from 0 to 2, but for those that are named.
inline std::int64_t randomInteger(Random& random, const Field& field) {
  if (field.always) return *field.always;
  if (field.name == "IsServiceSpecific") return 1;
  if (field.name == "CmpId") return 2 + random.below(4094);
  if (field.name == "VendorListVersion") return 1 + random.below(4095);
  if (field.name == "TcfPolicyVersion") return 1 + random.below(63);
  if (field.name == "MspaCoveredTransaction") return 1 + random.below(2);
  return random.below(field.bits == 2 ? 3 : 1U << field.bits);
}

inline std::string randomLetters(Random& random, const Field& field) {
  constexpr std::string_view kLanguages[] = {"EN", "DE", "FR", "ES", "IT", "NL", "PL", "SV"};
  if (field.name == "ConsentLanguage") return std::string(kLanguages[random.below(8)]);
  std::string letters;
  for (unsigned i = 0; i < field.count; ++i) letters += static_cast<char>('A' + random.below(26));
  return letters;
}

inline Record randomRecord(Random& random, const Layout& layout) {
  Record record(layout);
  std::int64_t latestInteger = 0;
  for (std::size_t i = 0; i < layout.fields.size(); ++i) {
    const Field& field = layout.fields[i];
    FieldValue& value = record.values()[i];
    switch (field.kind) {
      case FieldKind::integer:
      case FieldKind::boolean:
        value = latestInteger = randomInteger(random, field);
        break;
      case FieldKind::time:
        value = (18262 + std::int64_t{random.below(5000)}) * 864'000;
        break;
      case FieldKind::letters:
        value = randomLetters(random, field);
        break;
      case FieldKind::set:
        value = randomSet(random, field.count);
        break;
      case FieldKind::sizedSet:
        value = randomSet(random, latestInteger);
        break;
      case FieldKind::values:
        for (auto& number : std::get<Numbers>(value)) number = static_cast<Numbers::value_type>(random.below(3));
        break;
      case FieldKind::vendors:
        value = randomVendors(random);
        break;
      case FieldKind::restrictions:
        value = randomRestrictions(random);
        break;
      case FieldKind::sections:
        break;
    }
  }
  return record;
}

inline TcString randomTcString(std::uint32_t number) {
  Random random(number);
  TcString tc;
  tc.core = randomRecord(random, tcCore);
  tc.disclosedVendors = randomRecord(random, tcDisclosedVendors);
  const bool hasPublisher = random.below(2) != 0;
  if (hasPublisher) tc.publisherTC = randomRecord(random, tcPublisher);
  return tc;
}

inline GppString randomGppString(std::uint32_t number) {
  Random random(number);
  GppString gpp;
  for (const auto& section : usSections()) {
    if (random.below(4) > 0) continue;
    UsString us(section);
    us.core = randomRecord(random, section.core);
    if (!section.subsection.fields.empty() && random.below(2) != 0) {
      us.subsection = randomRecord(random, section.subsection);
    }
    gpp.sections.emplace(section.id, std::move(us));
  }
  return gpp;
}

}  // namespace quillon::signals::test
