// Receipts: signed consent records.
#pragma once

#include <boost/json/object.hpp>
#include <expected>
#include <string>

#include "platform/ReceiptIssuer.h"
#include "proof/Signature/Keys.h"

namespace quillon::proof {

// The signed document, {"receipt":...,"signature":...}, in canonical form. An error if a requested purpose has no
// decision or, without requested purposes, if there is no decision at all.
[[nodiscard]] std::expected<std::string, std::string> issueReceipt(const ReceiptRequest& request, const SigningKey& key,
                                                                   RandomSource& random);

// {name: content, "signature": ...}, in canonical form.
[[nodiscard]] std::expected<std::string, std::string> signedDocument(std::string_view name, boost::json::object content,
                                                                     const SigningKey& key);

}  // namespace quillon::proof
