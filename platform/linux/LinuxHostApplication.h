// The host application and machine on Linux.
#pragma once

#include <filesystem>
#include <string>

#include "platform/HostApplication.h"

namespace quillon {

// Thread-safe. Linux programs have no information dictionary and no translation table, so information() returns nullopt
// and localized() the key.
class LinuxHostApplication : public HostApplication {
 public:
  // The resource folder; empty selects the executable's.
  explicit LinuxHostApplication(std::filesystem::path resources = {});

  std::optional<std::string> componentVersion(std::string_view identifier) const override;
  std::optional<std::string> information(std::string_view key) const override;
  std::string localized(std::string_view key, std::string_view comment) const override;
  std::optional<std::string> resource(std::string_view name, std::string_view extension) const override;
  // Such as "Debian GNU/Linux 12 (bookworm), Linux 6.1 x86_64": nothing that identifies the machine.
  std::string deviceDescription() const override { return device_; }

 private:
  const std::filesystem::path resources_;
  const std::string device_;
};

}  // namespace quillon
