#pragma once

#include <cstdint>
#include <expected>
#include <string>

#include "tests/fleet/Fleet.h"
#include "tools/serve/UploadStore.h"

namespace quillon::fleet {

// What the users of a fleet decided, against what the server kept.
struct Accounting {
  std::int64_t decisions = 0;       // taken by users
  std::int64_t uploads = 0;         // accepted by the server
  std::int64_t purposes = 0;        // with a decision, over all devices
  std::int64_t missing = 0;         // of them, not at the server
  std::int64_t different = 0;       // of them, with another status at the server than on the device
  std::int64_t repeated = 0;        // decisions that the server got more than once
  std::int64_t unknown = 0;         // at the server, but decided on no device
  std::int64_t contradictions = 0;  // on the device itself: not what the user chose last

  bool isComplete() const { return missing + different + repeated + unknown + contradictions == 0; }
};

std::expected<Accounting, std::string> account(const Fleet& fleet, const tools::UploadStore& uploads);

}  // namespace quillon::fleet
