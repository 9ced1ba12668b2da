// Seeds that once failed, each on a fault that was mended.
#pragma once

#include <array>
#include <cstdint>

namespace quillon::sim {

inline constexpr std::array<std::uint64_t, 29> keptSeeds{
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
    // With privacy signals.
    2'000'000'002,  // what the user saved as it was shown did not count as the user's own
    2'000'000'007,  // analytics was told of a consent that the signal refuses
    2'000'000'049,  // what the signal stands for was forgotten as another process had removed the document
    2'000'000'100,  // analytics was not told that a signal refuses a purpose which the document does not list
    2'000'001'307,  // what the signal decided with the first configuration was not uploaded
    2'000'001'608,  // a purpose that tracking governs was declined, as the signal stood for it in an older document
    2'000'317'622,  // analytics was not told that a signal refuses, as the set-up for another channel had no document yet
    2'000'002'293,  // a refusal that was saved as the signal ended ended with it
};

}  // namespace quillon::sim
