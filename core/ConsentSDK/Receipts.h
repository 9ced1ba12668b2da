// Collects the input of receipts and issues them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "core/ConsentSDK/ConfigurationLoader.h"
#include "core/History/NoticeArchive.h"
#include "quillon/ConsentSDKResult.h"

namespace quillon {

// Thread-safe and stateless.
class Receipts {
 public:
  // Collaborators; all must outlive it.
  struct Services : Foundation {
    ConfigurationLoader& loader;
    NoticeArchive& notices;
  };
  explicit Receipts(Services services) : s_(services) {}

  // Background threads only: reads all of the history.
  ConsentSDKResult<std::string> receipt(std::vector<std::int64_t> purposes) const;

 private:
  HistoryEvidence evidence() const;
  std::map<std::int64_t, PurposeTexts> purposeTexts(const std::string& language) const;

  const Services s_;
};

}  // namespace quillon
