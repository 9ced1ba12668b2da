/// @file
/// What an application can listen to, and how it stops listening.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace quillon {

/// Keeps one listener listening; dropped, it ends that. A move-only value that may outlive the SDK.
///
/// The listener is called on the main queue, never before the call that added it has returned, once for each event
/// since then, in the order of the events; one main queue that stands still holds them all up. After the handle is
/// gone nothing is called any more, also of what was already on its way; dropped on another thread than the main queue
/// it waits for a call that is under way, so drop it without a lock that the listener takes. A listener may drop its
/// own handle. The arguments are valid during the call; copy what is to stay. What a listener throws is contained and
/// logged.
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

  /// Stops listening now; later calls do nothing.
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

/// A screen came or went.
struct ScreenEvent {
  ScreenKind screen = ScreenKind::banner;
  bool isShown = false;
  /// Whole seconds since 1970-01-01T00:00:00Z.
  std::int64_t time = 0;

  bool operator==(const ScreenEvent&) const = default;
};

/// An upload is over.
struct UploadEvent {
  /// Whether the server took the decisions; else they stay pending.
  bool isAccepted = false;
  /// The status in the server's answer; nothing when there was no answer that could be read.
  std::optional<std::int64_t> status = std::nullopt;
  /// The server's own words, or what went wrong. For a log, not for users.
  std::string message = {};
  /// Whole seconds since 1970-01-01T00:00:00Z.
  std::int64_t time = 0;

  bool operator==(const UploadEvent&) const = default;
};

}  // namespace quillon
