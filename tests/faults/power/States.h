// The possible disk states after a power cut.
#pragma once

#include <cstddef>
#include <functional>
#include <random>

#include "tests/faults/power/Disk.h"

namespace quillon::test {

// Visits the states that the disk may be in after a power cut now. Of the changes in flight: none, all, each part
// alone, all but each part, each prefix, every subset of few parts, and random subsets. A write counts as one part, and
// as its sectors of 512 or 4096 bytes; a file's size may be the old or the new one. If names and several files are in
// flight, visits every combination up to `combinations`, else each choice with the extremes of the others and that many
// random combinations. A state may be visited more than once.
void forEachState(const Disk& disk, std::size_t combinations, std::mt19937& random,
                  const std::function<void(const DiskState& state)>& visit);

}  // namespace quillon::test
