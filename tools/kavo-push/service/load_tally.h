// What load's clients saw: requests sent and answered, answers by public code, latency, and the
// failures of the checks (answers lost, duplicated, given to the wrong request, or with a code the
// request should not get). A client process passes its tally to load's main process as text.
// Plain data.
#ifndef KAVO_TOOLS_KAVO_PUSH_SERVICE_LOAD_TALLY_H
#define KAVO_TOOLS_KAVO_PUSH_SERVICE_LOAD_TALLY_H

#include <cstdint>
#include <map>
#include <string>

#include "service/latency_histogram.h"

namespace KavoTool {

struct LoadTally {
    uint64_t sent = 0;
    uint64_t answered = 0;
    uint64_t notSent = 0;  // left unsent once the service could not be reached
    uint64_t lost = 0;     // sent, and no answer came within the wait
    uint64_t refused = 0;  // sent, and the service closed the connection instead of answering
    uint64_t duplicated = 0;
    uint64_t misdirected = 0;
    uint64_t wrongCode = 0;
    uint64_t outage = 0;  // a platform service's outage code, accepted while the service runs chaos
    std::map<int32_t, uint64_t> codes;
    std::map<std::string, uint64_t> faults;  // requests by the fault they asked for
    LatencyHistogram latency;
    std::string firstProblem;  // the first failed check or transport error, in words

    uint64_t CheckFailures() const { return lost + refused + duplicated + misdirected + wrongCode; }
    void Problem(const std::string& text);
    void Merge(const LoadTally& other);
    std::string Serialise() const;
    bool Parse(const std::string& text);
};

}  // namespace KavoTool

#endif  // KAVO_TOOLS_KAVO_PUSH_SERVICE_LOAD_TALLY_H
