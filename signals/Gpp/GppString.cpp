#include "signals/Gpp/GppString.h"

#include <algorithm>

#include "signals/Records/RecordBits.h"

namespace quillon::signals {
namespace {

// Header and sections are padded to whole base64url characters.
constexpr unsigned kGppPadding = 6;

constexpr Field headerFields[] = {
    always("Type", 6, 3),
    always("Version", 6, 1),
    sections("Sections"),
};

// Excludes separators, and characters that need escaping in a URL.
bool isPlain(std::string_view text) {
  return !text.empty() && std::ranges::all_of(text, [](char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-' || c == '_' ||
           c == '.';
  });
}

std::expected<GppSection, std::string> decodeUs(const UsSection& section, std::string_view text, IdBudget& budget) {
  const std::size_t dot = std::min(text.find('.'), text.size());
  auto core = readRecord(section.core, text.substr(0, dot), budget);
  if (!core) return std::unexpected(std::move(core.error()));
  UsString us(section);
  us.core = std::move(*core);
  if (dot == text.size()) return us;
  if (section.subsection.fields.empty()) return std::unexpected(std::string(section.prefix()) + ": has no sub-section");
  auto subsection = readRecord(section.subsection, text.substr(dot + 1), budget);
  if (!subsection) return std::unexpected(std::move(subsection.error()));
  us.subsection = std::move(*subsection);
  return us;
}

std::expected<GppSection, std::string> decodeSection(std::uint16_t id, std::string_view text, IdBudget& budget) {
  if (const auto* const us = usSection(id)) return decodeUs(*us, text, budget);
  if (id == tcfEuSection) {
    auto tc = decodeTcString(text);
    if (!tc) return std::unexpected(std::string(sectionPrefix(id)) + "." + tc.error());
    return std::move(*tc);
  }
  if (!isPlain(text)) return std::unexpected("section " + std::to_string(id) + ": is no text of a section");
  return std::string(text);
}

// Removes and returns the part before the next tilde.
std::string_view takePart(std::string_view& text) {
  const std::size_t tilde = std::min(text.find('~'), text.size());
  const auto part = text.substr(0, tilde);
  text.remove_prefix(std::min(tilde + 1, text.size()));
  return part;
}

std::expected<std::string, std::string> encodeUs(const UsString& us) {
  auto text = writeRecord(us.core, kGppPadding);
  if (!text || !us.subsection) return text;
  const auto subsection = writeRecord(*us.subsection, kGppPadding);
  if (!subsection) return subsection;
  return *text + '.' + *subsection;
}

}  // namespace

constinit const Layout gppHeader{"header", headerFields};

Record headerOf(const GppString& gpp) {
  Ids ids;
  for (const auto& [id, section] : gpp.sections) ids.push_back(id);
  Record header(gppHeader);
  header.set("Sections", std::move(ids));
  return header;
}

std::expected<GppString, std::string> decodeGppString(std::string_view text) {
  if (text.size() > longestString) return std::unexpected("the string is longer than 128 KiB");
  IdBudget budget;
  const auto header = readRecord(gppHeader, takePart(text), budget);
  if (!header) return std::unexpected(header.error());
  GppString gpp;
  for (const auto id : header->get<Ids>("Sections")) {
    if (text.empty()) return std::unexpected("section " + std::to_string(id) + ": is missing");
    auto section = decodeSection(id, takePart(text), budget);
    if (!section) return std::unexpected(std::move(section.error()));
    gpp.sections.emplace(id, std::move(*section));
  }
  if (!text.empty()) return std::unexpected("more sections follow than the header lists");
  return gpp;
}

std::expected<std::string, std::string> encode(const GppSection& section) {
  if (const auto* const tc = std::get_if<TcString>(&section)) return encode(*tc);
  if (const auto* const us = std::get_if<UsString>(&section)) return encodeUs(*us);
  const auto& text = std::get<std::string>(section);
  if (!isPlain(text)) return std::unexpected("is no text of a section");
  return text;
}

std::expected<std::string, std::string> encode(const GppString& gpp) {
  auto text = writeRecord(headerOf(gpp), kGppPadding);
  if (!text) return text;
  for (const auto& [id, section] : gpp.sections) {
    const auto written = encode(section);
    if (!written) return written;
    *text += '~';
    *text += *written;
  }
  return text;
}

}  // namespace quillon::signals
