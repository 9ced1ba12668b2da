// Suspends a task until a callback.
#pragma once

#include <functional>

#include "core/Tasks/Task.h"

namespace quillon {

// Calls `start` with a job and suspends the awaiting task until the job runs, once and on any thread; the task resumes
// on its own executor. Dropping the job destroys the task. As soon as `start` has handed over the job, the task may
// resume and destroy what `start` refers to.
Task<void> suspendedUntilRun(std::move_only_function<void(Job)> start);

}  // namespace quillon
