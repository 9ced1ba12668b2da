// Sets of IDs in bits: as ranges with fixed or Fibonacci-coded numbers, and as one bit for each ID.
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

// How many IDs all the ranges of a string may stand for: twenty purposes restricted for fifty thousand vendors. A range
// takes 33 bits however long it is.
inline constexpr std::size_t mostIds = 1'000'000;

// What a reader may still expand.
struct IdBudget {
  std::size_t left = mostIds;
};

// Makes what was collected in any order ascending and free of duplicates.
void normalize(Ids& ids);

// @p count bits, the first one for ID 1.
[[nodiscard]] Ids readBitField(BitReader& bits, std::size_t count);
// Every ID is at most @p count.
void writeBitField(BitWriter& bits, const Ids& ids, std::size_t count);

// A number of entries, each one ID or the first and last of several.
[[nodiscard]] std::expected<Ids, std::string> readRanges(BitReader& bits, IdBudget& budget);
// Refuses what takes more than 4095 entries.
[[nodiscard]] std::expected<void, std::string> writeRanges(BitWriter& bits, const Ids& ids);

// The largest ID, then ranges or a bit field, whichever is shorter.
[[nodiscard]] std::expected<Ids, std::string> readOptimizedRanges(BitReader& bits, IdBudget& budget);
void writeOptimizedRanges(BitWriter& bits, const Ids& ids);

// A number of entries, each one ID or several, told by Fibonacci-coded distances.
[[nodiscard]] std::expected<Ids, std::string> readFibonacciRanges(BitReader& bits, IdBudget& budget);
[[nodiscard]] std::expected<void, std::string> writeFibonacciRanges(BitWriter& bits, const Ids& ids);

}  // namespace quillon::signals
