// A FIFO mutex for coroutines.
#pragma once

#include <memory>

#include "core/Tasks/Task.h"

namespace quillon {

// Thread-safe. Waiting blocks no thread.
class TaskQueue {
  struct Line;

 public:
  TaskQueue();

  // A place in the queue, held until the last copy is dropped, even before its turn.
  class Place {
   public:
    // Waits until all earlier places are released.
    Task<void> turn() const;

   private:
    friend class TaskQueue;
    struct Held;
    explicit Place(std::shared_ptr<Held> held) : held_(std::move(held)) {}
    std::shared_ptr<Held> held_;
  };

  // Takes the next place. Turns follow the order of these calls, whenever tasks begin to wait.
  [[nodiscard]] Place join();

 private:
  std::shared_ptr<Line> line_;
};

}  // namespace quillon
