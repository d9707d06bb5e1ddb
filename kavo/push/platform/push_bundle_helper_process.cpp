// The process side of PushBundleHelper: running processes, foreground state and the identity
// of the inter-process caller.
#include <climits>

#include "kavo/host/ipc/ipc_skeleton.h"
#include "kavo/push/common/push_log.h"
#include "kavo/push/event/report_log.h"
#include "kavo/push/platform/internal/service_proxy.h"
#include "kavo/push/platform/push_account_helper.h"
#include "kavo/push/platform/push_bundle_helper.h"

namespace Kavo::Push {

using AppExecFwk::IAppMgr;
using AppExecFwk::IBundleMgr;
using AppExecFwk::ProcessType;
using AppExecFwk::RunningProcessInfo;

namespace {

constexpr int APP_MGR_ABILITY_ID = APP_SERVICE_ABILITY_ID;
constexpr int NO_PID = INT_MIN;
constexpr int FOREGROUND_STATE = 2;  // foreground (2) and focused (3) differ only in the lowest bit

bool IsForegroundState(const RunningProcessInfo& process)
{
    return (static_cast<int>(process.state) & ~1) == FOREGROUND_STATE;
}

bool IsExtensionOf(const RunningProcessInfo& process, ExtensionAbilityType type)
{
    return process.processType == ProcessType::EXTENSION && process.extensionType == type;
}

}  // namespace

PushBaseRsp PushBundleHelper::GetAppMgr(sptr<IAppMgr>& out)
{
    return internal::GetServiceProxy<IAppMgr>(APP_MGR_ABILITY_ID,
                                              {"get app mgr fail: get samgr fail", "get app mgr fail: get samgr fail",
                                               "get ams fail: ams sa not started", "get ams fail: ams sa not started",
                                               "Get app mgr fail: %{public}s", "IAppMgr is null"},
                                              out);
}

PushBaseRsp PushBundleHelper::QueryRunningProcesses(const std::string& bundleName, int userId,
                                                    const ProcessQueryTexts& texts,
                                                    std::vector<RunningProcessInfo>& processes)
{
    sptr<IAppMgr> mgr;
    PushBaseRsp rsp = GetAppMgr(mgr);
    if (!rsp.Succeed()) {
        PUSH_LOGE(texts.noMgrLog, rsp.GetInfo().c_str());
        return rsp;
    }
    int32_t code = mgr->GetRunningProcessInformation(bundleName, userId, processes);
    if (code != 0) {
        PUSH_LOGE(texts.failLog, code);
        return PushBaseRsp(PUSH_ERR_SYSTEM_INTERNAL, texts.failDesc, code);
    }
    return PushBaseRsp();
}

PushBaseRsp PushBundleHelper::GetIpcClientUserInfo(ClientUserInfo& info)
{
    int uid = IPCSkeleton::GetCallingUid();
    PUSH_LOGI("GetCallingUid uid: %{public}d", uid);
    sptr<IBundleMgr> mgr;
    PushBaseRsp rsp = GetBundleMgr(mgr);
    if (!rsp.Succeed()) {
        PUSH_LOGE("Get BundleMgr failed, ret: %{public}d", rsp.GetErr());
        return rsp;
    }
    info.uid = uid;
    int32_t code = mgr->GetNameAndIndexForUid(uid, info.bundleName, info.appIndex);
    if (code != 0) {
        PUSH_LOGW("Get uid %{public}d, appIndex, bundle name failed, ret:%{public}d", uid, code);
        return PushBaseRsp(PUSH_ERR_NONE, INNER_ERR_CLIENT_INFO_REFUSED,
                           "get uid, bundle name, appIndex fail:" + std::to_string(code));
    }
    rsp = PushAccountHelper::GetOsAccountLocalIdFromUid(uid, info.userId);
    if (!rsp.Succeed()) {
        PUSH_LOGE("Get uid %{public}d userId failed, ret %{public}d", uid, rsp.GetErr());
        return rsp;
    }
    PUSH_LOGI("Get clientUserInfo succeed");
    return PushBaseRsp();
}

PushBaseRsp PushBundleHelper::IsAppRunning(const std::string& bundleName, const int& userId, bool& isRunning,
                                           const int& appIndex)
{
    isRunning = false;
    std::vector<RunningProcessInfo> processes;
    PushBaseRsp rsp =
        QueryRunningProcesses(bundleName, userId,
                              {"Get app mgr fail :%{public}s", "Get running process info fail: :%{public}d",
                               "check if app running, get running process info fail: %d"},
                              processes);
    if (!rsp.Succeed()) {
        return rsp;
    }
    if (processes.empty()) {
        return PushBaseRsp();
    }
    int uid = 0;
    rsp = GetUidByBundleName(bundleName, userId, uid, appIndex);
    if (!rsp.Succeed()) {
        PUSH_LOGE("Get uid by bundleName fail :%{public}s", rsp.GetInfo().c_str());
        return rsp;
    }
    for (const auto& process : processes) {
        if (process.uid == uid) {
            isRunning = true;
            break;
        }
    }
    return PushBaseRsp();
}

PushBaseRsp PushBundleHelper::IsRemoteForegrounding(const ClientUserInfo& info, int& pid, bool& isForeground,
                                                    bool isExtension)
{
    isForeground = false;
    std::vector<RunningProcessInfo> processes;
    PushBaseRsp rsp =
        QueryRunningProcesses(info.bundleName, info.userId,
                              {"Get App Mgr", "check if app foreground, get running process info fail: %{public}d",
                               "check if app foreground, get running process info fail: %d"},
                              processes);
    if (!rsp.Succeed()) {
        return rsp;
    }
    for (const auto& process : processes) {
        if (process.uid != info.uid) {
            continue;
        }
        if (IsForegroundState(process)) {
            isForeground = true;
            if (!isExtension) {
                pid = process.pid;
            }
            break;
        }
        if (!isExtension && process.processType == ProcessType::NORMAL) {
            pid = process.pid;
        } else if (isExtension && IsExtensionOf(process, ExtensionAbilityType::REMOTE_NOTIFICATION)) {
            pid = process.pid;
        }
    }
    return PushBaseRsp();
}

PushBaseRsp PushBundleHelper::GetChildProcessPid(const std::string& bundleName, const int& userId,
                                                 const ExtensionAbilityType& type, const int& uid, int& pid)
{
    pid = NO_PID;
    std::vector<RunningProcessInfo> processes;
    PushBaseRsp rsp =
        QueryRunningProcesses(bundleName, userId,
                              {"Get App Mgr", "check if child pid, get running process info fail: %{public}d",
                               "check if child pid, get running process info fail: %d"},
                              processes);
    if (!rsp.Succeed()) {
        return rsp;
    }
    for (const auto& process : processes) {
        if (IsExtensionOf(process, type) && process.uid == uid) {
            pid = process.pid;
            break;
        }
    }
    return PushBaseRsp();
}

PushBaseRsp PushBundleHelper::GetParentProcessPid(const std::string& bundleName, const int& userId, const int& uid,
                                                  int& pid)
{
    pid = NO_PID;
    std::vector<RunningProcessInfo> processes;
    PushBaseRsp rsp =
        QueryRunningProcesses(bundleName, userId,
                              {"Get App Mgr", "check if parent pid, get running process info fail: %{public}d",
                               "check if parent pid, get running process info fail: %d"},
                              processes);
    if (!rsp.Succeed()) {
        return rsp;
    }
    for (const auto& process : processes) {
        if (process.uid == uid && process.processType == ProcessType::NORMAL) {
            pid = process.pid;
            break;
        }
    }
    return PushBaseRsp();
}

bool PushBundleHelper::IsGivenExtensionProcessRunning(const std::string& bundleName, const int& userId,
                                                      const ExtensionAbilityType& type)
{
    sptr<IAppMgr> mgr;
    PushBaseRsp rsp = GetAppMgr(mgr);
    if (!rsp.Succeed()) {
        PUSH_LOGE_AND_REPORT(INNER_ERR_EXTENSION_PROCESS_QUERY_FAILED, "Get app mgr fail :%{public}s",
                             rsp.GetInfo().c_str());
        return false;
    }
    std::vector<RunningProcessInfo> processes;
    int32_t code = mgr->GetRunningProcessInformation(bundleName, userId, processes);
    if (code != 0) {
        PUSH_LOGE_AND_REPORT(INNER_ERR_EXTENSION_PROCESS_QUERY_FAILED,
                             "get running process information ret(%{public}d)", code);
        return false;
    }
    for (const auto& process : processes) {
        if (IsExtensionOf(process, type)) {
            return true;
        }
    }
    return false;
}

PushBaseRsp PushBundleHelper::GetAppProcessState(const ProcessInfo& info, int& state, unsigned char& flags)
{
    state = -1;
    flags = 0;
    std::vector<RunningProcessInfo> processes;
    PushBaseRsp rsp =
        QueryRunningProcesses(info.bundleName, info.userId,
                              {"Get App Mgr Fail", "get app process state, get running process info fail: %{public}d",
                               "get app process state, get running process info fail: %d"},
                              processes);
    if (!rsp.Succeed()) {
        return rsp;
    }
    if (processes.empty()) {
        return GetAppAnitizerFlag(info.bundleName, info.userId, flags);
    }
    int uid = 0;
    rsp = GetUidByBundleName(info.bundleName, info.userId, uid, info.appIndex);
    if (!rsp.Succeed()) {
        PUSH_LOGE("Get Uid By Bundle Name Fail");
        return rsp;
    }
    bool wantsMain = info.extensionTypeName.empty();
    ExtensionAbilityType type =
        wantsMain ? ExtensionAbilityType::UNSPECIFIED : GetExtensionAbilityType(info.extensionTypeName);
    for (const auto& process : processes) {
        if (process.uid != uid) {
            continue;
        }
        if ((wantsMain && process.processType == ProcessType::NORMAL) ||
            (!wantsMain && process.extensionType == type)) {
            state = static_cast<int>(process.state);
            break;
        }
    }
    return GetAppAnitizerFlag(info.bundleName, info.userId, flags);
}

}  // namespace Kavo::Push
