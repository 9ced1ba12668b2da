// The page that is shown in place of a refused one.
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
  // A page whose scripts find the refused address in the variable BLOCKED_URL, which is set in front of the first
  // closing head tag; of a page without one, in front of everything.
  explicit BlockedPage(std::string_view page);

  // Ours, in a language. Its direction is that of its heading.
  static BlockedPage own(const std::optional<BannerConfig>& banner, std::string_view language);

  // The host application's page of that name, with or without ".html"; nothing when it is missing or not UTF-8, which
  // is logged. Reads a file.
  static std::optional<BlockedPage> configured(std::string_view name, const HostApplication& host, const UnitLog& log);

  // The page for an address, which may be any text. Longer ones than any that opens are cut; what is not UTF-8 becomes
  // U+FFFD.
  [[nodiscard]] std::string html(std::string_view address) const;

  // Whether a text is the page for some address.
  [[nodiscard]] bool isPage(std::string_view html) const;

 private:
  std::string before_;  // the address as a script's text
  std::string after_;
};

}  // namespace quillon
