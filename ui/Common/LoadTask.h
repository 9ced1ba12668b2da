// Background work whose result a view model shows.
#pragma once

#include <memory>
#include <utility>

#include "core/ConsentSDK/ConsentSDKCore.h"

namespace quillon {

// Dropped or replaced, it delivers nothing any more; the work itself goes on to its end.
class [[nodiscard]] LoadTask {
 public:
  // Runs the work, a function of the core that returns a Task<T>, in the background, and delivers (model, T) on the
  // main queue, unless the model or the handle is gone by then. Both functions must hold no reference to the model.
  template <class Model, class Work, class Deliver>
  static LoadTask start(const std::shared_ptr<ConsentSDK::Core>& core, std::weak_ptr<Model> model, Work work,
                        Deliver deliver) {
    auto handle = std::make_shared<char>();
    core->tasks->start([core, model = std::move(model), handle = std::weak_ptr(handle), work = std::move(work),
                        deliver = std::move(deliver)]() mutable -> Task<void> {
      auto value = co_await work(*core);
      core->onMain([model = std::move(model), handle = std::move(handle), deliver = std::move(deliver),
                    value = std::move(value)]() mutable {
        const auto alive = model.lock();
        if (alive && !handle.expired()) deliver(*alive, std::move(value));
      });
    });
    return LoadTask(std::move(handle));
  }

 private:
  explicit LoadTask(std::shared_ptr<void> handle) : handle_(std::move(handle)) {}
  std::shared_ptr<void> handle_;
};

}  // namespace quillon
