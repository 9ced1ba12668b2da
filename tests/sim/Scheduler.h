// Selects the next job among all that are ready.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/Executors.h"
#include "tests/sim/Choices.h"

namespace quillon::sim {

// Holds the jobs of all processes and of the network. Single-threaded, like the whole simulation.
class Scheduler : public std::enable_shared_from_this<Scheduler> {
 public:
  static constexpr int network = -1;   // owner of network jobs; processes are numbered from 0
  static constexpr int unordered = 0;  // lane whose jobs run in any order; all other lanes are FIFO

  void post(int owner, int lane, Job job);

  // Runs one ready job: a random one, or without choices the oldest. False if none is ready.
  bool runOne(Choices* choices);
  [[nodiscard]] bool isIdle() const { return jobs_.empty(); }
  [[nodiscard]] bool hasJobsOf(int owner) const;

  // The owner's process has ended: its jobs do not run any more; jobs posted later are kept until bury().
  void end(int owner);
  void bury();

  // The executors of one process.
  std::shared_ptr<Executors> executorsFor(int owner);

 private:
  struct Entry {
    int owner;
    int lane;
    Job job;
  };
  class Queue;
  class Queues;

  std::vector<Entry> jobs_;  // in posting order
  std::vector<Entry> dropped_;
  std::vector<int> ended_;
};

}  // namespace quillon::sim
