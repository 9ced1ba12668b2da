// What users were shown when they decided.
#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "platform/Platform.h"
#include "quillon/SDKLogger.h"

namespace quillon {

// In place of a hash, in decisions made through the application's own screens or calls.
inline constexpr std::string_view applicationsNotice = "application";

// The suite of the notices: a notice's canonical text (RFC 8785) under its SHA-256 digest, empty once it had to go.
inline constexpr std::string_view noticeSuiteName = "quillon-cmp-sdk.notices";

// Limit of all texts together: the oldest ones go first, and stay known by their digests.
inline constexpr std::size_t maximumNoticeBytes = std::size_t{1} << 20;

// Thread-safe. Decisions do not depend on it: what cannot be kept is logged.
class NoticeArchive {
 public:
  // Both must outlive it; neither is used before the first operation.
  NoticeArchive(const Platform& platform, SDKLogger& logger) : platform_(platform), logger_(logger) {}

  // Keeps the text, durably, and returns its digest. Writes only what is not kept yet.
  std::string keep(std::string text);
  // The texts by their digests, of any process; empty ones had to go. May wait for the disk.
  std::map<std::string, std::string> texts();
  // After the consents were removed.
  void clear();

 private:
  KeyValueSuite* suite();
  void report(std::string_view problem);

  const Platform& platform_;
  SDKLogger& logger_;
  std::once_flag opened_;
  std::shared_ptr<KeyValueSuite> suite_;  // null when it cannot be opened
};

}  // namespace quillon
