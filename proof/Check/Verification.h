// Checks receipts and exports, which may come from anybody.
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
  std::string keyThumbprint = {};  // of the key that must have signed; empty: any
};

// The history that a receipt must be a part of.
struct KnownHistory {
  const ExportedHistory& history;
  bool isOfSameMoment = false;  // else it may have grown since the receipt
};

// Checks signature, fields, notices and times of a receipt, and whether it is a part of the history.
void checkReceipt(std::string_view document, const Expectations& expected, const std::optional<KnownHistory>& known,
                  Findings& findings);

// Files by their path in an export, such as "notices/3fa9....json".
using ExportFiles = std::map<std::string, std::string>;

// Checks all of an export: every file, and that there are no others.
void checkExport(const ExportFiles& files, const Expectations& expected, Findings& findings);

// The thumbprint of a key given as its thumbprint, as a JSON Web Key, or as the export's key.json; empty when it is
// none.
[[nodiscard]] std::string thumbprintOf(std::string_view key);

}  // namespace quillon::proof
