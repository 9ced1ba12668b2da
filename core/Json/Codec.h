// JSON documents to structures and back.
#pragma once

#include <expected>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace quillon {

/// The JSON mapping of one C++ type.
struct JsonType;

/// The mapping of structure R, built from its field table where its operations are defined.
template <class R>
[[nodiscard]] const JsonType& jsonType();

/// Fills the value-initialised @p record of type @p type from @p document, or returns the error.
[[nodiscard]] std::optional<std::string> readJson(std::string_view document, const JsonType& type, void* record);

/// Appends @p value of type @p type to @p json.
void writeJson(std::string& json, const JsonType& type, const void* value);

/// Decodes a document; the error is such as "purposes[3].sdks[0].sdk_id: expected an integer". Strict: one wrong value
/// rejects the whole document; unknown keys are skipped but must be valid JSON. A document is UTF-8, at most 32 MiB and
/// 64 levels deep, and may take at most 256 MiB when decoded. The error text is bounded and free of control characters.
/// Thread-safe.
template <class R>
[[nodiscard]] std::expected<R, std::string> decode(std::string_view json) {
  std::expected<R, std::string> record;
  if (auto error = readJson(json, jsonType<R>(), &*record)) record = std::unexpected(std::move(*error));
  return record;
}

/// Encodes @p record without white space; absent fields are omitted. Always valid UTF-8: invalid bytes become U+FFFD.
/// Thread-safe.
template <class R>
[[nodiscard]] std::string encode(const R& record) {
  std::string json;
  writeJson(json, jsonType<R>(), &record);
  return json;
}

}  // namespace quillon
