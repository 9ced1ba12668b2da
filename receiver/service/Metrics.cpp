#include "receiver/service/Metrics.h"

#include <algorithm>
#include <sstream>

namespace quillon::receiver {

void Metrics::answered(int status) {
  const std::scoped_lock lock(mutex_);
  ++answers_[status];
}

void Metrics::committed(std::size_t uploads, std::int64_t decisions, std::int64_t fresh,
                        std::chrono::nanoseconds time) {
  const double seconds = std::chrono::duration<double>(time).count();
  const std::scoped_lock lock(mutex_);
  ++commits_;
  uploads_ += static_cast<std::int64_t>(uploads);
  freshDecisions_ += fresh;
  repeatedDecisions_ += decisions - fresh;
  commitSeconds_ += seconds;
  ++commitTimes_[static_cast<std::size_t>(std::ranges::lower_bound(kBounds, seconds) - kBounds.begin())];
}

void Metrics::storeLost() {
  const std::scoped_lock lock(mutex_);
  ++storeLosses_;
}

void Metrics::tokenUsed(std::size_t line) {
  const std::scoped_lock lock(mutex_);
  ++tokenUses_[line];
}

std::string Metrics::text(const Present& present) const {
  std::ostringstream out;
  const auto family = [&out](const char* name, const char* type, const char* help) {
    out << "# HELP quillon_receiver_" << name << ' ' << help << "\n# TYPE quillon_receiver_" << name << ' ' << type
        << '\n';
  };
  const auto single = [&](const char* name, const char* type, const char* help, auto value) {
    family(name, type, help);
    out << "quillon_receiver_" << name << ' ' << value << '\n';
  };
  const std::scoped_lock lock(mutex_);
  family("answers_total", "counter", "Requests answered, by HTTP status.");
  for (const auto& [status, count] : answers_) {
    out << "quillon_receiver_answers_total{status=\"" << status << "\"} " << count << '\n';
  }
  family("decisions_total", "counter", "Decisions acknowledged: new ones, and those that were kept already.");
  out << "quillon_receiver_decisions_total{kept=\"new\"} " << freshDecisions_ << '\n'
      << "quillon_receiver_decisions_total{kept=\"repeated\"} " << repeatedDecisions_ << '\n';
  single("uploads_total", "counter", "Uploads acknowledged.", uploads_);
  family("token_uses_total", "counter", "Uploads by the line of the token in its file.");
  for (const auto& [line, count] : tokenUses_) {
    out << "quillon_receiver_token_uses_total{line=\"" << line << "\"} " << count << '\n';
  }
  family("commit_seconds", "histogram", "Duration of a commit.");
  std::int64_t below = 0;
  for (std::size_t i = 0; i < kBounds.size(); ++i) {
    below += commitTimes_[i];
    out << "quillon_receiver_commit_seconds_bucket{le=\"" << kBounds[i] << "\"} " << below << '\n';
  }
  out << "quillon_receiver_commit_seconds_bucket{le=\"+Inf\"} " << commits_ << "\nquillon_receiver_commit_seconds_sum "
      << commitSeconds_ << "\nquillon_receiver_commit_seconds_count " << commits_ << '\n';
  single("store_losses_total", "counter", "Failures of the store.", storeLosses_);
  single("store_reachable", "gauge", "1 while the store takes uploads.", present.isStoreReachable ? 1 : 0);
  single("connections", "gauge", "Open connections.", present.connections);
  single("waiting_uploads", "gauge", "Uploads that wait for a commit.", present.waitingUploads);
  single("received_bytes", "gauge", "Bytes of bodies that are not answered yet.", present.receivedBytes);
  return out.str();
}

}  // namespace quillon::receiver
