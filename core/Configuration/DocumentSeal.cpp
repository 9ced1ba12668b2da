#include "core/Configuration/DocumentSeal.h"

#include <zlib.h>

namespace quillon {
namespace {

constexpr std::size_t bits = 32;
// The characters differ in more than one bit.
constexpr char zero = ' ';
constexpr char one = '\t';

std::string sealOf(std::string_view document) {
  const auto checksum = crc32_z(0, reinterpret_cast<const Bytef*>(document.data()), document.size());
  std::string seal = "\n";
  for (std::size_t bit = 0; bit < bits; ++bit) seal += (checksum >> bit & 1) != 0 ? one : zero;
  return seal;
}

}  // namespace

std::string sealed(std::string document) {
  document += sealOf(document);
  return document;
}

bool sealIsIntact(std::string_view bytes) {
  const auto end = bytes.find_last_not_of(" \t\r\n") + 1;
  // Less white space is no seal, or a seal cut off after a complete document.
  if (bytes.size() - end <= bits) return true;
  return bytes.substr(end) == sealOf(bytes.substr(0, end));
}

}  // namespace quillon
