// Suspends a task until a callback.
#pragma once

#include <functional>

#include "core/Tasks/Task.h"

namespace quillon {

// Calls `start` with a job and suspends the awaiting task until the job runs, once and on any thread; the task resumes
// on its own executor. Dropping the job destroys the task. What `start` refers to may be gone as soon as it has passed
// the job on.
Task<void> suspendedUntilRun(std::move_only_function<void(Job)> start);

}  // namespace quillon
