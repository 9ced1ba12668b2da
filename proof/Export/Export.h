// A folder that holds all that is kept of a person's decisions, and how to check it.
#pragma once

#include <expected>
#include <string>

#include "platform/ReceiptIssuer.h"
#include "proof/Check/Verification.h"
#include "proof/Signature/Keys.h"

namespace quillon::proof {

// The names of its files; notices are "notices/HASH.json".
namespace file {
inline constexpr const char* history = "history.json";
inline constexpr const char* receipt = "receipt.json";
inline constexpr const char* key = "key.json";
inline constexpr const char* manifest = "manifest.json";
inline constexpr const char* notices = "notices/";
}  // namespace file

// History, notices, a receipt for every purpose, the key, and the signed list of all of them. Without a decision on a
// purpose there is no receipt.
[[nodiscard]] std::expected<ExportFiles, std::string> exportFiles(const ReceiptRequest& request, const SigningKey& key,
                                                                  RandomSource& random);

// The list of the files, signed.
[[nodiscard]] std::expected<std::string, std::string> manifestOf(const ExportFiles& files, std::int64_t time,
                                                                 const SigningKey& key);

}  // namespace quillon::proof
