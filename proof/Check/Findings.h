// The results of a verification.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace quillon::proof {

// Seconds. Tolerates a device clock that is wrong by a time zone.
inline constexpr std::int64_t clockTolerance = std::int64_t{24} * 60 * 60;

struct Finding {
  enum class Kind {
    holds,  // a check that succeeded
    note,   // information for the reader, not a defect
    fault,  // a check that failed
  };
  Kind kind;
  std::string subject;  // such as "entry 12", "notice 3fa9..." or "file history.json"
  std::string text;

  bool operator==(const Finding&) const = default;
};

class Findings {
 public:
  // Later findings are dropped, faults still counted: the first ones describe a document that fails everywhere.
  static constexpr std::size_t most = 1000;

  void holds(std::string subject, std::string text) { add(Finding::Kind::holds, subject, text); }
  void note(std::string subject, std::string text) { add(Finding::Kind::note, subject, text); }
  void fault(std::string subject, std::string text) {
    ++faults_;
    add(Finding::Kind::fault, subject, text);
  }

  [[nodiscard]] std::size_t faults() const { return faults_; }
  [[nodiscard]] const std::vector<Finding>& all() const { return all_; }
  [[nodiscard]] bool names(const std::string& subject) const {
    return std::ranges::any_of(
        all_, [&](const Finding& each) { return each.kind == Finding::Kind::fault && each.subject == subject; });
  }

 private:
  void add(Finding::Kind kind, std::string& subject, std::string& text) {
    if (all_.size() < most) all_.push_back({kind, std::move(subject), std::move(text)});
  }

  std::vector<Finding> all_;
  std::size_t faults_ = 0;
};

}  // namespace quillon::proof
