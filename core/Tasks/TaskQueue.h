// A FIFO mutex for coroutines.
#pragma once

#include <memory>

#include "core/Tasks/Task.h"

namespace quillon {

// Thread-safe. A task that waits holds no thread.
class TaskQueue {
  struct Line;

 public:
  TaskQueue();

  // A place in the line, held until it is dropped, whether its turn has come by then or not. The last copy counts.
  class Place {
   public:
    // Returns when every earlier place has been left.
    Task<void> turn() const;

   private:
    friend class TaskQueue;
    struct Held;
    explicit Place(std::shared_ptr<Held> held) : held_(std::move(held)) {}
    std::shared_ptr<Held> held_;
  };

  // Takes the next place. The order of these calls is the order of the turns, whenever the tasks get to wait for them.
  [[nodiscard]] Place join();

 private:
  std::shared_ptr<Line> line_;
};

}  // namespace quillon
