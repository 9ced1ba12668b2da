// Receipts: records of consents, signed.
#pragma once

#include <boost/json/object.hpp>
#include <expected>
#include <string>

#include "platform/ReceiptIssuer.h"
#include "proof/Signature/Keys.h"

namespace quillon::proof {

// The signed document, {"receipt":...,"signature":...} in its canonical form. An error when nothing was decided on one
// of the purposes, or on any when none is named.
[[nodiscard]] std::expected<std::string, std::string> issueReceipt(const ReceiptRequest& request, const SigningKey& key,
                                                                   RandomSource& random);

// An object beside its signature, under the names given.
[[nodiscard]] std::expected<std::string, std::string> signedDocument(std::string_view name, boost::json::object content,
                                                                     const SigningKey& key);

}  // namespace quillon::proof
