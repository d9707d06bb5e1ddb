// The process side of PushBundleHelper: running processes, foreground state and the identity
// of the inter-process caller.
#include <climits>

#include "kavo/host/ipc/ipc_skeleton.h"
#include "kavo/push/common/push_log.h"
#include "kavo/push/event/report_log.h"
#include "kavo/push/platform/internal/bundle_managers.h"
#include "kavo/push/platform/push_account_helper.h"
#include "kavo/push/platform/push_bundle_helper.h"

namespace Kavo::Push {

using AppExecFwk::IAppMgr;
using AppExecFwk::IBundleMgr;
using AppExecFwk::ProcessType;
using AppExecFwk::RunningProcessInfo;
using internal::CodeFormat;
using internal::GetAppMgr;
using internal::InfoFormat;
using internal::QueryRunningProcesses;
using internal::WithBundleMgr;

namespace {

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

PushBaseRsp PushBundleHelper::GetIpcClientUserInfo(ClientUserInfo& info)
{
    int uid = IPCSkeleton::GetCallingUid();
    PUSH_LOGI("GetCallingUid uid: %{public}d", uid);
    PushBaseRsp rsp = WithBundleMgr(CodeFormat("Get BundleMgr failed, ret: %{public}d"), [&](IBundleMgr& mgr) {
        info.uid = uid;
        int32_t code = mgr.GetBundleNameAndCloneIndex(uid, info.bundleName, info.appIndex);
        if (code != 0) {
            PUSH_LOGW("Get uid %{public}d, appIndex, bundle name failed, ret:%{public}d", uid, code);
            return PushBaseRsp(PUSH_ERR_NONE, INNER_ERR_CLIENT_INFO_REFUSED,
                               "get uid, bundle name, appIndex fail:" + std::to_string(code));
        }
        return PushBaseRsp();
    });
    if (!rsp.Succeed()) {
        return rsp;
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
        QueryRunningProcesses(bundleName, userId, InfoFormat("Get app mgr fail :%{public}s"),
                              CodeFormat("Get running process info fail: :%{public}d"),
                              CodeFormat("check if app running, get running process info fail: %d"), processes);
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
        QueryRunningProcesses(info.bundleName, info.userId, "Get App Mgr",
                              CodeFormat("check if app foreground, get running process info fail: %{public}d"),
                              CodeFormat("check if app foreground, get running process info fail: %d"), processes);
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
        bool candidate = isExtension ? IsExtensionOf(process, ExtensionAbilityType::REMOTE_NOTIFICATION)
                                     : process.processType == ProcessType::NORMAL;
        if (candidate) {
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
    PushBaseRsp rsp = QueryRunningProcesses(
        bundleName, userId, "Get App Mgr", CodeFormat("check if child pid, get running process info fail: %{public}d"),
        CodeFormat("check if child pid, get running process info fail: %d"), processes);
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
    PushBaseRsp rsp = QueryRunningProcesses(
        bundleName, userId, "Get App Mgr", CodeFormat("check if parent pid, get running process info fail: %{public}d"),
        CodeFormat("check if parent pid, get running process info fail: %d"), processes);
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
    int32_t code = mgr->ListRunningProcesses(bundleName, userId, processes);
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
        QueryRunningProcesses(info.bundleName, info.userId, "Get App Mgr Fail",
                              CodeFormat("get app process state, get running process info fail: %{public}d"),
                              CodeFormat("get app process state, get running process info fail: %d"), processes);
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
