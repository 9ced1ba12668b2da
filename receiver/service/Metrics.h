#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <map>
#include <mutex>
#include <string>

namespace quillon::receiver {

// The receiver's counters since its start, in Prometheus format. Thread-safe.
class Metrics {
 public:
  void answered(int status);
  void committed(std::size_t uploads, std::int64_t decisions, std::int64_t fresh, std::chrono::nanoseconds time);
  void storeLost();
  // Counts a use of the token on this line of the file; unused tokens can be removed.
  void tokenUsed(std::size_t line);

  struct Present {
    bool isStoreReachable = false;
    std::size_t connections = 0;
    std::size_t waitingUploads = 0;
    std::size_t receivedBytes = 0;
  };
  [[nodiscard]] std::string text(const Present& present) const;

 private:
  static constexpr std::array<double, 8> kBounds{0.001, 0.0025, 0.005, 0.01, 0.025, 0.1, 0.5, 2.5};  // seconds

  mutable std::mutex mutex_;
  std::map<int, std::int64_t> answers_;
  std::map<std::size_t, std::int64_t> tokenUses_;
  std::array<std::int64_t, kBounds.size() + 1> commitTimes_{};
  double commitSeconds_ = 0;
  std::int64_t commits_ = 0;
  std::int64_t uploads_ = 0;
  std::int64_t freshDecisions_ = 0;
  std::int64_t repeatedDecisions_ = 0;
  std::int64_t storeLosses_ = 0;
};

}  // namespace quillon::receiver
