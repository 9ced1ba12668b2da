// Makes receipts and exports from a store.
#pragma once

#include <cstdint>
#include <expected>
#include <filesystem>
#include <string>
#include <vector>

namespace quillon::tools {

struct StoreReceiptOptions {
  std::filesystem::path dataDirectory;
  std::string out;         // file or folder
  std::string controller;  // file; empty: none
  std::vector<std::int64_t> purposes;
};

// Writes a receipt to a file; "-" is standard output.
[[nodiscard]] std::expected<void, std::string> writeReceipt(const StoreReceiptOptions& options);
// Writes all stored data of the person to a folder, which must be new or empty.
[[nodiscard]] std::expected<void, std::string> writeExport(const StoreReceiptOptions& options);

}  // namespace quillon::tools
