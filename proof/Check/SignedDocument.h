// Verifies an untrusted document with an embedded signature.
#pragma once

#include <boost/json/object.hpp>
#include <expected>
#include <optional>
#include <string>
#include <string_view>

#include "proof/Check/Verification.h"
#include "proof/Signature/Keys.h"

namespace quillon::proof {

struct SignedDocument {
  boost::json::object content;
  std::optional<PublicKey> signer;  // nullopt if the signature is invalid
};

// Parses the content under `name` and reports signature faults; nullopt if the document cannot be parsed.
[[nodiscard]] std::optional<SignedDocument> checkSigned(std::string_view name, std::string_view document,
                                                        const Expectations& expected, Findings& findings);

}  // namespace quillon::proof
