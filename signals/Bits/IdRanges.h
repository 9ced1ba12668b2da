// Encodings of ID sets: ranges with fixed-width or Fibonacci-coded numbers, and bit fields with one bit per ID.
#pragma once

#include <cstddef>
#include <cstdint>
#include <expected>
#include <string>
#include <vector>

#include "signals/Bits/BitReader.h"
#include "signals/Bits/BitWriter.h"

namespace quillon::signals {

// IDs of vendors, purposes, features or sections: ascending, without duplicates, from 1.
using Ids = std::vector<std::uint16_t>;

// The limit of IDs in all ranges of a string: twenty purposes restricted for fifty thousand vendors. It bounds memory,
// since a range of any length takes 33 bits only.
inline constexpr std::size_t mostIds = 1'000'000;

// The number of IDs that a reader may still expand.
struct IdBudget {
  std::size_t left = mostIds;
};

// Makes what was collected in any order ascending and free of duplicates.
void normalize(Ids& ids);

// @p count bits, the first one for ID 1.
[[nodiscard]] Ids readBitField(BitReader& bits, std::size_t count);
// No ID may exceed @p count.
void writeBitField(BitWriter& bits, const Ids& ids, std::size_t count);

// A count of entries, each a single ID or the first and last ID of a range.
[[nodiscard]] std::expected<Ids, std::string> readRanges(BitReader& bits, IdBudget& budget);
// Rejects sets that need more than 4095 entries.
[[nodiscard]] std::expected<void, std::string> writeRanges(BitWriter& bits, const Ids& ids);

// The largest ID, then ranges or a bit field, whichever is shorter.
[[nodiscard]] std::expected<Ids, std::string> readOptimizedRanges(BitReader& bits, IdBudget& budget);
void writeOptimizedRanges(BitWriter& bits, const Ids& ids);

// A count of entries, each a single ID or a range, as Fibonacci-coded differences.
[[nodiscard]] std::expected<Ids, std::string> readFibonacciRanges(BitReader& bits, IdBudget& budget);
[[nodiscard]] std::expected<void, std::string> writeFibonacciRanges(BitWriter& bits, const Ids& ids);

}  // namespace quillon::signals
