#include "signals/Records/RecordBits.h"

namespace quillon::signals {
namespace {

constexpr unsigned kRestrictionCountBits = 12;
constexpr std::size_t kMostRestrictions = (1U << kRestrictionCountBits) - 1;
constexpr unsigned kPurposeBits = 6;
constexpr unsigned kTypeBits = 2;
constexpr unsigned kLetterBits = 6;

using Result = std::expected<void, std::string>;

template <class T>
std::expected<FieldValue, std::string> asValue(std::expected<T, std::string> value) {
  if (!value) return std::unexpected(std::move(value.error()));
  return FieldValue(std::move(*value));
}

std::expected<std::string, std::string> readLetters(BitReader& bits, unsigned count) {
  std::string letters;
  for (unsigned i = 0; i < count; ++i) {
    const auto letter = bits.read(kLetterBits);
    if (letter >= 26) return std::unexpected("is no pair of letters");
    letters += static_cast<char>('A' + letter);
  }
  return letters;
}

std::expected<std::vector<Restriction>, std::string> readRestrictions(BitReader& bits, IdBudget& budget) {
  std::vector<Restriction> restrictions;
  const auto count = bits.read(kRestrictionCountBits);
  for (std::uint64_t i = 0; i < count && !bits.isPastEnd(); ++i) {
    Restriction& restriction = restrictions.emplace_back();
    restriction.purposeId = static_cast<std::uint8_t>(bits.read(kPurposeBits));
    restriction.type = static_cast<std::uint8_t>(bits.read(kTypeBits));
    auto ids = readRanges(bits, budget);
    if (!ids) return std::unexpected(ids.error());
    restriction.vendorIds = std::move(*ids);
  }
  return restrictions;
}

class Reader {
 public:
  Reader(BitReader& bits, IdBudget& budget) : bits_(bits), budget_(budget) {}

  std::expected<FieldValue, std::string> read(const Field& field) {
    switch (field.kind) {
      case FieldKind::integer:
      case FieldKind::boolean:
      case FieldKind::time:
        latestInteger_ = static_cast<std::int64_t>(bits_.read(field.bits));
        return FieldValue(latestInteger_);
      case FieldKind::letters:
        return asValue(readLetters(bits_, field.count));
      case FieldKind::set:
        return FieldValue(readBitField(bits_, field.count));
      case FieldKind::sizedSet:
        return FieldValue(readBitField(bits_, static_cast<std::size_t>(latestInteger_)));
      case FieldKind::values: {
        Numbers numbers;
        for (unsigned i = 0; i < field.count; ++i) {
          numbers.push_back(static_cast<Numbers::value_type>(bits_.read(field.bits)));
        }
        return FieldValue(std::move(numbers));
      }
      case FieldKind::vendors:
        return asValue(readOptimizedRanges(bits_, budget_));
      case FieldKind::sections:
        return asValue(readFibonacciRanges(bits_, budget_));
      case FieldKind::restrictions:
        break;
    }
    return asValue(readRestrictions(bits_, budget_));
  }

 private:
  BitReader& bits_;
  IdBudget& budget_;
  std::int64_t latestInteger_ = 0;
};

std::string tooLarge(std::int64_t value, unsigned bits) {
  return std::to_string(value) + " does not fit into " + std::to_string(bits) + " bits";
}

std::expected<void, std::string> writeSet(BitWriter& bits, const Ids& ids, std::size_t count) {
  if (!ids.empty() && (ids.back() > count || ids.front() == 0)) {
    return std::unexpected("holds an ID that is not from 1 to " + std::to_string(count));
  }
  writeBitField(bits, ids, count);
  return {};
}

Result writeRestrictions(BitWriter& bits, const std::vector<Restriction>& restrictions) {
  if (restrictions.size() > kMostRestrictions) return std::unexpected("holds more than 4095 restrictions");
  bits.write(restrictions.size(), kRestrictionCountBits);
  for (const auto& restriction : restrictions) {
    bits.write(restriction.purposeId, kPurposeBits);
    bits.write(restriction.type, kTypeBits);
    if (auto written = writeRanges(bits, restriction.vendorIds); !written) return written;
  }
  return {};
}

class RecordWriter {
 public:
  explicit RecordWriter(BitWriter& bits) : bits_(bits) {}

