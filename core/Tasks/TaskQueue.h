// Lets one task at a time into a stretch of work, in the order of their coming.
#pragma once

#include <memory>

#include "core/Tasks/Task.h"

namespace quillon {

// Thread-safe. A task that waits holds no thread.
class TaskQueue {
 public:
  TaskQueue();

  // Lets the next one in when it goes.
  using Turn = std::shared_ptr<void>;

  Task<Turn> enter();

 private:
  struct Line;
  std::shared_ptr<Line> line_;
};

}  // namespace quillon
