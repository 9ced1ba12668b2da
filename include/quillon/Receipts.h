/// @file
/// Receipts: what the library quillon::proof adds to the SDK. It is enough to link it; this is for applications with a
/// platform of their own.
#pragma once

#include <memory>

namespace quillon {

class ReceiptIssuer;

/// Makes the receipts of ConsentSDK::receipt(): the value of `Platform::receipts`, which the Linux platform sets by
/// itself. Never null; thread-safe.
[[nodiscard]] std::shared_ptr<ReceiptIssuer> receiptIssuer();

}  // namespace quillon
