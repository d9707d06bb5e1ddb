// The package side of PushBundleHelper; the process side is push_bundle_helper_process.cpp.
#include "kavo/push/platform/push_bundle_helper.h"

#include <algorithm>
#include <map>

#include "kavo/host/account/os_account_manager.h"
#include "kavo/host/context/application_context.h"
#include "kavo/push/common/push_log.h"
#include "kavo/push/platform/internal/account_query.h"
#include "kavo/push/platform/internal/bundle_managers.h"
#include "kavo/push/platform/push_account_helper.h"

namespace Kavo::Push {

using AppExecFwk::IBundleMgr;
using internal::InfoFormat;
using internal::WithBundleMgr;

namespace {

const std::string HTTPS_SCHEME = "https://";
const std::string ACTION_VIEW_DATA = "kavo.want.action.viewData";
const std::string ENTITY_BROWSABLE = "entity.system.browsable";
const std::string EXTENSION_PUSH = "push";
const std::string EXTENSION_REMOTE_NOTIFICATION = "remoteNotification";
const std::string EXTENSION_REMOTE_LOCATION = "remoteLocation";
const std::string EXTENSION_VOIP = "voip";
const std::string EXTENSION_SERVICE = "service";
// The access-token interface descriptor; no query reads it.
const std::u16string ACCESS_TOKEN_DESCRIPTOR = u"kavo.samgr.accessToken";

const std::map<std::string, ExtensionAbilityType> EXTENSION_TYPES = {
    {EXTENSION_PUSH, ExtensionAbilityType::PUSH},
    {EXTENSION_REMOTE_NOTIFICATION, ExtensionAbilityType::REMOTE_NOTIFICATION},
    {EXTENSION_REMOTE_LOCATION, ExtensionAbilityType::REMOTE_LOCATION},
    {EXTENSION_VOIP, ExtensionAbilityType::VOIP},
    {EXTENSION_SERVICE, ExtensionAbilityType::SERVICE},
};

constexpr int BUNDLE_FLAG_WITH_APPLICATION = AppExecFwk::BUNDLE_INFO_WITH_APPLICATION;
constexpr int32_t ERR_BUNDLE_NOT_EXIST = AppExecFwk::BUNDLE_NOT_INSTALLED;  // 0x820604

// The first ability the query finds; an empty answer leaves `info` untouched.
PushBaseRsp FirstAbility(const Want& want, const int& userId, AbilityInfo& info)
{
    std::vector<AbilityInfo> infos;
    PushBaseRsp rsp = PushBundleHelper::QueryAbilityInfos(want, userId, infos);
    if (rsp.Succeed() && !infos.empty()) {
        info = infos.front();
    }
    return rsp;
}

}  // namespace

PushBaseRsp PushBundleHelper::QueryExtensionAbilityInfos(const Want& want, const int& userId,
                                                         std::vector<ExtensionAbilityInfo>& infos)
{
    return WithBundleMgr("Get Bundle Mgr Fail", [&](IBundleMgr& mgr) {
        int32_t code = mgr.FindExtensionAbilities(want, 0, userId, infos);
        if (code != 0) {
            PUSH_LOGE("query extension fail:%{public}d", code);
            return PushBaseRsp(PUSH_ERR_EXTENSION_NOT_EXIST, "query extension fail:%s", std::to_string(code).c_str());
        }
        return PushBaseRsp();
    });
}

PushBaseRsp PushBundleHelper::QueryExtensionAbilityInfos(const Want& want, const ExtensionAbilityType& type,
                                                         const int& flags, const int& userId,
                                                         std::vector<ExtensionAbilityInfo>& infos)
{
    return WithBundleMgr("Get Bundle Mgr Fail", [&](IBundleMgr& mgr) {
        int32_t code = mgr.FindExtensionAbilities(want, type, flags, userId, infos);
        if (code != 0) {
            PUSH_LOGE("Query extension ability info failed:%{public}d", code);
            return PushBaseRsp(PUSH_ERR_SYSTEM_INTERNAL, "Query extension ability info failed:%d", code);
        }
        return PushBaseRsp();
    });
}

PushBaseRsp PushBundleHelper::QueryAbilityInfos(const Want& want, const int& userId, std::vector<AbilityInfo>& infos)
{
    return WithBundleMgr("get bundle mgr fail", [&](IBundleMgr& mgr) {
        int32_t code = mgr.FindAbilities(want, 0, userId, infos);
        if (code != 0) {
            PUSH_LOGE("Query Ability InfosV9 Fail");
            return PushBaseRsp(PUSH_ERR_SYSTEM_INTERNAL, "Query ability infos failed:%d", code);
        }
        return PushBaseRsp();
    });
}

PushBaseRsp PushBundleHelper::QueryAbilityInfo(const Want& want, int flags, int userId, AbilityInfo& info)
{
    return WithBundleMgr(InfoFormat("Get Bundle Mgr Fail:%{public}s"), [&](IBundleMgr& mgr) {
        if (!mgr.QueryAbilityInfo(want, flags, userId, info)) {
            PUSH_LOGE("query ability info failed");
            return PushBaseRsp(PUSH_ERR_SYSTEM_INTERNAL, "query ability info failed");
        }
        return PushBaseRsp();
    });
}

PushBaseRsp PushBundleHelper::GetApplicationInfo(const std::string& bundleName, ApplicationFlag flag, int userId,
                                                 ApplicationInfo& info)
{
    return WithBundleMgr("Get Bundle Mgr Fail", [&](IBundleMgr& mgr) {
        if (!mgr.GetApplicationInfo(bundleName, flag, userId, info)) {
            PUSH_LOGE("Get application info fail");
            return PushBaseRsp(PUSH_ERR_SYSTEM_INTERNAL, "Get application info fail");
        }
        return PushBaseRsp();
    });
}

PushBaseRsp PushBundleHelper::GetNameForUid(const int& uid, std::string& bundleName)
{
    return WithBundleMgr("Get Bundle Mgr Fail", [&](IBundleMgr& mgr) {
        int32_t code = mgr.GetNameForUid(uid, bundleName);
        if (code != 0) {
            PUSH_LOGE("Get name for uid fail: %{public}d", code);
            return PushBaseRsp(PUSH_ERR_SYSTEM_INTERNAL, "Get name for uid fail: %d", code);
        }
        return PushBaseRsp();
    });
}

PushBaseRsp PushBundleHelper::GetUidByBundleName(const std::string& bundleName, const int& userId, int& uid,
                                                 const int& appIndex)
{
    return WithBundleMgr("Get Bundle Mgr Fail", [&](IBundleMgr& mgr) {
        uid = mgr.GetUidByBundleName(bundleName, userId, appIndex);
        return PushBaseRsp();
    });
}

PushBaseRsp PushBundleHelper::GetBundleInfoV9(const std::string& bundleName, const int& userId, BundleInfo& info)
{
    PUSH_LOGI("GetBundleInfoV9 start, bundleName:%{public}s", bundleName.c_str());
    return WithBundleMgr("GetBundleInfoV9 get bundle mgr fail", [&](IBundleMgr& mgr) {
        int32_t code = mgr.GetBundleInfoV9(bundleName, BUNDLE_FLAG_WITH_APPLICATION, info, userId);
        if (code != 0) {
            PUSH_LOGW("GetBundleInfoV9 failed ret:%{public}d", code);
            return PushBaseRsp(PUSH_ERR_NONE, "Get RimoBundleInfo, %d", code);
        }
        PUSH_LOGI("GetBundleInfoV9 end, bundleName:%{public}s", bundleName.c_str());
        return PushBaseRsp();
    });
}

BundleInfo PushBundleHelper::GetBundleInfo(const std::string& bundleName, const int& userId, const int& appIndex,
                                           int& ret)
{
    BundleInfo info;
    WithBundleMgr(InfoFormat("Get bundle mgr fail: %{public}s"), [&](IBundleMgr& mgr) {
        ret = mgr.GetCloneRecord(bundleName, BUNDLE_FLAG_WITH_APPLICATION, appIndex, info, userId);
        if (ret != 0) {
            PUSH_LOGE("Get clone bundle info %{public}s failed: %{public}d", bundleName.c_str(), ret);
        }
        return PushBaseRsp();
    });
    return info;
}

PushBaseRsp PushBundleHelper::GetAppIndex(const int& uid, int& appIndex)
{
    return WithBundleMgr("get bundle mgr fail", [&](IBundleMgr& mgr) {
        std::string bundleName;
        int32_t code = mgr.GetBundleNameAndCloneIndex(uid, bundleName, appIndex);
        if (code != 0) {
            PUSH_LOGE("Get appIndex faild: %{public}d", code);
            return PushBaseRsp(PUSH_ERR_NONE, INNER_ERR_CLIENT_INFO_REFUSED,
                               "get appIndex failed:" + std::to_string(code));
        }
        return PushBaseRsp();
    });
}

std::pair<PushBaseRsp, int> PushBundleHelper::GetInstalledStatus(const std::string& bundleName, const int& userId,
                                                                 const int& appIndex)
{
    int status = INSTALLED_STATUS_UNKNOWN;
    PushBaseRsp rsp = WithBundleMgr("get bundle mgr fail", [&](IBundleMgr& mgr) {
        bool installed = false;
        int32_t code = mgr.CheckBundleInstalled(bundleName, userId, appIndex, installed);
        if (code != 0) {
            PUSH_LOGE("Get install status failed, %{public}d", code);
            return PushBaseRsp(PUSH_ERR_NONE, "Get install status failed, %d", code);
        }
        if (!installed) {
            PUSH_LOGE("bundle is not installed");
            status = INSTALLED_STATUS_NOT_INSTALLED;
            return PushBaseRsp(PUSH_ERR_NONE);
        }
        status = INSTALLED_STATUS_INSTALLED;
        return PushBaseRsp();
    });
    return {rsp, status};
}

std::pair<PushBaseRsp, int> PushBundleHelper::GetInstalledStatusV9(const std::string& bundleName, const int& userId,
                                                                   int& uid)
{
    PUSH_LOGI("GetInstalledStatusV9 start, bundleName:%{public}s", bundleName.c_str());
    int status = INSTALLED_STATUS_UNKNOWN;
    PushBaseRsp rsp = WithBundleMgr("get bundle mgr fail", [&](IBundleMgr& mgr) {
        BundleInfo info;
        int32_t code = mgr.GetBundleInfoV9(bundleName, BUNDLE_FLAG_WITH_APPLICATION, info, userId);
        if (code == ERR_BUNDLE_NOT_EXIST) {
            PUSH_LOGE("GetInstalledStatusV9 bundle is not installed");
            status = INSTALLED_STATUS_NOT_INSTALLED;
            return PushBaseRsp(PUSH_ERR_NONE, "bundle is not installed");
        }
        if (code != 0) {
            PUSH_LOGE("GetInstalledStatusV9 failed ret:%{public}d", code);
            return PushBaseRsp(PUSH_ERR_NONE, "Get install status failed, %d", code);
        }
        PUSH_LOGI("GetInstalledStatusV9 bundle is installed, bundleName:%{public}s", bundleName.c_str());
        uid = info.uid;
        status = INSTALLED_STATUS_INSTALLED;
        return PushBaseRsp();
    });
    return {rsp, status};
}

PushBaseRsp PushBundleHelper::GetAppUidForName(const std::string& bundleName, const int& userId, int& uid)
{
    ApplicationInfo info;
    PushBaseRsp rsp = GetApplicationInfo(bundleName, AppExecFwk::APPLICATION_INFO_BASIC, userId, info);
    if (!rsp.Succeed()) {
        PUSH_LOGE("Get Application Info Fail");
        return rsp;
    }
    uid = info.uid;
    return rsp;
}

bool PushBundleHelper::IsSystemApp(const std::string& bundleName, const int& userId)
{
    ApplicationInfo info;
    PushBaseRsp rsp = GetApplicationInfo(bundleName, AppExecFwk::APPLICATION_INFO_BASIC, userId, info);
    if (!rsp.Succeed()) {
        PUSH_LOGE("GetApplicationInfo fail, bundleName: %{public}s, errInfo: %{public}s", bundleName.c_str(),
                  rsp.GetInfo().c_str());
        return false;
    }
    return info.isSystemApp;
}

PushBaseRsp PushBundleHelper::GetAppAnitizerFlag(const std::string& bundleName, const int& userId, unsigned char& flags)
{
    flags = 0;
    ApplicationInfo info;
    PushBaseRsp rsp = GetApplicationInfo(bundleName, AppExecFwk::APPLICATION_INFO_BASIC, userId, info);
    if (!rsp.Succeed()) {
        PUSH_LOGE("get application info fail");
        return rsp;
    }
    const bool switches[] = {info.asanEnabled, info.tsanEnabled, info.gwpAsanEnabled, info.hwAsanEnabled};
    for (size_t bit = 0; bit < sizeof(switches); ++bit) {
        if (switches[bit]) {
            flags |= static_cast<unsigned char>(1U << bit);
        }
    }
    return rsp;
}

PushBaseRsp PushBundleHelper::GetAbilityByAction(const std::string& bundleName, const std::string& action,
                                                 const int& userId, AbilityInfo& info)
{
    Want want;
    want.SetBundle(bundleName).SetAction(action);
    return FirstAbility(want, userId, info);
}

PushBaseRsp PushBundleHelper::GetAbilityByUri(const std::string& bundleName, const std::string& uri, const int& userId,
                                              AbilityInfo& info)
{
    Want want;
    want.SetBundle(bundleName).SetUri(uri);
    return FirstAbility(want, userId, info);
}

PushBaseRsp PushBundleHelper::GetAbilityByName(const std::string& bundleName, const std::string& abilityName,
                                               const int& userId, AbilityInfo& info)
{
    Want want;
    want.SetElementName(bundleName, abilityName);
    return FirstAbility(want, userId, info);
}

PushBaseRsp PushBundleHelper::GetMainAbility(const std::string& bundleName, const int& userId, AbilityInfo& info)
{
    Want want;
    want.SetBundle(bundleName).SetAction(Want::ACTION_HOME).AddEntity(Want::ENTITY_HOME);
    return FirstAbility(want, userId, info);
}

PushBaseRsp PushBundleHelper::ExtensionExist(const Want& want, const int& userId, const ExtensionAbilityType& type,
                                             const int& appIndex)
{
    std::vector<ExtensionAbilityInfo> infos;
    PushBaseRsp rsp = QueryExtensionAbilityInfos(want, userId, infos);
    infos.erase(std::remove_if(infos.begin(), infos.end(),
                               [&appIndex](const ExtensionAbilityInfo& e) { return e.appIndex != appIndex; }),
                infos.end());
    if (rsp.Succeed() && !infos.empty() && infos.front().type == type) {
        return PushBaseRsp();
    }
    std::string desc = rsp.GetErrDescription();
    PUSH_LOGE("extensionInfos is invalid: %{public}s", desc.c_str());
    return PushBaseRsp(PUSH_ERR_EXTENSION_NOT_EXIST, desc);
}

ExtensionAbilityType PushBundleHelper::GetExtensionAbilityType(const std::string& name)
{
    auto it = EXTENSION_TYPES.find(name);
    return it == EXTENSION_TYPES.end() ? ExtensionAbilityType::UNSPECIFIED : it->second;
}

bool PushBundleHelper::CheckIsNotClonedApp(int appIndex)
{
    return appIndex == 0;
}

PushBaseRsp PushBundleHelper::GetCurrBundle(std::string& bundleName)
{
    auto context = AbilityRuntime::Context::GetApplicationContext();
    if (context == nullptr) {
        PUSH_LOGW("Get ability context failed");
        return PushBaseRsp(PUSH_ERR_SYSTEM_INTERNAL, "Get ability context failed");
    }
    bundleName = context->GetBundleName();
    return PushBaseRsp();
}

PushBaseRsp PushBundleHelper::IsBrowserAvailable()
{
    std::vector<int> ids;
    PushBaseRsp rsp = PushAccountHelper::GetForegroundOsAccounts(ids);
    if (!rsp.Succeed()) {
        PUSH_LOGE("GetForegroundOsAccounts check fail");
        return rsp;
    }
    if (ids.empty()) {
        PUSH_LOGE("Ids is empty, unable to get userId");
        return PushBaseRsp(PUSH_ERR_INVALID_PARAM, "Ids is empty, unable to get userId");
    }
    Want want;
    want.SetAction(ACTION_VIEW_DATA).AddEntity(ENTITY_BROWSABLE).SetUri(HTTPS_SCHEME);
    std::vector<AbilityInfo> infos;
    rsp = QueryAbilityInfos(want, ids[0], infos);
    if (!rsp.Succeed()) {
        PUSH_LOGE("No available browsers ,errInfo : %{public}s", rsp.GetInfo().c_str());
        return rsp;
    }
    return PushBaseRsp();
}

PushBaseRsp PushBundleHelper::GetCurrAccountId(int& accountId)
{
    internal::AccountQueryTexts texts;
    texts.notStartedText = "get os account localId fail: account sa not started";
    texts.retryFailLog = InfoFormat("Get curr account id fail: %{public}s");
    texts.failLog = internal::CodeAndIdFormat("Get os accountId failed");
    texts.failDesc = internal::CodeAndIdFormat("Get os accountId failed");
    return internal::RunAccountQuery(
        texts, [&accountId]() { return AccountSA::OsAccountManager::GetOsAccountLocalIdFromProcess(accountId); });
}

}  // namespace Kavo::Push
