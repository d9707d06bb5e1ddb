// IAppMgr: the application manager's interface, reached under system ability 501, and the
// record of one running process. Pure virtual; an implementation must be callable from any
// thread.
#ifndef KAVO_HOST_APPMGR_IAPP_MGR_H
#define KAVO_HOST_APPMGR_IAPP_MGR_H

#include <cstdint>
#include <string>
#include <vector>

#include "kavo/host/bundle/bundle_info.h"
#include "kavo/host/host_export.h"
#include "kavo/host/ipc/iremote_object.h"

namespace Kavo::AppExecFwk {

enum class AppProcessState : int32_t {
    CREATED = 0,
    READY = 1,
    FOREGROUND = 2,
    FOCUSED = 3,
    BACKGROUND = 4,
    TERMINATED = 5,
};

enum class ProcessType : int32_t {
    NORMAL = 0,
    EXTENSION = 1,
};

struct RunningProcessInfo {
    std::string processName;
    int32_t pid = 0;
    int32_t uid = 0;
    AppProcessState state = AppProcessState::CREATED;
    ProcessType processType = ProcessType::NORMAL;
    ExtensionAbilityType extensionType = ExtensionAbilityType::UNSPECIFIED;
    std::vector<std::string> bundleNames;
    int32_t appIndex = 0;
};

// Return codes of the application manager.
constexpr int32_t APP_MGR_INVALID_USER_ID = 10;

class KAVO_HOST_EXPORT IAppMgr : public ServiceInterface {
public:
    static const std::u16string& GetDescriptor();

    ~IAppMgr() override = default;

    // The running processes of a bundle under an account, all clones included; 0 on success.
    virtual int32_t ListRunningProcesses(const std::string& bundleName, int32_t userId,
                                         std::vector<RunningProcessInfo>& infos) = 0;
};

}  // namespace Kavo::AppExecFwk

#endif  // KAVO_HOST_APPMGR_IAPP_MGR_H
