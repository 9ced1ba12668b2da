// The states in which a power cut may leave a disk.
#pragma once

#include <cstddef>
#include <functional>
#include <random>

#include "tests/faults/power/Disk.h"

namespace quillon::test {

// Visits states that the disk may be in when the power goes now. Of what is under way: nothing, all, each part alone,
// all but each part, each first parts, every subset of few parts, and subsets at random; a write counts as one part,
// and as its sectors of 512 or 4096 bytes, and the size of a file may be the one before or the one after. Where names
// and several files are under way, every combination is visited when there are at most so many, else each choice with
// the extremes of the others and so many combinations at random. A state may be visited more than once.
void forEachState(const Disk& disk, std::size_t combinations, std::mt19937& random,
                  const std::function<void(const DiskState& state)>& visit);

}  // namespace quillon::test
