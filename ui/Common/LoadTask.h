// Background work whose result a view model shows.
#pragma once

#include <functional>
#include <memory>
#include <utility>

#include "platform/ScreenServices.h"

namespace quillon {

// Dropped or replaced, it delivers nothing any more; the work itself goes on to its end. The work runs in the
// background, what it returns is delivered with the model on the main queue, unless the model or the handle is gone by
// then. Both functions must hold no reference to the model.
class [[nodiscard]] LoadTask {
 public:
  // Work over the services: a function of ScreenServices&.
  template <class Model, class Work, class Deliver>
  static LoadTask start(const std::shared_ptr<ScreenServices>& sdk, std::weak_ptr<Model> model, Work work,
                        Deliver deliver) {
    LoadTask task;
    sdk->run([sdk, prepared = task.delivery(std::move(model), std::move(deliver)), work = std::move(work)]() mutable {
      return prepared(work(*sdk));
    });
    return task;
  }

  // Work over what the screens show: a function of ScreenContent and ScreenServices&.
  template <class Model, class Work, class Deliver>
  static LoadTask startWithContent(const std::shared_ptr<ScreenServices>& sdk, std::weak_ptr<Model> model, Work work,
                                   Deliver deliver) {
    LoadTask task;
    sdk->load([sdk, prepared = task.delivery(std::move(model), std::move(deliver)),
               work = std::move(work)](const ScreenContent& content) mutable { return prepared(work(content, *sdk)); });
    return task;
  }

 private:
  LoadTask() : handle_(std::make_shared<char>()) {}

  template <class Model, class Deliver>
  auto delivery(std::weak_ptr<Model> model, Deliver deliver) const {
    return [model = std::move(model), handle = std::weak_ptr<void>(handle_), deliver = std::move(deliver)](auto value) {
      return Job([model, handle, deliver, value = std::move(value)]() mutable {
        const auto alive = model.lock();
        if (alive && !handle.expired()) deliver(*alive, std::move(value));
      });
    };
  }

  std::shared_ptr<void> handle_;
};

}  // namespace quillon