  Result write(const Field& field, const FieldValue& value) {
    switch (field.kind) {
      case FieldKind::integer:
      case FieldKind::boolean:
      case FieldKind::time:
        latestInteger_ = std::get<std::int64_t>(value);
        if (latestInteger_ < 0 || latestInteger_ >> field.bits != 0) {
          return std::unexpected(tooLarge(latestInteger_, field.bits));
        }
        bits_.write(static_cast<std::uint64_t>(latestInteger_), field.bits);
        return {};
      case FieldKind::letters:
        for (const char letter : std::get<std::string>(value)) {
          bits_.write(static_cast<std::uint64_t>(letter - 'A'), kLetterBits);
        }
        return {};
      case FieldKind::set:
        return writeSet(bits_, std::get<Numbers>(value), field.count);
      case FieldKind::sizedSet:
        return writeSet(bits_, std::get<Numbers>(value), static_cast<std::size_t>(latestInteger_));
      case FieldKind::values:
        for (const auto number : std::get<Numbers>(value)) {
          if (number >> field.bits != 0) return std::unexpected(tooLarge(number, field.bits));
          bits_.write(number, field.bits);
        }
        return {};
      case FieldKind::vendors:
        writeOptimizedRanges(bits_, std::get<Numbers>(value));
        return {};
      case FieldKind::sections:
        return writeFibonacciRanges(bits_, std::get<Numbers>(value));
      case FieldKind::restrictions:
        break;
    }
    return writeRestrictions(bits_, std::get<std::vector<Restriction>>(value));
  }

 private:
  BitWriter& bits_;
  std::int64_t latestInteger_ = 0;
};

Result checkAlways(const Field& field, const FieldValue& value) {
  if (!field.always || std::get<std::int64_t>(value) == *field.always) return {};
  return std::unexpected("is " + std::to_string(std::get<std::int64_t>(value)) + "; only " +
                         std::to_string(*field.always) + " is known");
}

std::unexpected<std::string> at(const Layout& layout, const Field& field, const std::string& what) {
  return std::unexpected(std::string(layout.name).append(".").append(field.name).append(": ").append(what));
}
std::unexpected<std::string> at(const Layout& layout, const std::string& what) {
  return std::unexpected(std::string(layout.name).append(": ").append(what));
}

}  // namespace

std::expected<Record, std::string> readRecord(const Layout& layout, std::string_view text, IdBudget& budget) {
  auto bits = BitReader::over(text);
  if (!bits) return at(layout, bits.error());
  Record record(layout);
  Reader reader(*bits, budget);
  for (std::size_t i = 0; i < layout.fields.size(); ++i) {
    const Field& field = layout.fields[i];
    auto value = reader.read(field);
    if (!value) return at(layout, field, value.error());
    if (bits->isPastEnd()) return at(layout, field, "the text ends too early");
    if (const auto known = checkAlways(field, *value); !known) return at(layout, field, known.error());
    record.values()[i] = std::move(*value);
  }
  if (!bits->hasOnlyPadding()) return at(layout, "more follows the last field");
  return record;
}

std::expected<std::string, std::string> writeRecord(const Record& record, unsigned multiple) {
  const Layout& layout = record.layout();
  BitWriter bits;
  RecordWriter writer(bits);
  for (std::size_t i = 0; i < record.values().size(); ++i) {
    const Field& field = layout.fields[i];
    const FieldValue& value = record.values()[i];
    if (const auto known = checkAlways(field, value); !known) return at(layout, field, known.error());
    if (const auto written = writer.write(field, value); !written) return at(layout, field, written.error());
  }
  return std::move(bits).finish(multiple);
}

}  // namespace quillon::signals
