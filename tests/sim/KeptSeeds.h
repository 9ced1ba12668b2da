// Seeds that once failed, each on a fault that was mended.
#pragma once

#include <array>
#include <cstdint>

namespace quillon::sim {

inline constexpr std::array<std::uint64_t, 21> keptSeeds{
    1,          // a listener was not told what another process had removed before the set-up
    9,          // a decision was not uploaded, as the first configuration asked again
    22,         // analytics was told of a consent although no compliance type was known
    39,         // a set-up in testing mode without a cached configuration logged an error
    110,        // a listener was not told, as its own process decided what another one had stored already
    183,        // what a closed process had left pending was not uploaded by the other
    200,        // as 110, before a set-up
    2335,       // an upload named a subject that could not be stored
    2497,       // the same, with another application in between
    4126,       // an answer to an upload counted for decisions made after the consents were removed
    4406,       // the same, with three processes
    5149,       // the same
    9550,       // a banner closed after another process had removed the consents granted under no compliance type
    17032,      // the same close took back that another process had been answered explicitly
    17344,      // a decision that could not be sent waited for the next start
    20416,      // a failed download served the document that another process had replaced meanwhile
    50575,      // as the last one, under the type of an earlier configuration
    103076,     // an answer that the server asked to send again waited for the next start
    170209,     // what a removal left to do was done for a document that was no longer in force
    176782,     // a gate did not see what another process had decided during the first load
    989402466,  // defaults were recorded as granted, as the compliance type of a new configuration could not be stored
};

}  // namespace quillon::sim
