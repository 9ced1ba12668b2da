/// @file
/// The receipt issuer of the library quillon::proof. With the Linux platform, linking the library is enough;
/// applications with a platform of their own set it.
#pragma once

#include <memory>

namespace quillon {

class ReceiptIssuer;

/// A value for `Platform::receipts`, which issues the receipts of ConsentSDK::receipt(). The Linux platform sets it
/// automatically. Never null; thread-safe.
[[nodiscard]] std::shared_ptr<ReceiptIssuer> receiptIssuer();

}  // namespace quillon
