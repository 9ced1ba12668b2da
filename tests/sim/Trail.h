// A world's log, and its first failure.
#pragma once

#include <optional>
#include <string>

namespace quillon::sim {

class Trail {
 public:
  explicit Trail(bool isKept) : isKept_(isKept) {}

  // Whether lines are recorded; ask before composing an expensive one.
  [[nodiscard]] bool isKept() const { return isKept_; }
  void note(const std::string& line) {
    if (isKept_) text_ += line + "\n";
  }

  // A claim is violated. Only the first failure is kept, since later ones may be its consequences.
  void fail(int claim, const std::string& reason) {
    if (failure_) return;
    failure_ = "claim " + std::to_string(claim) + ": " + reason;
    note("FAILED " + *failure_);
  }
  [[nodiscard]] const std::optional<std::string>& failure() const { return failure_; }
  [[nodiscard]] const std::string& text() const { return text_; }

 private:
  const bool isKept_;
  std::string text_;
  std::optional<std::string> failure_;
};

}  // namespace quillon::sim
