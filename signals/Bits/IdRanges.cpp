#include "signals/Bits/IdRanges.h"

#include <algorithm>
#include <array>
#include <bit>
#include <limits>
#include <numeric>

namespace quillon::signals {
namespace {

constexpr unsigned kIdBits = 16;
constexpr unsigned kCountBits = 12;
constexpr std::size_t kMostEntries = (1U << kCountBits) - 1;
constexpr std::size_t kLargestId = std::numeric_limits<Ids::value_type>::max();

struct Range {
  std::size_t first;
  std::size_t last;
};

std::vector<Range> rangesOf(const Ids& ids) {
  std::vector<Range> ranges;
  for (const std::size_t id : ids) {
    if (ranges.empty() || id != ranges.back().last + 1) {
      ranges.push_back({id, id});
    } else {
      ranges.back().last = id;
    }
  }
  return ranges;
}

// The standard requires the shorter form. The IAB's reference encoder estimates it, a few bits off near the break-even
// point; the same estimate is used here, so that equal consents make equal strings everywhere.
bool areShorter(const std::vector<Range>& ranges, std::size_t largest) {
  constexpr std::size_t kTooSmall = 45;
  constexpr std::size_t kAllowance = 4;
  std::size_t bits = 0;
  for (const auto& range : ranges) bits += range.first == range.last ? kIdBits : 1 + 2 * kIdBits;
  return largest > kTooSmall && bits < largest + kAllowance;
}

void write(BitWriter& bits, const std::vector<Range>& ranges) {
  bits.write(ranges.size(), kCountBits);
  for (const auto& range : ranges) {
    bits.write(range.first != range.last, 1);
    bits.write(range.first, kIdBits);
    if (range.first != range.last) bits.write(range.last, kIdBits);
  }
}

// Validates a range and charges the budget for it.
std::expected<void, std::string> check(Range range, IdBudget& budget) {
  if (range.first == 0) return std::unexpected("the ID 0 does not exist");
  if (range.last < range.first) return std::unexpected("a range ends before it begins");
  if (range.last > kLargestId) return std::unexpected("an ID is larger than 65535");
  const std::size_t count = range.last - range.first + 1;
  if (count > budget.left) return std::unexpected("the ranges stand for more than a million IDs");
  budget.left -= count;
  return {};
}

void append(Ids& ids, Range range) {
  const auto count = static_cast<std::ptrdiff_t>(range.last - range.first + 1);
  ids.resize(ids.size() + static_cast<std::size_t>(count));
  std::iota(ids.end() - count, ids.end(), static_cast<Ids::value_type>(range.first));
}

std::unexpected<std::string> cutOff() {
  return std::unexpected(std::string("the text ends too early"));
}

// 1, 2, 3, 5, ... up to the largest number needed for an ID.
constexpr auto fibonacciNumbers = [] {
  std::array<std::size_t, 23> numbers{1, 2};
  for (std::size_t i = 2; i < numbers.size(); ++i) numbers[i] = numbers[i - 1] + numbers[i - 2];
  return numbers;
}();

// A sum of non-adjacent Fibonacci numbers, smallest first, terminated by the bits 11. An error for a number that is
// larger than any ID.
std::expected<std::size_t, std::string> readFibonacci(BitReader& bits) {
  std::size_t value = 0;
  bool previous = false;
  for (const std::size_t number : fibonacciNumbers) {
    const bool bit = bits.read(1) != 0;
    if (bits.isPastEnd()) return cutOff();
    if (bit && previous) return value;
    if (bit) value += number;
    previous = bit;
  }
  if (previous && bits.read(1) != 0) return value;
  return std::unexpected("a Fibonacci-coded number is larger than any ID");
}

void writeFibonacci(BitWriter& bits, std::size_t value) {
  std::uint64_t code = 1;  // the terminating bit; the number's bits go in front of it
  unsigned count = 1;
  for (std::size_t i = fibonacciNumbers.size(); i-- > 0;) {
    const bool isPart = fibonacciNumbers[i] <= value;
    if (isPart) value -= fibonacciNumbers[i];
    if (!isPart && count == 1) continue;
    if (isPart) code |= std::uint64_t{1} << count;
    ++count;
  }
  bits.write(code, count);
}

}  // namespace

void normalize(Ids& ids) {
  std::ranges::sort(ids);
  ids.erase(std::ranges::unique(ids).begin(), ids.end());
}

Ids readBitField(BitReader& bits, std::size_t count) {
  Ids ids;
  for (std::size_t done = 0; done < count && !bits.isPastEnd();) {
    const auto width = static_cast<unsigned>(std::min<std::size_t>(64, count - done));
    for (std::uint64_t word = bits.read(width) << (64 - width); word != 0;) {
      const int zeros = std::countl_zero(word);
      ids.push_back(static_cast<Ids::value_type>(done + static_cast<std::size_t>(zeros) + 1));
      word &= ~(std::uint64_t{1} << (63 - zeros));
    }
    done += width;
  }
  return ids;
}

void writeBitField(BitWriter& bits, const Ids& ids, std::size_t count) {
  auto id = ids.begin();
  for (std::size_t done = 0; done < count;) {
    const auto width = static_cast<unsigned>(std::min<std::size_t>(48, count - done));
    std::uint64_t word = 0;
    for (; id != ids.end() && *id <= done + width; ++id) word |= std::uint64_t{1} << (done + width - *id);
    bits.write(word, width);
    done += width;
  }
}

std::expected<Ids, std::string> readRanges(BitReader& bits, IdBudget& budget) {
  std::vector<Range> ranges(bits.read(kCountBits));
  for (auto& range : ranges) {
    const bool isRange = bits.read(1) != 0;
    range.first = static_cast<std::size_t>(bits.read(kIdBits));
    range.last = isRange ? static_cast<std::size_t>(bits.read(kIdBits)) : range.first;
    if (bits.isPastEnd()) return cutOff();
    if (const auto checked = check(range, budget); !checked) return std::unexpected(checked.error());
  }
  if (bits.isPastEnd()) return cutOff();
  // Other encoders may write IDs unordered or in overlapping ranges.
  std::ranges::sort(ranges, {}, &Range::first);
  Ids ids;
  for (auto range : ranges) {
    if (!ids.empty()) range.first = std::max<std::size_t>(range.first, ids.back() + 1U);
    if (range.first <= range.last) append(ids, range);
  }
  return ids;
}

std::expected<void, std::string> writeRanges(BitWriter& bits, const Ids& ids) {
  const auto ranges = rangesOf(ids);
  if (ranges.size() > kMostEntries) return std::unexpected("takes more than 4095 ranges");
  write(bits, ranges);
  return {};
}

std::expected<Ids, std::string> readOptimizedRanges(BitReader& bits, IdBudget& budget) {
  const auto largest = static_cast<std::size_t>(bits.read(kIdBits));
  const bool areRanges = bits.read(1) != 0;
  std::expected<Ids, std::string> ids = areRanges ? readRanges(bits, budget) : readBitField(bits, largest);
  if (!ids) return ids;
  if (bits.isPastEnd()) return cutOff();
  if (!ids->empty() && ids->back() > largest) return std::unexpected("an ID is larger than MaxVendorId");
  return ids;
}

void writeOptimizedRanges(BitWriter& bits, const Ids& ids) {
  const std::size_t largest = ids.empty() ? 0 : ids.back();
  const auto ranges = rangesOf(ids);
  const bool areRanges = ranges.size() <= kMostEntries && areShorter(ranges, largest);
  bits.write(largest, kIdBits);
  bits.write(areRanges, 1);
  if (areRanges) {
    write(bits, ranges);
  } else {
    writeBitField(bits, ids, largest);
  }
}

std::expected<Ids, std::string> readFibonacciRanges(BitReader& bits, IdBudget& budget) {
  Ids ids;
  std::size_t last = 0;
  const auto count = bits.read(kCountBits);
  for (std::uint64_t i = 0; i < count; ++i) {
    const bool isRange = bits.read(1) != 0;
    const auto offset = readFibonacci(bits);
    if (!offset) return std::unexpected(offset.error());
    const std::size_t first = last + *offset;
    last = first;
    if (isRange) {
      const auto length = readFibonacci(bits);
      if (!length) return std::unexpected(length.error());
      last += *length;
    }
    if (const auto checked = check({first, last}, budget); !checked) return std::unexpected(checked.error());
    append(ids, {first, last});
  }
  if (bits.isPastEnd()) return cutOff();
  return ids;
}

std::expected<void, std::string> writeFibonacciRanges(BitWriter& bits, const Ids& ids) {
  const auto ranges = rangesOf(ids);
  if (ranges.size() > kMostEntries) return std::unexpected("takes more than 4095 ranges");
  bits.write(ranges.size(), kCountBits);
  std::size_t last = 0;
  for (const auto& range : ranges) {
    bits.write(range.first != range.last, 1);
    writeFibonacci(bits, range.first - last);
    if (range.first != range.last) writeFibonacci(bits, range.last - range.first);
    last = range.last;
  }
  return {};
}

}  // namespace quillon::signals
