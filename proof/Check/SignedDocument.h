// A document that holds its signature, from anywhere.
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
  std::optional<PublicKey> signer;  // nullopt when the signature does not hold
};

// Reads the content under this name, and tells what is wrong with the signature; nullopt when it cannot be read.
[[nodiscard]] std::optional<SignedDocument> checkSigned(std::string_view name, std::string_view document,
                                                        const Expectations& expected, Findings& findings);

}  // namespace quillon::proof
