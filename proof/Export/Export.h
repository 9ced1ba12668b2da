// A folder with all stored decisions of a person, which anybody can verify.
#pragma once

#include <expected>
#include <string>

#include "platform/ReceiptIssuer.h"
#include "proof/Check/Verification.h"
#include "proof/Signature/Keys.h"

namespace quillon::proof {

// The file names in the folder; notices are "notices/HASH.json".
namespace file {
inline constexpr const char* history = "history.json";
inline constexpr const char* receipt = "receipt.json";
inline constexpr const char* key = "key.json";
inline constexpr const char* manifest = "manifest.json";
inline constexpr const char* notices = "notices/";
}  // namespace file

// History, notices, a receipt of all purposes, the key, and a signed manifest of these files. No receipt if no purpose
// has a decision.
[[nodiscard]] std::expected<ExportFiles, std::string> exportFiles(const ReceiptRequest& request, const SigningKey& key,
                                                                  RandomSource& random);

// The signed manifest. `time` is in seconds since 1970.
[[nodiscard]] std::expected<std::string, std::string> manifestOf(const ExportFiles& files, std::int64_t time,
                                                                 const SigningKey& key);

}  // namespace quillon::proof
