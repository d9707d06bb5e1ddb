// Load's report of a phase: requests/s, latency percentiles and a text histogram, the codes, the
// failures of the checks, and the service's threads, descriptors, children and memory from start
// to end. Text for a reader, or JSON. Stateless.
#ifndef KAVO_TOOLS_KAVO_PUSH_SERVICE_LOAD_REPORT_H
#define KAVO_TOOLS_KAVO_PUSH_SERVICE_LOAD_REPORT_H

#include <json/json.h>

#include <string>

#include "service/load_run.h"

namespace KavoTool {

// The phase passed: every answer came, to its own request, with the code its request must get,
// and (for the service) its threads, descriptors and children came back to their start values.
bool PhasePassed(const LoadPlan& plan, const LoadPhase& phase);
double RequestsPerSecond(const LoadPhase& phase);
// Memory after the early sample, as a fraction of it (1.05: 5% more); 0 when not sampled.
double RssGrowth(const ServiceWatch& watch);

std::string PhaseText(const std::string& title, const LoadPlan& plan, const LoadPhase& phase);
Json::Value PhaseJson(const LoadPlan& plan, const LoadPhase& phase);

}  // namespace KavoTool

#endif  // KAVO_TOOLS_KAVO_PUSH_SERVICE_LOAD_REPORT_H
