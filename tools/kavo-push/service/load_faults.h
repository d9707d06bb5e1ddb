// The faults `kavo-push load` mixes into its requests, each at its own rate, and the public code
// each must end with. A fault travels as the notification's data, which the service's extension
// reads as the way to misbehave. Stateless.
#ifndef KAVO_TOOLS_KAVO_PUSH_SERVICE_LOAD_FAULTS_H
#define KAVO_TOOLS_KAVO_PUSH_SERVICE_LOAD_FAULTS_H

#include <cstdint>
#include <string>

#include "request/extension_process.h"

namespace KavoTool {

struct FaultRates {
    double crash = 0;
    double hang = 0;
    double garbage = 0;
    double oversized = 0;
};

// "crash=1%,garbage=1%,oversized=1%,hang=0.01%" (a bare number is a fraction: 0.01 is 1%).
// Fails on an unknown kind, a rate outside 0..100% or rates summing past 100%.
bool ParseFaultRates(const std::string& text, FaultRates& rates, std::string& error);
std::string DescribeFaults(const FaultRates& rates);

// The behaviour a request with `draw` (uniform in [0, 1)) asks of the extension.
ExtensionBehaviour PickFault(const FaultRates& rates, double draw);
// The public code a request asking for `behaviour` must end with.
int32_t ExpectedCode(ExtensionBehaviour behaviour);
// A code the library gives when a platform service stays away past its retries; a request caught
// in a chaos window may end with it.
bool IsOutageCode(int32_t code);
// What `load` calls the behaviour in its report: none, crash, hang, garbage, oversized.
const char* FaultName(ExtensionBehaviour behaviour);

}  // namespace KavoTool

#endif  // KAVO_TOOLS_KAVO_PUSH_SERVICE_LOAD_FAULTS_H
