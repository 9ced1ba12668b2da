// How the public interface runs work in the background: with a callback, or as a future.
#pragma once

#include <functional>
#include <future>
#include <memory>
#include <utility>

#include "core/ConsentSDK/Work.h"

namespace quillon {

// The promise behind a future of the public interface: kept with `dropped` when the work behind it is dropped.
template <class T>
class Promise {
 public:
  explicit Promise(T dropped) : dropped_(std::move(dropped)) {}
  ~Promise() {
    if (!kept_) promise_.set_value(std::move(dropped_));
  }
  Promise(const Promise&) = delete;
  Promise& operator=(const Promise&) = delete;

  std::future<T> future() { return promise_.get_future(); }

  void keep(T value) {
    promise_.set_value(std::move(value));
    kept_ = true;
  }

 private:
  std::promise<T> promise_;
  T dropped_;
  bool kept_ = false;
};

template <class T>
using Background = std::move_only_function<Task<T>()>;

// Runs the work and answers on the main queue; not at all when the work is dropped.
template <class T>
void answerLater(Work& work, std::function<void(T)> answer, Background<T> background) {
  work.start([&work, answer = std::move(answer), background = std::move(background)]() mutable -> Task<void> {
    T value = co_await background();
    if (!answer) co_return;
    work.onMain([answer = std::move(answer), value = std::move(value)]() mutable { answer(std::move(value)); });
  });
}

inline void answerLater(Work& work, std::function<void()> done, Background<void> background) {
  work.start([&work, done = std::move(done), background = std::move(background)]() mutable -> Task<void> {
    co_await background();
    if (done) work.onMain([done = std::move(done)] { done(); });
  });
}

// Runs the work; the future holds `dropped` when the work is dropped.
template <class T>
std::future<T> futureOf(Work& work, Background<T> background, T dropped) {
  const auto promise = std::make_shared<Promise<T>>(std::move(dropped));
  auto future = promise->future();
  work.start(
      [promise, background = std::move(background)]() mutable -> Task<void> { promise->keep(co_await background()); });
  return future;
}

inline std::future<void> futureOf(Work& work, Background<void> background) {
  const std::shared_ptr<std::promise<void>> promise(new std::promise<void>, [](std::promise<void>* kept) {
    kept->set_value();
    delete kept;
  });
  auto future = promise->get_future();
  work.start([promise, background = std::move(background)]() mutable -> Task<void> { co_await background(); });
  return future;
}

}  // namespace quillon
