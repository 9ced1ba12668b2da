#include "receiver/store/CommitQueue.h"

#include <algorithm>
#include <utility>

namespace quillon::receiver {
namespace {

constexpr std::chrono::milliseconds kFirstPause{100};
constexpr std::chrono::milliseconds kLongestPause{1000};
constexpr std::chrono::seconds kCheckWhenIdle{2};
constexpr int kMostAttempts = 10;

}  // namespace

CommitQueue::CommitQueue(Open open, int writers, Observer observer)
    : open_(std::move(open)), observer_(std::move(observer)) {
  for (int i = 0; i < writers; ++i) writers_.emplace_back([this] { write(); });
}

CommitQueue::~CommitQueue() {
  finish();
}

bool CommitQueue::submit(Upload upload, Done done) {
  {
    const std::scoped_lock lock(mutex_);
    const std::size_t decisions = upload.decisions.size();
    if (finishing_ || connected_ == 0 || waiting_.size() >= kMaxWaiting ||
        waitingDecisions_ + decisions > kMaxWaitingDecisions) {
      return false;
    }
    waitingDecisions_ += decisions;
    waiting_.push_back({std::move(upload), std::move(done), std::chrono::steady_clock::now()});
  }
  changed_.notify_one();
  return true;
}

bool CommitQueue::isReachable() const {
  const std::scoped_lock lock(mutex_);
  return connected_ > 0;
}

std::size_t CommitQueue::waiting() const {
  const std::scoped_lock lock(mutex_);
  return waiting_.size();
}

void CommitQueue::finish() {
  {
    const std::scoped_lock lock(mutex_);
    finishing_ = true;
  }
  changed_.notify_all();
  for (auto& writer : std::exchange(writers_, {})) writer.join();
  failAllWaiting();
}

void CommitQueue::write() {
  while (auto store = openPatiently()) {
    {
      const std::scoped_lock lock(mutex_);
      ++connected_;
    }
    if (observer_.opened) observer_.opened();
    for (bool isGood = true; isGood;) {
      std::unique_lock lock(mutex_);
      auto batch = takeBatch(lock);
      if (batch.empty() && finishing_) {
        --connected_;
        return;
      }
      lock.unlock();
      if (batch.empty()) {
        const auto checked = store->check();
        isGood = checked.has_value();
        if (!isGood && observer_.lost) observer_.lost(checked.error().text);
      } else {
        isGood = commit(*store, std::move(batch));
      }
    }
    bool isLast = false;
    {
      const std::scoped_lock lock(mutex_);
      isLast = --connected_ == 0;
    }
    // No writer is left, so senders get an answer at once.
    if (isLast) failAllWaiting();
  }
}

std::unique_ptr<DecisionStore> CommitQueue::openPatiently() {
  for (auto pause = kFirstPause;; pause = std::min(2 * pause, kLongestPause)) {
    {
      const std::scoped_lock lock(mutex_);
      if (finishing_) return nullptr;
    }
    auto store = open_();
    if (store) return *std::move(store);
    if (observer_.lost) observer_.lost(store.error().text);
    std::unique_lock lock(mutex_);
    changed_.wait_for(lock, pause, [this] { return finishing_; });
  }
}

std::vector<CommitQueue::Waiting> CommitQueue::takeBatch(std::unique_lock<std::mutex>& lock) {
  changed_.wait_for(lock, kCheckWhenIdle, [this] { return finishing_ || !waiting_.empty(); });
  std::vector<Waiting> batch;
  std::size_t decisions = 0;
  while (!waiting_.empty() && batch.size() < kMaxBatch) {
    const std::size_t more = waiting_.front().upload.decisions.size();
    if (!batch.empty() && decisions + more > kMaxBatchDecisions) break;
    decisions += more;
    batch.push_back(std::move(waiting_.front()));
    waiting_.pop_front();
  }
  waitingDecisions_ -= decisions;
  return batch;
}

bool CommitQueue::commit(DecisionStore& store, std::vector<Waiting> batch) {
  const auto begin = std::chrono::steady_clock::now();
  std::erase_if(batch, [begin](const Waiting& waiting) {
    const bool isLate = begin - waiting.since > kMaxWait;
    if (isLate) waiting.done(Outcome::busy);
    return isLate;
  });
  if (batch.empty()) return true;
  std::vector<Upload> uploads;
  std::int64_t decisions = 0;
  for (Waiting& waiting : batch) {
    decisions += static_cast<std::int64_t>(waiting.upload.decisions.size());
    uploads.push_back(std::move(waiting.upload));
  }
  const auto added = add(store, uploads);
  if (added) {
    if (observer_.committed) {
      observer_.committed(batch.size(), decisions, *added, std::chrono::steady_clock::now() - begin);
    }
    for (const Waiting& waiting : batch) waiting.done(Outcome::committed);
    return true;
  }
  if (added.error().kind == StoreError::Kind::refused && batch.size() > 1) {
    // One upload fails the batch: commit each separately.
    bool isGood = true;
    for (std::size_t i = 0; i < batch.size(); ++i) {
      std::vector<Waiting> one(1);
      one[0] = {std::move(uploads[i]), std::move(batch[i].done), batch[i].since};
      if (isGood) {
        isGood = commit(store, std::move(one));
      } else {
        one[0].done(Outcome::busy);
      }
    }
    return isGood;
  }
  const bool isRefused = added.error().kind == StoreError::Kind::refused;
  if (observer_.lost) observer_.lost(added.error().text);
  for (const Waiting& waiting : batch) waiting.done(isRefused ? Outcome::refused : Outcome::busy);
  return added.error().kind != StoreError::Kind::away;
}

std::expected<std::int64_t, StoreError> CommitQueue::add(DecisionStore& store, std::span<const Upload> uploads) const {
  auto added = store.add(uploads);
  for (int i = 1; i < kMostAttempts && !added && added.error().kind == StoreError::Kind::conflict; ++i) {
    added = store.add(uploads);
  }
  return added;
}

void CommitQueue::failAllWaiting() {
  std::deque<Waiting> failed;
  {
    const std::scoped_lock lock(mutex_);
    if (connected_ > 0) return;
    failed.swap(waiting_);
    waitingDecisions_ = 0;
  }
  for (const Waiting& waiting : failed) waiting.done(Outcome::busy);
}

}  // namespace quillon::receiver
