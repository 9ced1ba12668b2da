#include "signals/Tcf/TcString.h"

#include <algorithm>

#include "signals/Records/RecordBits.h"

namespace quillon::signals {
namespace {

constexpr unsigned kSegmentTypeBits = 3;
// Segments are padded to whole bytes and whole base64url characters.
constexpr unsigned kTcfPadding = 24;

constexpr Field coreFields[] = {
    always("Version", 6, 2),
    time("Created"),
    time("LastUpdated"),
    integer("CmpId", 12),
    integer("CmpVersion", 12),
    integer("ConsentScreen", 6),
    letters("ConsentLanguage", 2),
    integer("VendorListVersion", 12),
    integer("TcfPolicyVersion", 6),
    boolean("IsServiceSpecific"),
    boolean("UseNonStandardTexts"),
    set("SpecialFeatureOptIns", 12),
    set("PurposesConsent", tcPurposes),
    set("PurposesLITransparency", tcPurposes),
    boolean("PurposeOneTreatment"),
    letters("PublisherCC", 2),
    vendors("VendorConsent"),
    vendors("VendorLegitimateInterest"),
    restrictions("PubRestrictions"),
};

constexpr Field disclosedVendorsFields[] = {
    always("SegmentType", kSegmentTypeBits, 1),
    vendors("DisclosedVendors"),
};

constexpr Field publisherFields[] = {
    always("SegmentType", kSegmentTypeBits, 3),
    set("PubPurposesConsent", tcPurposes),
    set("PubPurposesLITransparency", tcPurposes),
    integer("NumCustomPurposes", 6),
    sizedSet("CustomPurposesConsent"),
    sizedSet("CustomPurposesLITransparency"),
};

// Reads an optional segment; an error if it occurs twice.
std::optional<std::string> readInto(std::optional<Record>& segment, const Layout& layout, std::string_view text,
                                    IdBudget& budget) {
  if (segment) return std::string(layout.name) + ": is there twice";
  auto record = readRecord(layout, text, budget);
  if (!record) return std::move(record.error());
  segment = std::move(*record);
  return std::nullopt;
}

std::optional<std::string> readSegment(TcString& tc, std::string_view text, IdBudget& budget) {
  auto bits = BitReader::over(text.substr(0, 1));
  if (!bits || text.empty()) return "a segment has no type";
  const auto type = bits->read(kSegmentTypeBits);
  if (type == 1) return readInto(tc.disclosedVendors, tcDisclosedVendors, text, budget);
  if (type == 3) return readInto(tc.publisherTC, tcPublisher, text, budget);
  return "a segment has the unknown type " + std::to_string(type);
}

}  // namespace

constinit const Layout tcCore{"core", coreFields};
constinit const Layout tcDisclosedVendors{"disclosedVendors", disclosedVendorsFields};
constinit const Layout tcPublisher{"publisherTC", publisherFields};

std::expected<TcString, std::string> decodeTcString(std::string_view text) {
  if (text.size() > longestString) return std::unexpected("the string is longer than 128 KiB");
  IdBudget budget;
  TcString tc;
  std::size_t dot = std::min(text.find('.'), text.size());
  auto core = readRecord(tcCore, text.substr(0, dot), budget);
  if (!core) return std::unexpected(std::move(core.error()));
  tc.core = std::move(*core);
  while (dot < text.size()) {
    text.remove_prefix(dot + 1);
    dot = std::min(text.find('.'), text.size());
    if (auto error = readSegment(tc, text.substr(0, dot), budget)) return std::unexpected(std::move(*error));
  }
  return tc;
}

std::expected<std::string, std::string> encode(const TcString& tc) {
  std::string text;
  for (const Record* const segment :
       {&tc.core, tc.disclosedVendors ? &*tc.disclosedVendors : nullptr, tc.publisherTC ? &*tc.publisherTC : nullptr}) {
    if (!segment) continue;
    auto written = writeRecord(*segment, kTcfPadding);
    if (!written) return written;
    if (!text.empty()) text += '.';
    text += *written;
  }
  return text;
}

}  // namespace quillon::signals
