// Publishes drafts.
#pragma once

#include <boost/json/array.hpp>
#include <cstdint>
#include <expected>
#include <optional>
#include <string>

#include "quillon/MainConfiguration.h"
#include "tools/workbench/DraftFolder.h"

namespace quillon::tools {

// The version that a draft gets on publication: the live version plus one if something material changed and the draft's
// version is not higher; the live version if the draft's is lower; 1 if nothing is live and the draft has none; nullopt
// if the draft's version can stay.
[[nodiscard]] std::optional<std::int64_t> versionToPublish(const MainConfiguration& draft,
                                                           const MainConfiguration* live);

struct Published {
  StoredDocument draft;  // as published
  std::int64_t version = 0;
  bool isRaised = false;  // the version was raised
};

struct NotPublished {
  DraftFolder::Failure failure;
  boost::json::array findings = {};  // the reasons for the refusal
};

// What the publisher has seen.
struct PublicationRequest {
  std::string tag;           // of the draft
  std::string liveTag = {};  // of the live document; empty if there is none
  bool isConfirmed = false;  // despite warnings
};

// Makes the draft the live document. Raises its version after a material change, or sets the first one, in the draft as
// well. Fails if either document has changed since the request's tags. Never publishes a document that the SDK would
// reject; one with warnings only if confirmed.
[[nodiscard]] std::expected<Published, NotPublished> publish(DraftFolder& folder, const DocumentName& name,
                                                             const PublicationRequest& request);

}  // namespace quillon::tools
