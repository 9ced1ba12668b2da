// How the public interface runs work in the background: with a callback, or as a future.
#pragma once

#include <functional>
#include <future>
#include <memory>
#include <utility>

#include "core/Tasks/Task.h"

namespace quillon {

// The promise behind a future of the public interface: kept with an empty result when the work behind it is dropped.
template <class T>
class Promise {
 public:
  std::future<T> future() { return promise_.get_future(); }

  void keep(T value) {
    promise_.set_value(std::move(value));
    kept_ = true;
  }

  ~Promise() {
    if (!kept_) promise_.set_value(T());
  }

 private:
  std::promise<T> promise_;
  bool kept_ = false;
};

template <>
class Promise<void> {
 public:
  std::future<void> future() { return promise_.get_future(); }
  ~Promise() { promise_.set_value(); }

 private:
  std::promise<void> promise_;
};

template <class T>
struct Asynchronous {
  using Work = std::move_only_function<Task<T>()>;

  // Starts the work and answers on the main queue.
  template <class Core>
  static void callback(const std::shared_ptr<Core>& core, std::function<void(T)> answer, Work work) {
    core->tasks->start([core, answer = std::move(answer), work = std::move(work)]() mutable -> Task<void> {
      T value = co_await work();
      if (answer)
        core->onMain([answer = std::move(answer), value = std::move(value)]() mutable { answer(std::move(value)); });
    });
  }

  template <class Core>
  static std::future<T> future(const std::shared_ptr<Core>& core, Work work) {
    auto promise = std::make_shared<Promise<T>>();
    auto future = promise->future();
    core->tasks->start([core, promise = std::move(promise), work = std::move(work)]() mutable -> Task<void> {
      promise->keep(co_await work());
    });
    return future;
  }
};

template <>
struct Asynchronous<void> {
  using Work = std::move_only_function<Task<void>()>;

  template <class Core>
  static void callback(const std::shared_ptr<Core>& core, std::function<void()> done, Work work) {
    core->tasks->start([core, done = std::move(done), work = std::move(work)]() mutable -> Task<void> {
      co_await work();
      if (done) core->onMain([done = std::move(done)] { done(); });
    });
  }

  template <class Core>
  static std::future<void> future(const std::shared_ptr<Core>& core, Work work) {
    auto promise = std::make_shared<Promise<void>>();
    auto future = promise->future();
    core->tasks->start(
        [core, promise = std::move(promise), work = std::move(work)]() mutable -> Task<void> { co_await work(); });
    return future;
  }
};

}  // namespace quillon
