// The push service's side of the demo: the typical remote-notification request run end to end on
// a simulated device, with the application's extension started as a real child process
// (`kavo-push extension`) over a socket pair. Runs on the calling thread, which serves the
// application's call; one run at a time per process.
#ifndef KAVO_TOOLS_KAVO_PUSH_DEMO_DEMO_SERVICE_H
#define KAVO_TOOLS_KAVO_PUSH_DEMO_DEMO_SERVICE_H

#include "demo/demo_device.h"
#include "demo/demo_trace.h"

namespace KavoTool {

// Every step goes to `trace`, which ends with the public code and the result returned.
void RunTypicalRequest(const DemoScenario& scenario, DemoTrace& trace);

}  // namespace KavoTool

#endif  // KAVO_TOOLS_KAVO_PUSH_DEMO_DEMO_SERVICE_H
