// The page shown instead of a refused one.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "core/Logger/UnitLog.h"
#include "platform/HostApplication.h"
#include "quillon/BannerConfig.h"

namespace quillon {

// Immutable after construction.
class BlockedPage {
 public:
  // Inserts a script that defines BLOCKED_URL, the refused address, before the page's first </head>, or else at its
  // beginning.
  explicit BlockedPage(std::string_view page);

  // The built-in page, in a language. Its text direction follows its heading.
  static BlockedPage own(const std::optional<BannerConfig>& banner, std::string_view language);

  // The host application's page of that name, with or without ".html"; nullopt, and a log entry, if it is missing or
  // not UTF-8. Reads a file.
  static std::optional<BlockedPage> configured(std::string_view name, const HostApplication& host, const UnitLog& log);

  // The page for an untrusted address, which is truncated to the longest valid length; invalid UTF-8 becomes U+FFFD.
  [[nodiscard]] std::string html(std::string_view address) const;

  // Whether the text is html() of some address.
  [[nodiscard]] bool isPage(std::string_view html) const;

 private:
  std::string before_;  // up to the address, which is a JavaScript string
  std::string after_;
};

}  // namespace quillon
