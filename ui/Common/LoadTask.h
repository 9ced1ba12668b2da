// Asynchronous loading for view models.
#pragma once

#include <functional>
#include <memory>
#include <utility>

#include "platform/ScreenServices.h"

namespace quillon {

// A handle of background work. The result is delivered on the main queue together with the model, unless the model or
// the handle has been destroyed; destroying or replacing the handle does not interrupt the work. Neither function may
// hold a reference to the model.
class [[nodiscard]] LoadTask {
 public:
  // `work` is a function of ScreenServices&.
  template <class Model, class Work, class Deliver>
  static LoadTask start(const std::shared_ptr<ScreenServices>& sdk, std::weak_ptr<Model> model, Work work,
                        Deliver deliver) {
    LoadTask task;
    sdk->run([sdk, prepared = task.delivery(std::move(model), std::move(deliver)), work = std::move(work)]() mutable {
      return prepared(work(*sdk));
    });
    return task;
  }

  // `work` is a function of ScreenContent and ScreenServices&.
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
