// The one way in which a task waits for something that is no task.
#pragma once

#include <functional>

#include "core/Tasks/Task.h"

namespace quillon {

// Calls the function with a job and suspends the task that awaits it until that job is run, once and on any thread; the
// task then goes on on its own executor. A job that is dropped ends the task, with everything that it holds. What the
// function refers to may be gone as soon as it has given the job away.
Task<void> suspendedUntilRun(std::move_only_function<void(Job)> start);

}  // namespace quillon
