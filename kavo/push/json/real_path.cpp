#include "kavo/push/json/real_path.h"

#include <climits>
#include <cstdlib>

#include "kavo/host/config/config_policy.h"
#include "kavo/push/common/push_log.h"

namespace Kavo::Push {

namespace {

constexpr size_t MAX_PATH_LEN = 4096;
constexpr unsigned int CFG_PATH_LEN = 256;
static_assert(MAX_PATH_LEN >= PATH_MAX, "realpath writes up to PATH_MAX bytes");

}  // namespace

PushBaseRsp GetRealPath(const std::string& path, const bool& isConfigFile, std::string& realPath)
{
    if (path.empty() || path.size() >= MAX_PATH_LEN) {
        PUSH_LOGW("GetRealPath: Path is Illeage");
        return PushBaseRsp(PUSH_ERR_SYSTEM_INTERNAL, std::string("Path is illeage."));
    }
    if (!isConfigFile) {
        realPath = path;
        return PushBaseRsp();
    }
    char cfgPath[CFG_PATH_LEN] = {0};
    GetOneCfgFile(path.c_str(), cfgPath, CFG_PATH_LEN);
    // Resolving only proves that the file exists: the caller gets the path the lookup gave.
    char resolved[MAX_PATH_LEN] = {0};
    if (realpath(cfgPath, resolved) == nullptr) {
        PUSH_LOGE("GetRealPath: Parse Real Path Failed");
        return PushBaseRsp(PUSH_ERR_SYSTEM_INTERNAL, std::string("Parse real path failed"));
    }
    realPath = cfgPath;
    return PushBaseRsp();
}

}  // namespace Kavo::Push
