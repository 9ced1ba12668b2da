#include "ui/Common/Images/ImageFromBase64.h"

#include <cstddef>
#include <utility>

#include "core/Logger/UnitLog.h"
#include "ui/Common/Images/ImageCost.h"

namespace quillon {
namespace {

constexpr std::size_t largestText = std::size_t{1} << 20;

std::string without(std::string_view unwanted, std::string_view text) {
  std::string result;
  for (std::size_t found = 0; (found = text.find(unwanted)) != std::string_view::npos;) {
    result += text.substr(0, found);
    text.remove_prefix(found + unwanted.size());
  }
  return result += text;
}

// The value of a base64 digit, six bits; nullopt for other characters.
std::optional<std::uint32_t> valueOf(char c) {
  if (c >= 'A' && c <= 'Z') return c - 'A';
  if (c >= 'a' && c <= 'z') return c - 'a' + 26;
  if (c >= '0' && c <= '9') return c - '0' + 52;
  if (c == '+') return 62;
  if (c == '/') return 63;
  return std::nullopt;
}

// Skips characters that are not base64; nullopt if the rest is not groups of four with padding in the last one only.
std::optional<std::string> decodedBase64(std::string_view text) {
  std::string bytes;
  bytes.reserve(text.size() / 4 * 3);
  std::uint32_t bits = 0;
  std::size_t characters = 0;
  std::size_t padding = 0;
  for (const char c : text) {
    if (c == '=') ++padding;
    const auto value = valueOf(c);
    if (!value) continue;
    if (padding > 0) return std::nullopt;
    bits = bits << 6 | *value;
    switch (characters++ % 4) {
      case 1:
        bytes += static_cast<char>(bits >> 4);
        break;
      case 2:
        bytes += static_cast<char>(bits >> 2);
        break;
      case 3:
        bytes += static_cast<char>(bits);
        break;
      default:
        break;
    }
  }
  if (padding > 2 || (characters + padding) % 4 != 0) return std::nullopt;
  return bytes;
}

}  // namespace

std::optional<EncodedImage> imageFromBase64(std::string_view base64String, SDKLogger& logger) {
  const UnitLog log(logger, "PreferenceCenter/PreferenceCenterView");
  const auto fail = [&log](std::string_view message) {
    log(LogLevel::error, message, "imageFromBase64(base64String:)");
    return std::nullopt;
  };
  if (base64String.size() > largestText) return fail("Failed to decode base64 string.");

  // White space at either end is skipped as well.
  std::string text(base64String);
  for (const auto prefix : {"data:image/png;base64,", "data:image/gif;base64,", "data:image/jpeg;base64,"}) {
    text = without(prefix, text);
  }
  auto bytes = decodedBase64(text);
  if (!bytes) return fail("Failed to decode base64 string.");

  const auto header = imageHeader(*bytes);
  auto content = header ? affordableImage(*std::move(bytes), *header) : std::nullopt;
  if (!content) return fail("Failed to create UIImage from data.");
  return EncodedImage{.bytes = *std::move(content),
                      .format = header->format,
                      .width = static_cast<int>(header->width),
                      .height = static_cast<int>(header->height)};
}

}  // namespace quillon
