// The host application.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quillon {

// Thread-safe; does not wait, except for resource().
class HostApplication {
 public:
  virtual ~HostApplication() = default;

  // The version of an installed SDK component, such as "org.quillon.consent.core".
  virtual std::optional<std::string> componentVersion(std::string_view identifier) const = 0;
  // The value of a key in the application's information dictionary.
  virtual std::optional<std::string> information(std::string_view key) const = 0;
  // The application's translation of a message; the key itself if there is none.
  virtual std::string localized(std::string_view key, std::string_view comment) const = 0;
  // A text file shipped with the application, by base name ("blocked") and extension ("html"); nullopt when missing or
  // above 32 MiB. Reads a file: not for queues that must not wait for the disk.
  virtual std::optional<std::string> resource(std::string_view name, std::string_view extension) const = 0;
  // The device description sent with uploads.
  virtual std::string deviceDescription() const = 0;
};

}  // namespace quillon
