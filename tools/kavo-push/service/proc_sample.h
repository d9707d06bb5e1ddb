// A look at a running process from /proc: its threads, open descriptors, children and resident
// memory, as `serve` reports its own and `load` watches the service's. Stateless; any thread.
#ifndef KAVO_TOOLS_KAVO_PUSH_SERVICE_PROC_SAMPLE_H
#define KAVO_TOOLS_KAVO_PUSH_SERVICE_PROC_SAMPLE_H

#include <sys/types.h>

#include <string>

namespace KavoTool {

struct ProcSample {
    long threads = -1;
    long fds = -1;
    long children = -1;
    long rssKib = -1;

    // The same threads, descriptors and children (memory may differ).
    bool SameResources(const ProcSample& other) const
    {
        return threads == other.threads && fds == other.fds && children == other.children;
    }
};

// False when the process is gone or its /proc entries cannot be read.
bool SampleProcess(pid_t pid, ProcSample& sample);
// "threads 5, fds 9, children 0, rss 7.3 MiB"
std::string DescribeSample(const ProcSample& sample);

}  // namespace KavoTool

#endif  // KAVO_TOOLS_KAVO_PUSH_SERVICE_PROC_SAMPLE_H
