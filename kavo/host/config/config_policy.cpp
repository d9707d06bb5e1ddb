#include "kavo/host/config/config_policy.h"

#include <sys/stat.h>

#include <cstdlib>
#include <cstring>
#include <string>

namespace {

constexpr const char* CONFIG_DIRS_ENV = "KAVO_CONFIG_DIRS";
constexpr const char* DEFAULT_CONFIG_DIR = "/etc/kavo";

bool IsRegularFile(const std::string& path)
{
    struct stat info {};
    return stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode);
}

// The first directory of the list that holds `name` as a regular file, as a full path; empty
// when no directory does. Empty list entries are skipped.
std::string FindInDirs(const std::string& dirs, const std::string& name)
{
    size_t start = 0;
    while (start <= dirs.size()) {
        size_t end = dirs.find(':', start);
        if (end == std::string::npos) {
            end = dirs.size();
        }
        if (end > start) {
            std::string candidate = dirs.substr(start, end - start);
            if (candidate.back() != '/') {
                candidate.push_back('/');
            }
            candidate += name;
            if (IsRegularFile(candidate)) {
                return candidate;
            }
        }
        start = end + 1;
    }
    return std::string();
}

}  // namespace

extern "C" char* GetOneCfgFile(const char* pathSuffix, char* buf, unsigned int bufLength)
{
    if (buf == nullptr || bufLength == 0) {
        return nullptr;
    }
    buf[0] = '\0';
    if (pathSuffix == nullptr || pathSuffix[0] == '\0') {
        return nullptr;
    }
    const char* dirs = std::getenv(CONFIG_DIRS_ENV);
    // A found file whose path does not fit is reported as none: a shortened path would name
    // another file, and a later directory must not override the first one that holds it.
    std::string found = FindInDirs(dirs != nullptr ? dirs : DEFAULT_CONFIG_DIR, pathSuffix);
    if (found.empty() || found.size() >= bufLength) {
        return nullptr;
    }
    std::memcpy(buf, found.c_str(), found.size() + 1);
    return buf;
}
