// Runs background work for the public interface, with a callback or as a future.
#pragma once

#include <functional>
#include <future>
#include <memory>
#include <type_traits>
#include <utility>

#include "core/ConsentSDK/WithoutThrowing.h"
#include "core/ConsentSDK/Work.h"

namespace quillon {

// The promise behind a public future: holds `dropped` when its work is dropped.
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

// Receives the result of background work.
template <class T>
using Receiver = std::move_only_function<void(T)>;

// Passes the result to a callback on the main queue.
template <class T>
Receiver<T> receiver(Work& work, std::function<void(T)> callback) {
  return [&work, callback = std::move(callback)](T value) mutable {
    if (!callback) return;
    work.onMain([callback = std::move(callback), value = std::move(value)]() mutable { callback(std::move(value)); });
  };
}

template <class T>
Receiver<T> receiver(std::shared_ptr<Promise<T>> promise) {
  return [promise = std::move(promise)](T value) { promise->keep(std::move(value)); };
}

// Runs the work in the background. When the work is dropped, the receiver is destroyed without being called.
template <class T>
void deliver(Work& work, std::move_only_function<T()> background, Receiver<T> receive) {
  work.run([background = std::move(background), receive = std::move(receive)]() mutable { receive(background()); });
}

// As above, for work that suspends.
template <class T>
void deliver(Work& work, std::move_only_function<Task<T>()> background, Receiver<T> receive) {
  work.start([background = std::move(background), receive = std::move(receive)]() mutable -> Task<void> {
    receive(co_await background());
  });
}

// Runs an operation of the public interface with a callback.
template <class T, class Background>
void answer(Work& work, std::function<void(T)> callback, Background background) {
  withoutThrowing([&] {
    std::move_only_function<std::invoke_result_t<Background&>()> erased(std::move(background));
    deliver<T>(work, std::move(erased), receiver<T>(work, std::move(callback)));
  });
}

// Runs one as a future, which holds `dropped` when the SDK is destroyed first.
template <class T, class Background>
std::future<T> promise(Work& work, Background background, T dropped = T()) {
  return withoutThrowing(
      [&] {
        const auto kept = std::make_shared<Promise<T>>(std::move(dropped));
        auto future = kept->future();
        std::move_only_function<std::invoke_result_t<Background&>()> erased(std::move(background));
        deliver<T>(work, std::move(erased), receiver<T>(kept));
        return future;
      },
      std::future<T>());
}

// An operation without a result.
inline void answerLater(Work& work, std::function<void()> done, std::move_only_function<Task<void>()> background) {
  work.start([&work, done = std::move(done), background = std::move(background)]() mutable -> Task<void> {
    co_await background();
    if (done) work.onMain([done = std::move(done)] { done(); });
  });
}

inline std::future<void> futureOf(Work& work, std::move_only_function<Task<void>()> background) {
  const std::shared_ptr<std::promise<void>> promise(new std::promise<void>, [](std::promise<void>* kept) {
    kept->set_value();
    delete kept;
  });
  auto future = promise->get_future();
  work.start([promise, background = std::move(background)]() mutable -> Task<void> { co_await background(); });
  return future;
}

}  // namespace quillon
