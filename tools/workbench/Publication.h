// From draft to live.
#pragma once

#include <boost/json/array.hpp>
#include <cstdint>
#include <expected>
#include <string>

#include "tools/workbench/DraftFolder.h"

namespace quillon::tools {

struct Published {
  StoredDocument draft;  // what is live now
  std::int64_t version = 0;
  bool isRaised = false;  // the version, because something material changed
};

struct NotPublished {
  DraftFolder::Failure failure;
  boost::json::array findings = {};  // because of which it was not
};

// Makes the draft of that tag the live document, with a greater version when something material changed, or with the
// first one. What the SDK would refuse is never published, and what a rule warns of only when `isConfirmed`.
[[nodiscard]] std::expected<Published, NotPublished> publish(DraftFolder& folder, const DocumentName& name,
                                                             const std::string& tag, bool isConfirmed);

}  // namespace quillon::tools
