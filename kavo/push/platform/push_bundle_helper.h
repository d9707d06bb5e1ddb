// PushBundleHelper: the library's access to the package manager (installed bundles, their
// uids, application records, abilities and extension abilities), to the application manager
// (running processes and their foreground state) and to the identity of the inter-process
// caller. Static and stateless: every query looks its platform service up again, so all may
// run on any thread at once. GetIpcClientUserInfo must run on the thread serving the call.
//
//   ClientUserInfo caller;
//   PushBaseRsp rsp = PushBundleHelper::GetIpcClientUserInfo(caller);
//   if (rsp.Succeed()) { PushBundleHelper::ExtensionExist(want, caller.userId, type, caller.appIndex); }
#ifndef KAVO_PUSH_PLATFORM_PUSH_BUNDLE_HELPER_H
#define KAVO_PUSH_PLATFORM_PUSH_BUNDLE_HELPER_H

#include <string>
#include <utility>
#include <vector>

#include "kavo/host/bundle/ibundle_mgr.h"
#include "kavo/host/want/want.h"
#include "kavo/push/common/push_base_rsp.h"
#include "kavo/push/common/push_export.h"

namespace Kavo::Push {

using Kavo::AAFwk::Want;
using Kavo::AppExecFwk::AbilityInfo;
using Kavo::AppExecFwk::ApplicationFlag;
using Kavo::AppExecFwk::ApplicationInfo;
using Kavo::AppExecFwk::BundleInfo;
using Kavo::AppExecFwk::ExtensionAbilityInfo;
using Kavo::AppExecFwk::ExtensionAbilityType;

// The identity of an inter-process caller.
struct ClientUserInfo {
    std::string bundleName;
    int userId = 0;
    int appIndex = 0;  // 0 for the main application, above 0 for a clone
    int uid = 0;
};

// The key of a process-state query; an empty extension type name means the main process.
struct ProcessInfo {
    std::string bundleName;
    int userId = 0;
    int appIndex = 0;
    std::string extensionTypeName;
};

// Installed status of GetInstalledStatus and GetInstalledStatusV9.
enum InstalledStatus : int {
    INSTALLED_STATUS_UNKNOWN = -1,
    INSTALLED_STATUS_NOT_INSTALLED = 0,
    INSTALLED_STATUS_INSTALLED = 1,
};

class KAVO_PUSH_EXPORT PushBundleHelper {
public:
    // Package queries.
    static PushBaseRsp QueryExtensionAbilityInfos(const Want& want, const int& userId,
                                                  std::vector<ExtensionAbilityInfo>& infos);
    static PushBaseRsp QueryExtensionAbilityInfos(const Want& want, const ExtensionAbilityType& type, const int& flags,
                                                  const int& userId, std::vector<ExtensionAbilityInfo>& infos);
    static PushBaseRsp QueryAbilityInfos(const Want& want, const int& userId, std::vector<AbilityInfo>& infos);
    static PushBaseRsp QueryAbilityInfo(const Want& want, int flags, int userId, AbilityInfo& info);
    static PushBaseRsp GetApplicationInfo(const std::string& bundleName, ApplicationFlag flag, int userId,
                                          ApplicationInfo& info);
    static PushBaseRsp GetNameForUid(const int& uid, std::string& bundleName);
    // Stores whatever uid the package manager answers, unchecked (-1 for an unknown bundle).
    static PushBaseRsp GetUidByBundleName(const std::string& bundleName, const int& userId, int& uid,
                                          const int& appIndex);
    static PushBaseRsp GetBundleInfoV9(const std::string& bundleName, const int& userId, BundleInfo& info);
    // The clone's record (empty on failure); `ret` receives the package manager's code.
    static BundleInfo GetBundleInfo(const std::string& bundleName, const int& userId, const int& appIndex, int& ret);
    static PushBaseRsp GetAppIndex(const int& uid, int& appIndex);
    static std::pair<PushBaseRsp, int> GetInstalledStatus(const std::string& bundleName, const int& userId,
                                                          const int& appIndex);
    static std::pair<PushBaseRsp, int> GetInstalledStatusV9(const std::string& bundleName, const int& userId, int& uid);

    // Queries built on the ones above.
    static PushBaseRsp GetAppUidForName(const std::string& bundleName, const int& userId, int& uid);
    static bool IsSystemApp(const std::string& bundleName, const int& userId);
    // Bits 1, 2, 4, 8: the asan, tsan, gwp-asan and hwasan switches of the application record.
    static PushBaseRsp GetAppAnitizerFlag(const std::string& bundleName, const int& userId, unsigned char& flags);
    // The four ability lookups copy the first ability found; an empty answer leaves `info` untouched.
    static PushBaseRsp GetAbilityByAction(const std::string& bundleName, const std::string& action, const int& userId,
                                          AbilityInfo& info);
    static PushBaseRsp GetAbilityByUri(const std::string& bundleName, const std::string& uri, const int& userId,
                                       AbilityInfo& info);
    static PushBaseRsp GetAbilityByName(const std::string& bundleName, const std::string& abilityName,
                                        const int& userId, AbilityInfo& info);
    static PushBaseRsp GetMainAbility(const std::string& bundleName, const int& userId, AbilityInfo& info);
    // Only the first extension of `appIndex` counts: a match further down the list does not.
    static PushBaseRsp ExtensionExist(const Want& want, const int& userId, const ExtensionAbilityType& type,
                                      const int& appIndex);
    // UNSPECIFIED (255) for a name outside the table; the match is exact and case-sensitive.
    static ExtensionAbilityType GetExtensionAbilityType(const std::string& name);
    static bool CheckIsNotClonedApp(int appIndex);
    static PushBaseRsp GetCurrBundle(std::string& bundleName);
    static PushBaseRsp IsBrowserAvailable();
    // The OS account of the calling process.
    static PushBaseRsp GetCurrAccountId(int& accountId);

    // Process and caller queries.
    static PushBaseRsp GetIpcClientUserInfo(ClientUserInfo& info);
    static PushBaseRsp IsAppRunning(const std::string& bundleName, const int& userId, bool& isRunning,
                                    const int& appIndex);
    // `pid` is left untouched when no process matched.
    static PushBaseRsp IsRemoteForegrounding(const ClientUserInfo& info, int& pid, bool& isForeground,
                                             bool isExtension);
    static PushBaseRsp GetChildProcessPid(const std::string& bundleName, const int& userId,
                                          const ExtensionAbilityType& type, const int& uid, int& pid);
    static PushBaseRsp GetParentProcessPid(const std::string& bundleName, const int& userId, const int& uid, int& pid);
    // Any application's extension process of that type counts.
    static bool IsGivenExtensionProcessRunning(const std::string& bundleName, const int& userId,
                                               const ExtensionAbilityType& type);
    static PushBaseRsp GetAppProcessState(const ProcessInfo& info, int& state, unsigned char& flags);
};

}  // namespace Kavo::Push

#endif  // KAVO_PUSH_PLATFORM_PUSH_BUNDLE_HELPER_H
