/// @file
/// Events that an application can listen to, and the listener handle.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace quillon {

/// The handle of one listener: destroying it removes the listener. Move-only; may outlive the SDK.
///
/// The listener is called on the main queue, never before the call that added it has returned, once per event, in
/// order. A blocked main queue delays all listeners. Once the handle is destroyed no call begins, not even for an event
/// already queued. Destroying it on a thread other than the main queue waits for a running call, so do not hold a lock
/// that the listener takes. A listener may destroy its own handle. Arguments are valid during the call only. Exceptions
/// are caught and logged.
class [[nodiscard]] Listening {
 public:
  Listening() noexcept = default;
  explicit Listening(std::function<void()> end) noexcept : end_(std::move(end)) {}
  Listening(Listening&& other) noexcept : end_(std::exchange(other.end_, nullptr)) {}
  Listening& operator=(Listening&& other) noexcept {
    if (this != &other) {
      end();
      end_ = std::exchange(other.end_, nullptr);
    }
    return *this;
  }
  ~Listening() { end(); }

  /// Removes the listener now; idempotent.
  void end() noexcept {
    if (const auto stop = std::exchange(end_, nullptr)) stop();
  }

 private:
  std::function<void()> end_;
};

/// The screens of the SDK.
enum class ScreenKind { banner, preferenceCenter, settingsPrompt, webView };
/// "banner", "preferenceCenter", "settingsPrompt" or "webView".
[[nodiscard]] std::string_view rawValue(ScreenKind value) noexcept;

/// A screen was shown or closed.
struct ScreenEvent {
  ScreenKind screen = ScreenKind::banner;
  bool isShown = false;
  /// Whole seconds since 1970-01-01T00:00:00Z.
  std::int64_t time = 0;

  bool operator==(const ScreenEvent&) const = default;
};

/// An upload attempt ended.
struct UploadEvent {
  /// Whether the server accepted the decisions; otherwise they stay pending.
  bool isAccepted = false;
  /// The status in the server's response; nullopt without a readable response.
  std::optional<std::int64_t> status = std::nullopt;
  /// The server's message, or the error. For a log, not for users.
  std::string message = {};
  /// Whole seconds since 1970-01-01T00:00:00Z.
  std::int64_t time = 0;

  bool operator==(const UploadEvent&) const = default;
};

}  // namespace quillon
