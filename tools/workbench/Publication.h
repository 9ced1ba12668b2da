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
// its own is not greater, that of what is live when its own is less, 1 when there is none; nullopt when its own will
// do.
[[nodiscard]] std::optional<std::int64_t> versionToPublish(const MainConfiguration& draft,
                                                           const MainConfiguration* live);

struct Published {
  StoredDocument draft;  // what is live now
  std::int64_t version = 0;
  bool isRaised = false;  // the version
};

struct NotPublished {
  DraftFolder::Failure failure;
  boost::json::array findings = {};  // because of which it was not
};

// What somebody who publishes has seen.
struct PublicationRequest {
  std::string tag;           // of the draft
  std::string liveTag = {};  // of what is live, empty when nothing is
  bool isConfirmed = false;  // with its warnings
};

// Makes the draft the live document, with a greater version when something material changed, or with the first one,
// which the draft gets, too. When either of them is another one by now, nothing is published. What the SDK would refuse
// is never published, and what a rule warns of only when that is confirmed.
[[nodiscard]] std::expected<Published, NotPublished> publish(DraftFolder& folder, const DocumentName& name,
                                                             const PublicationRequest& request);

}  // namespace quillon::tools
