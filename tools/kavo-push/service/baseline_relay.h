// What the transport alone allows: a relay process that takes the applications' requests on a
// socket, as the service does, hands each to its application's echo process over a socket pair,
// as the service does its extension, and passes the echo's answer back. No library work: the echo
// answers the bytes of a typical service answer it was given at the start. Load measures the
// service against it, with the same clients.
#ifndef KAVO_TOOLS_KAVO_PUSH_SERVICE_BASELINE_RELAY_H
#define KAVO_TOOLS_KAVO_PUSH_SERVICE_BASELINE_RELAY_H

#include <sys/types.h>

#include <string>
#include <vector>

#include "request/app_device.h"

namespace KavoTool {

// Forks the relay, which forks one echo process per application and listens at `socket`; -1 when
// it cannot fork. The relay ends on SIGTERM after its echo processes.
pid_t StartBaselineRelay(const std::string& socket, const std::vector<PushApp>& apps);

}  // namespace KavoTool

#endif  // KAVO_TOOLS_KAVO_PUSH_SERVICE_BASELINE_RELAY_H
