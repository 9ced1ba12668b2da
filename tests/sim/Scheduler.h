// Which of all jobs that may run runs next.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/Executors.h"
#include "tests/sim/Choices.h"

namespace quillon::sim {

// Holds the jobs of all processes and of the network. On one thread, as all of a simulation.
class Scheduler : public std::enable_shared_from_this<Scheduler> {
 public:
  static constexpr int network = -1;   // an owner besides the processes, which are numbered from 0
  static constexpr int unordered = 0;  // the lane whose jobs run in any order; those of every other lane keep theirs

  void post(int owner, int lane, Job job);

  // Runs one job: any that may run, or, without choices, the one that was posted first. False when none may.
  bool runOne(Choices* choices);
  [[nodiscard]] bool isIdle() const { return jobs_.empty(); }
  [[nodiscard]] bool hasJobsOf(int owner) const;

  // The owner's process has ended: none of its jobs runs any more, and those it posts are kept until bury().
  void end(int owner);
  void bury();

  // The queues of one process.
  std::shared_ptr<Executors> executorsFor(int owner);

 private:
  struct Entry {
    int owner;
    int lane;
    Job job;
  };
  class Queue;
  class Queues;

  std::vector<Entry> jobs_;  // in the order in which they were posted
  std::vector<Entry> dropped_;
  std::vector<int> ended_;
};

}  // namespace quillon::sim
