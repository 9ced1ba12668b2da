// A host application with fixed values.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "platform/HostApplication.h"

namespace quillon {

// Thread-safe: immutable.
class FixedHostApplication : public HostApplication {
 public:
  using Texts = std::map<std::string, std::string, std::less<>>;

  struct Description {
    Texts componentVersions = {};  // by component identifier
    Texts information = {};
    Texts translations = {};
    Texts resources = {};  // by file name, such as "blocked.html"
    std::string device = "Test device";
  };

  FixedHostApplication() : FixedHostApplication(Description{}) {}
  explicit FixedHostApplication(Description description);

  std::optional<std::string> componentVersion(std::string_view identifier) const override;
  std::optional<std::string> information(std::string_view key) const override;
  std::string localized(std::string_view key, std::string_view comment) const override;
  std::optional<std::string> resource(std::string_view name, std::string_view extension) const override;
  std::string deviceDescription() const override;

 private:
  const Description description_;
};

}  // namespace quillon
