#include "service/proc_sample.h"

#include <dirent.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>

namespace KavoTool {

namespace {

// Counts the entries of a directory whose names start with a digit; -1 when it cannot be read.
template <typename Visit>
long CountNumbered(const std::string& path, Visit visit)
{
    DIR* dir = opendir(path.c_str());
    if (dir == nullptr) {
        return -1;
    }
    long count = 0;
    while (dirent* entry = readdir(dir)) {
        if (entry->d_name[0] >= '0' && entry->d_name[0] <= '9' && visit(entry->d_name)) {
            ++count;
        }
    }
    closedir(dir);
    return count;
}

// The parent pid in /proc/PID/stat, read after the command name (which may hold spaces).
pid_t ParentOf(const char* pid)
{
    std::ifstream in(std::string("/proc/") + pid + "/stat");
    std::string stat;
    std::getline(in, stat);
    size_t close = stat.rfind(')');
    if (close == std::string::npos || close + 4 >= stat.size()) {
        return -1;
    }
    return static_cast<pid_t>(std::atol(stat.c_str() + close + 4));  // ") S PPID"
}

long StatusField(pid_t pid, const char* name)
{
    std::ifstream in("/proc/" + std::to_string(pid) + "/status");
    std::string line;
    size_t length = std::strlen(name);
    while (std::getline(in, line)) {
        if (line.compare(0, length, name) == 0 && line.size() > length && line[length] == ':') {
            return std::atol(line.c_str() + length + 1);
        }
    }
    return -1;
}

}  // namespace

bool SampleProcess(pid_t pid, ProcSample& sample)
{
    std::string base = "/proc/" + std::to_string(pid);
    sample.threads = StatusField(pid, "Threads");
    sample.rssKib = StatusField(pid, "VmRSS");
    sample.fds = CountNumbered(base + "/fd", [](const char*) { return true; });
    sample.children = CountNumbered("/proc", [pid](const char* name) { return ParentOf(name) == pid; });
    return sample.threads >= 0 && sample.fds >= 0 && sample.rssKib >= 0;
}

std::string DescribeSample(const ProcSample& sample)
{
    char text[128];
    std::snprintf(text, sizeof(text), "threads %ld, fds %ld, children %ld, rss %.1f MiB", sample.threads, sample.fds,
                  sample.children, static_cast<double>(sample.rssKib) / 1024.0);
    return text;
}

}  // namespace KavoTool
