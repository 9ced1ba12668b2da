// The notices that users were shown when they decided.
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

// In place of a digest, in decisions made through the application's own screens or calls.
inline constexpr std::string_view applicationsNotice = "application";

// The suite of the notices: SHA-256 digest to canonical text (RFC 8785), which is empty once it was evicted.
inline constexpr std::string_view noticeSuiteName = "quillon-cmp-sdk.notices";

// Limit of all texts together. The oldest are evicted first; the newest 1,000 digests stay.
inline constexpr std::size_t maximumNoticeBytes = std::size_t{1} << 20;

// Thread-safe. A notice that cannot be stored is logged; decisions are unaffected.
class NoticeArchive {
 public:
  // Both must outlive it; neither is used before the first operation.
  NoticeArchive(const Platform& platform, SDKLogger& logger) : platform_(platform), logger_(logger) {}

  // Stores the text durably, unless it is stored already, and returns its digest.
  std::string keep(std::string text);
  // Digest to text, from all processes; empty when evicted. May wait for the disk.
  std::map<std::string, std::string> texts();
  // Removes all notices, after the consents were removed.
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
