// Seeds that once failed, each because of a fault that has been fixed.
#pragma once

#include <array>
#include <cstdint>

namespace quillon::sim {

inline constexpr std::array<std::uint64_t, 30> keptSeeds{
    1,          // a listener missed a removal by another process before the set-up
    9,          // a decision was not uploaded, since the first configuration asked again
    22,         // analytics received a consent before the compliance type was known
    39,         // a set-up in testing mode without a cached configuration logged an error
    110,        // a listener missed a decision that another process had stored already
    183,        // decisions left pending by a closed process were not uploaded by the other
    200,        // as 110, before a set-up
    2335,       // an upload named a subject that could not be stored
    2497,       // as 2335, with another application in between
    4126,       // an upload's response was applied to decisions made after a removal of consents
    4406,       // as 4126, with three processes
    5149,       // as 4126
    9550,       // after another process's removal, closing a banner granted consents without a compliance type
    17032,      // closing the banner reset the explicit answer that another process had stored
    17344,      // a decision that could not be sent was not retried before the next start
    20416,      // a failed download returned the document that another process had replaced meanwhile
    50575,      // as 20416, under an earlier configuration's compliance type
    103076,     // an answer that the server asked to be resent was not resent before the next start
    170209,     // a removal was completed for a configuration that was no longer in force
    176782,     // a gate missed another process's decision during the first load
    989402466,  // defaults were recorded as granted, since a new configuration's compliance type could not be stored
    // With privacy signals.
    2'000'000'002,  // saving the choices as shown did not count as the user's answer
    2'000'000'007,  // analytics received a consent that the signal refuses
    2'000'000'049,  // the signal's purposes were forgotten after another process had removed the document
    2'000'001'124,  // nobody answers, and the first download fails: only its retry makes the SDK ready
    2'000'000'100,  // analytics was not told of a signal's refusal of a purpose that is not in the document
    2'000'001'307,  // the signal's decisions under the first configuration were not uploaded
    2'000'001'608,  // a purpose governed by tracking was declined, since the signal covered it in an older document
    2'000'317'622,  // analytics was not told of a signal's refusal after a set-up for a channel without a document
    2'000'002'293,  // a refusal that the user saved as the signal ended was dropped
};

}  // namespace quillon::sim
