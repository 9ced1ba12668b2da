// From draft to live.
#pragma once

#include <boost/json/array.hpp>
#include <cstdint>
#include <expected>
#include <optional>
#include <string>

#include "quillon/MainConfiguration.h"
#include "tools/workbench/DraftFolder.h"

namespace quillon::tools {

// The version that a draft gets when it is published: one more than what is live when something material changed and
// its own is not greater, 1 when it has none; nullopt when its own will do.
[[nodiscard]] std::optional<std::int64_t> versionToPublish(const MainConfiguration& draft,
                                                           const MainConfiguration* live);

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
