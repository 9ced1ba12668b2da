// Receipts and exports of a store.
#pragma once

#include <cstdint>
#include <expected>
#include <filesystem>
#include <string>
#include <vector>

namespace quillon::tools {

struct StoreReceiptOptions {
  std::filesystem::path dataDirectory;
  std::string out;         // a file or folder
  std::string controller;  // a file; empty: none
  std::vector<std::int64_t> purposes;
};

// Writes a receipt to the file, or to standard output when it is "-".
[[nodiscard]] std::expected<void, std::string> writeReceipt(const StoreReceiptOptions& options);
// Writes all that is kept of the person to a folder, which must be new or empty.
[[nodiscard]] std::expected<void, std::string> writeExport(const StoreReceiptOptions& options);

}  // namespace quillon::tools
