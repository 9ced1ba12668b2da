// Verifies untrusted receipts and exports.
#pragma once

#include <boost/json/object.hpp>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "proof/Check/Findings.h"
#include "proof/Check/History.h"

namespace quillon::proof {

struct Expectations {
  std::int64_t now = 0;            // seconds since 1970
  std::string keyThumbprint = {};  // of the required signing key; empty: any key
};

// A history that must contain the receipt's decisions.
struct KnownHistory {
  const ExportedHistory& history;
  bool isOfSameMoment = false;  // exported together with the receipt; otherwise it may have grown since
};

// Verifies a receipt's signature, fields, notices and times, and that its decisions are in the history, if given.
void checkReceipt(std::string_view document, const Expectations& expected, const std::optional<KnownHistory>& known,
                  Findings& findings);

// Files by their path in an export, such as "notices/3fa9....json".
using ExportFiles = std::map<std::string, std::string>;

// Verifies every file of an export, and that there are no others.
void checkExport(const ExportFiles& files, const Expectations& expected, Findings& findings);

// The thumbprint of a key given as a thumbprint, a JSON Web Key, or the content of an export's key.json; empty if it is
// none of these.
[[nodiscard]] std::string thumbprintOf(std::string_view key);

}  // namespace quillon::proof
