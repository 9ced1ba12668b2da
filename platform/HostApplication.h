// What the SDK must know of the application it lives in.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quillon {

// Thread-safe; answers at once.
class HostApplication {
 public:
  virtual ~HostApplication() = default;

  // The version string of an installed component of the SDK, such as "org.quillon.consent.core".
  virtual std::optional<std::string> componentVersion(std::string_view identifier) const = 0;
  // The text under a key of the application's information dictionary.
  virtual std::optional<std::string> information(std::string_view key) const = 0;
  // The application's own translation of a message; the key itself where there is none.
  virtual std::string localized(std::string_view key, std::string_view comment) const = 0;
  // A text file that ships with the application, by its plain name ("blocked") and extension ("html"). Nothing when
  // there is none or it exceeds 32 MiB. Reads a file: not for a queue that must not wait for the disk.
  virtual std::optional<std::string> resource(std::string_view name, std::string_view extension) const = 0;
  // The device in words, as it is sent with uploads.
  virtual std::string deviceDescription() const = 0;
};

}  // namespace quillon
